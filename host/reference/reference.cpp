// apconf-reference: docs/commands.md, made of the descriptions, the command-tree file and the help texts. The build
// target "reference" writes it, and a test holds the file against what would be written.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

#include "cli/facts.h"
#include "expectation.h"
#include "text.h"

namespace apconf_host
{

namespace
{

// Types with more tokens than this have a section of their own.
constexpr size_t most_tokens_in_place = 6;

constexpr const char *introduction = R"(# Command reference

Every package and command of the default vocabulary, in the order of the command tree. It is made of the library's
descriptions, `etc/config_cmd_tree.xml` and `etc/cmd_tree_help.txt`; after a change there,
`cmake --build --preset release --target reference` writes it anew. Of the vocabulary that an access point uses,
`apconf describe PATH` says the same.

A heading is the path of a package or command; commands with at most one key share a table. A line is what is typed on
the command line, a key a member of the argument object in messages. Unless something else is said, `no` with the words
of a command makes it unset, and a get or commit reports the keys that differ. Secrets are shown as `***` unless they
are asked for. A key that "selects" stands on a "no" line too: it picks the entry, or the instance of a package.

| In a line | Stands for |
|---|---|
| `word` | itself |
| `<1-255>` | a number with its limits |
| `STRING1-32`, `HEX_STR2-64` | a text with the limits of its length; in double quotes when it holds blanks |
| `A.B.C.D`, `A.B.C.D/M` | an IPv4 address, an IPv4 prefix |
| `HH:HH:HH:HH:HH:HH`, `HH:MM:SS` | a MAC address, a time |
| `@CHANNEL` | a value of this type |
| `(a\|b)` | one of them |
| `{...}` | what can be left out |
)";

std::string escaped(const std::string &text)
{
    std::string result;
    for (const char c : text) {
        if (c == '|') result += '\\';
        if (c == '<')
            result += "&lt;";
        else
            result += c;
    }
    return result;
}

std::string code(const std::string &text)
{
    return "`" + text + "`";
}

// The place of a heading in a page.
std::string anchor(const std::string &heading)
{
    std::string name;
    for (const char c : heading) {
        if (isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-')
            name += static_cast<char>(tolower(static_cast<unsigned char>(c)));
        if (c == ' ') name += '-';
    }
    return "[" + heading + "](#" + name + ")";
}

std::string sentence(const std::string &text)
{
    return text.empty() ? "" : escaped(text) + (text.back() == '.' ? "" : ".");
}

class writer
{
public:
    explicit writer(const vocabulary &vocabulary) : vocabulary_(vocabulary) {}

    std::string write()
    {
        page_ << introduction << "\n## Contents\n\n";
        write_contents(vocabulary_.config(), 0);
        page_ << "- " << anchor("Types") << "\n";
        write_package(vocabulary_.config());
        write_types();
        return page_.str();
    }

private:
    void write_contents(const syntax_command &package, size_t depth)
    {
        page_ << std::string(2 * depth, ' ') << "- " << anchor(package.path) << ": "
              << escaped(get_help_string(package.help.c_str())) << "\n";
        for (const auto &below : package.below)
            if (below->is_package()) write_contents(*below, depth + 1);
    }

    // Its commands, then the packages in it.
    void write_package(const syntax_command &package)
    {
        write_command(facts_of(vocabulary_, package), package, "## ");
        std::vector<std::string> rows;
        for (const auto &below : package.below)
            if (is_small(*below)) rows.push_back(row_of(facts_of(vocabulary_, *below), *below));
        if (!rows.empty()) page_ << "\n| Command | Line | Key | Meaning |\n|---|---|---|---|\n" << joined(rows, "");
        for (const auto &below : package.below)
            if (!below->is_package() && !is_small(*below)) write_command(facts_of(vocabulary_, *below), *below, "### ");
        for (const auto &below : package.below)
            if (below->is_package()) write_package(*below);
    }

    // One row says all of it.
    static bool is_small(const syntax_command &command)
    {
        return !command.is_package() && command.command->array.count <= 1 && values_of(command).size() <= 1;
    }

    std::string row_of(const command_facts &facts, const syntax_command &command)
    {
        std::string text =
            "| " + code(command.node->name) + " | " + code(in_table(joined(facts.set_lines, " "))) + " | ";
        for (const key_facts &key : facts.keys) text += code(key.key) + " " + key.ptype + ": " + accepts(key);
        text += " | " + sentence(facts.help);
        // Of a switch the command says it all.
        for (const key_facts &key : facts.keys)
            if (key.ptype != "STATUS") text += " " + sentence(meaning(key));
        return text + source_of(facts) + remarks(facts, command) + " |\n";
    }

    // A bar ends a cell, also in code.
    static std::string in_table(const std::string &text)
    {
        std::string result;
        for (const char c : text) result += c == '|' ? std::string("\\|") : std::string(1, c);
        return result;
    }

    static std::string source_of(const command_facts &facts)
    {
        return facts.source.empty() ? "" : " Source: " + sentence(facts.source);
    }

    // What is not as it is for most commands.
    static std::string remarks(const command_facts &facts, const syntax_command &command)
    {
        std::string text;
        if (facts.no_lines.empty() && !command.is_package()) text += " It has no \"no\" line.";
        if (command.command->variant == APCONF_FLAG)
            text += " " + code(facts.no_lines.front()) + " " + facts.removal + ".";
        if (command.command->variant != APCONF_GROUP && command.command->variant != APCONF_PACKAGE_NODE)
            text += " Reported: " + sentence(facts.reported);
        return text;
    }

    void write_command(const command_facts &facts, const syntax_command &command, const char *level)
    {
        page_ << "\n" << level << facts.path << "\n\n" << sentence(facts.help);
        if (facts.entries)
            page_ << " At most " << facts.entries << (command.is_package() ? " instances." : " entries.");
        page_ << source_of(facts) << remarks(facts, command) << "\n\n";
        for (const std::string &line : facts.set_lines) page_ << "- " << code(line) << "\n";
        for (const std::string &line : facts.no_lines) page_ << "- " << code(line) << " " << facts.removal << "\n";
        if (facts.keys.empty()) return;
        page_ << "\n| Key | Type | Accepts | Meaning |\n|---|---|---|---|\n";
        for (const key_facts &key : facts.keys)
            page_ << "| " << code(key.key) << " | " << key.ptype << " | " << accepts(key) << " | " << meaning(key)
                  << " |\n";
    }

    std::string accepts(const key_facts &key)
    {
        std::string text = values(key);
        if (!key.default_value.empty()) text += "; default " + code(key.default_value);
        if (key.optional) text += "; optional";
        if (key.selects) text += "; selects";
        if (key.secret) text += "; secret";
        return text;
    }

    std::string values(const key_facts &key)
    {
        // "up to 12 values, each one of 1, 2, ..."
        const size_t each = key.accepted.find(", each ");
        const std::string several = each == std::string::npos ? "" : key.accepted.substr(0, each + 7);
        std::vector<std::string> words;
        for (const choice_facts &choice : key.choices) words.push_back(code(choice.word));
        if (words.empty())
            for (const std::string &token : tokens_of(static_cast<uint32_t>(get_ptype_by_name(key.ptype.c_str()))))
                words.push_back(code(token));
        if (key.choices.empty() && words.size() > most_tokens_in_place) {
            types_.insert(key.ptype);
            return several + "one of " + anchor(key.ptype);
        }
        if (!words.empty()) return several + joined(words);
        // The type stands in its own column.
        const std::string type = "a " + key.ptype + " ";
        return escaped(key.accepted.starts_with(type) ? key.accepted.substr(type.size()) : key.accepted);
    }

    static std::string meaning(const key_facts &key)
    {
        std::string text = escaped(key.help);
        std::vector<std::string> choices;
        for (const choice_facts &choice : key.choices)
            choices.push_back(code(choice.word) + " " + escaped(choice.help));
        if (!choices.empty()) text += ": " + joined(choices, "; ");
        if (!key.source.empty()) text += " (" + escaped(key.source) + ")";
        return text;
    }

    void write_types()
    {
        page_ << "\n## Types\n\nTypes whose values are words, where these do not stand beside the key.\n";
        for (const std::string &type : types_) {
            std::vector<std::string> words;
            for (const std::string &token : tokens_of(static_cast<uint32_t>(get_ptype_by_name(type.c_str()))))
                words.push_back(code(token));
            page_ << "\n### " << type << "\n\n" << joined(words, ", ") << "\n";
        }
    }

    const vocabulary &vocabulary_;
    std::ostringstream page_;
    std::set<std::string> types_;
};

std::string reference()
{
    register_root_cmd(lib_pkg_root);
    if (command_tree_parser() != 0) throw std::runtime_error("no command-tree file");
    load_help_map(vocabulary::default_help);
    const vocabulary vocabulary;
    return writer(vocabulary).write();
}

std::string content(const char *file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

int check(const char *file, const std::string &wanted)
{
    std::istringstream is(content(file));
    std::istringstream should_be(wanted);
    std::string line;
    std::string other;
    for (size_t number = 1;; ++number) {
        const bool more = static_cast<bool>(std::getline(is, line));
        const bool more_wanted = static_cast<bool>(std::getline(should_be, other));
        if (!more && !more_wanted) return 0;
        if (more && more_wanted && line == other) continue;
        fprintf(stderr,
                "%s:%zu: is not what the vocabulary says\n  it is:     %s\n  should be: %s\n"
                "'cmake --build --preset release --target reference' writes it anew.\n",
                file, number, more ? line.c_str() : "(the end)", more_wanted ? other.c_str() : "(the end)");
        return 1;
    }
}

int run(int argc, char **argv)
{
    const std::string mode = argc == 3 ? argv[1] : "";
    if (mode != "--write" && mode != "--check") {
        fprintf(stderr, "Usage: apconf-reference --write FILE | --check FILE\n");
        return 2;
    }
    const std::string page = reference();
    if (mode == "--check") return check(argv[2], page);
    std::ofstream file(argv[2], std::ios::binary);
    if (file << page << std::flush) return 0;
    fprintf(stderr, "apconf-reference: %s: cannot be written\n", argv[2]);
    return 1;
}

}  // namespace
}  // namespace apconf_host

int main(int argc, char **argv)
{
    try {
        return apconf_host::run(argc, argv);
    } catch (const std::exception &problem) {
        fprintf(stderr, "apconf-reference: %s\n", problem.what());
        return 1;
    }
}
