// The words of command lines, package by package: no line may be read as two commands, nor as a word of the reader.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <sstream>

#include "cli/check_parts.h"

namespace apconf_host
{

namespace
{

// What the reader of command lines takes at the beginning of a line before it asks a package.
constexpr const char *reader_words[] = {"no", "exit", "end"};

struct worded {
    xmlNode *element;  // with the words and parameters
    std::string name;
    std::vector<std::string> words;
};

std::vector<std::string> split(const std::string &text)
{
    std::istringstream stream(text);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

bool is_value(const xmlNode *param, const std::string &word)
{
    const int ptype = get_ptype_by_name(attribute(param, "ptype").c_str());
    if (ptype < 0) return false;
    const auto type = static_cast<uint32_t>(ptype);
    const std::unique_ptr<void, decltype(&free)> range(
        convert_ptype_range(type, get_xmlnode_attr(param, "min"), get_xmlnode_attr(param, "max")), free);
    return convert_ptype_to_value(type, nullptr, word.c_str(), range.get()) == 0;
}

uint8_t flags_of(const xmlNode *item)
{
    uint8_t flags = 0;
    resolve_param_option_attr(get_xmlnode_attr(item, "option"), &flags);
    return flags;
}

bool can_be(const xmlNode *item, const std::string &word)
{
    if (is_named(item, "BODY")) return attribute(item, "name") == word;
    if (!(flags_of(item) & PARAM_OPTION_LIST)) return is_value(item, word);
    const auto choices = children_of(item);
    return std::any_of(choices.begin(), choices.end(), [&word](const xmlNode *choice) { return can_be(choice, word); });
}

// The parameters could begin with this word: it fits the first of them, or one behind optional ones.
bool can_begin_with(const xmlNode *command, const std::string &word)
{
    for (const xmlNode *item : children_of(command)) {
        if (!is_item(item)) continue;
        if (can_be(item, word)) return true;
        if (!(flags_of(item) & PARAM_OPTION_OPTIONAL)) return false;
    }
    return false;
}

std::string with_line(const worded &command)
{
    return command.name + " in line " + std::to_string(xmlGetLineNo(command.element));
}

// `longer` stands where the words of `shorter` would be read with a value behind them.
void check_pair(const worded &shorter, const worded &longer, element_faults &faults)
{
    const std::string words = attribute(longer.element, "cli_cmd");
    if (shorter.words == longer.words)
        return faults.add(longer.element,
                          refused("cli_cmd", words, "words of its own; these are those of " + with_line(shorter)));
    const std::string &next = longer.words[shorter.words.size()];
    if (can_begin_with(shorter.element, next))
        faults.add(longer.element, refused("cli_cmd", words,
                                           "words that cannot be read as those of " + with_line(shorter) +
                                               " with the value '" + next + "'"));
}

bool begins_with(const std::vector<std::string> &words, const std::vector<std::string> &beginning)
{
    return words.size() >= beginning.size() && std::equal(beginning.begin(), beginning.end(), words.begin());
}

std::vector<worded> commands_of(const xmlNode *package)
{
    std::vector<worded> commands;
    for (xmlNode *child : children_of(package)) {
        if (is_named(child, "INDEX") || attribute(child, "ntype").empty()) continue;
        xmlNode *element = words_of(child);
        auto words = element ? split(attribute(element, "cli_cmd")) : std::vector<std::string>();
        if (!words.empty()) commands.push_back({element, reinterpret_cast<const char *>(child->name), words});
    }
    return commands;
}

void check_package(const xmlNode *package, element_faults &faults)
{
    const auto commands = commands_of(package);
    for (size_t i = 0; i < commands.size(); ++i) {
        for (const char *taken : reader_words)
            if (commands[i].words.front() == taken)
                faults.add(commands[i].element, refused("cli_cmd", attribute(commands[i].element, "cli_cmd"),
                                                        "words that do not begin with no, exit or end"));
        for (size_t j = 0; j < i; ++j) {
            if (begins_with(commands[i].words, commands[j].words))
                check_pair(commands[j], commands[i], faults);
            else if (begins_with(commands[j].words, commands[i].words))
                check_pair(commands[i], commands[j], faults);
        }
    }
    for (const xmlNode *child : children_of(package))
        if (attribute(child, "ntype") == "package") check_package(child, faults);
}

}  // namespace

void check_words(xmlNode *root, element_faults &faults)
{
    check_package(root, faults);
}

}  // namespace apconf_host
