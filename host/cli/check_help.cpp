// Help keys: each that the command-tree file uses has its text in the help file, and no text is without its user.
#include <algorithm>
#include <map>
#include <sstream>

#include "cli/check_parts.h"
#include "cli/listing.h"
#include "expectation.h"

namespace apconf_host
{

namespace
{

constexpr size_t longest_line = 511;  // what the library reads at once

struct help_text {
    size_t line;
    bool used;
};
using help_texts = std::map<std::string, help_text>;

std::string trimmed(const std::string &text)
{
    const char *blanks = " \t\r\v\f";
    const size_t begin = text.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// The texts by their keys, as load_help_map takes a file.
class help_reader
{
public:
    help_reader(const schema_text &help, schema_report &report) : help_(help), report_(report) {}

    help_texts read()
    {
        std::istringstream stream(help_.text);
        for (std::string line; std::getline(stream, line);) {
            ++line_;
            const size_t equals = line.find('=');
            const std::string key = trimmed(line.substr(0, equals));
            if (equals == std::string::npos || key.empty()) continue;
            if (line.size() > longest_line)
                fault(key, "a line of " + std::to_string(line.size()) + " characters: accepted are at most " +
                               std::to_string(longest_line) + ", beyond which it is read as several");
            if (trimmed(line.substr(equals + 1)).empty())
                fault(key, "has no text: accepted is one of one line");
            else if (const auto [first, added] = texts_.insert({key, {line_, false}}); !added)
                fault(key, "has its text in line " + std::to_string(first->second.line) +
                               " already: accepted is one line a key");
        }
        return std::move(texts_);
    }

private:
    void fault(const std::string &key, std::string text)
    {
        report_.faults.push_back({help_.name, line_, key, std::move(text)});
    }

    const schema_text &help_;
    schema_report &report_;
    size_t line_ = 0;
    help_texts texts_;
};

std::vector<std::string> keys_of(const help_texts &texts)
{
    std::vector<std::string> keys;
    for (const auto &[key, text] : texts) keys.push_back(key);
    return keys;
}

void check_elements(const xmlNode *parent, const std::string &file, help_texts &texts, element_faults &faults)
{
    for (const xmlNode *element : children_of(parent)) {
        const std::string key = attribute(element, "help");
        const auto found = texts.find(key);
        if (found != texts.end()) {
            found->second.used = true;
        } else if (!key.empty()) {
            const std::string like = nearest(key, keys_of(texts));
            faults.add(element, refused("help", key, "a key of " + file + (like.empty() ? "" : ", perhaps " + like)));
        }
        check_elements(element, file, texts, faults);
    }
}

}  // namespace

void check_help_keys(const xmlNode *root, const schema_text &help, element_faults &faults, schema_report &report)
{
    help_texts texts = help_reader(help, report).read();
    check_elements(root, help.name, texts, faults);
    const size_t end = 1 + static_cast<size_t>(std::count(help.text.begin(), help.text.end(), '\n'));
    for (const help_line &own : front_end_help()) {
        const auto found = texts.find(own.key);
        if (found == texts.end())
            report.faults.push_back({help.name, end, own.key, "missing: accepted is a text for each key of the shell"});
        else
            found->second.used = true;
    }
    std::vector<schema_fault> unused;
    for (const auto &[key, text] : texts)
        if (!text.used)
            unused.push_back({help.name, text.line, key, "used by no element: accepted are the keys of the elements"});
    report.faults.insert(report.faults.end(), unused.begin(), unused.end());
    std::stable_sort(report.faults.begin(), report.faults.end(),
                     [](const schema_fault &one, const schema_fault &other) { return one.line < other.line; });
}

}  // namespace apconf_host
