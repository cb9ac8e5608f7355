// apconf describe: all about one command or package, for people and, as JSON, for programs.
#include <algorithm>
#include <cstring>

#include "cli/facts.h"
#include "json.h"
#include "text.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/target.h"

namespace apconf_host
{

namespace
{

struct describe_options {
    std::string path;
    bool json = false;
};

constexpr size_t page_width = 100;

// The text in lines that begin at `column`, the first one where the cursor stands already.
std::string wrapped(const std::string &text, size_t column)
{
    std::string result;
    size_t begin = 0;
    while (text.size() - begin > page_width - column) {
        const size_t blank = text.rfind(' ', begin + page_width - column);
        if (blank == std::string::npos || blank <= begin) break;
        result += text.substr(begin, blank - begin) + "\n" + std::string(column, ' ');
        begin = blank + 1;
    }
    return result + text.substr(begin);
}

std::string padded(std::string text, size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// A line with a name in front: "Removal    no ssid: makes it unset".
void print_row(const std::string &name, size_t width, const std::string &text)
{
    if (!text.empty()) printf("%s%s\n", padded(name, width).c_str(), wrapped(text, width).c_str());
}

std::string conditions(const key_facts &key, bool of_package)
{
    std::string text = key.accepted;
    if (!key.default_value.empty()) text += "; default " + key.default_value;
    if (key.optional) text += "; optional";
    if (key.selects) text += of_package ? "; chooses the instance" : "; chooses the entry";
    if (key.secret) text += "; secret: shown only with --secrets";
    return text;
}

void print_keys(const std::vector<key_facts> &keys, bool of_package)
{
    if (keys.empty()) return;
    size_t name_width = 6;
    size_t type_width = 5;
    for (const key_facts &key : keys) {
        name_width = std::max(name_width, key.key.size());
        type_width = std::max(type_width, key.ptype.size());
    }
    const size_t column = name_width + type_width + 4;
    printf("\n%s  %s  ACCEPTED\n", padded("KEY", name_width).c_str(), padded("PTYPE", type_width).c_str());
    for (const key_facts &key : keys) {
        print_row(padded(key.key, name_width) + "  " + key.ptype, column, conditions(key, of_package));
        print_row("", column, key.help);
        if (!key.source.empty()) print_row("", column, "Source: " + key.source);
        size_t word_width = 0;
        for (const choice_facts &choice : key.choices) word_width = std::max(word_width, choice.word.size());
        for (const choice_facts &choice : key.choices)
            print_row(std::string(column + 2, ' ') + choice.word, column + word_width + 4, choice.help);
    }
}

void print_contents(const syntax_command &package)
{
    size_t width = 0;
    for (const auto &command : package.below) width = std::max(width, strlen(command->node->name) + 2);
    printf("\nCONTENTS\n");
    for (const auto &command : package.below)
        print_row(command->node->name, width, command->help.empty() ? "-" : get_help_string(command->help.c_str()));
}

void print_page(const command_facts &facts, const syntax_command &command)
{
    constexpr size_t width = 12;
    puts(facts.path.c_str());
    if (!facts.help.empty()) printf("  %s\n", wrapped(facts.help, 2).c_str());
    puts("");
    for (const std::string &line : facts.set_lines) print_row("Line", width, line);
    for (const std::string &line : facts.no_lines) print_row("Removal", width, line + ": " + facts.removal);
    if (facts.no_lines.empty()) print_row("Removal", width, facts.removal);
    print_row("Instance", width, joined(facts.instances));
    if (facts.entries)
        print_row(command.is_package() ? "Instances" : "Entries", width, std::to_string(facts.entries) + " at most");
    print_row("Reported", width, facts.reported);
    print_row("Source", width, facts.source);
    print_keys(facts.keys, command.is_package());
    if (command.is_package()) print_contents(command);
}

json_object *text_or_null(const std::string &text)
{
    return text.empty() ? nullptr : json_object_new_string(text.c_str());
}

json_object *array_of(const std::vector<std::string> &texts)
{
    json_object *array = json_object_new_array();
    for (const std::string &text : texts) json_object_array_add(array, json_object_new_string(text.c_str()));
    return array;
}

json_object *as_json(const key_facts &key)
{
    json_object *object = json_object_new_object();
    json_object_object_add(object, "key", text_or_null(key.key));
    json_object_object_add(object, "ptype", text_or_null(key.ptype));
    json_object_object_add(object, "accepted", text_or_null(key.accepted));
    json_object_object_add(object, "default", text_or_null(key.default_value));
    json_object_object_add(object, "help", text_or_null(key.help));
    json_object_object_add(object, "source", text_or_null(key.source));
    json_object_object_add(object, "optional", json_object_new_boolean(key.optional));
    json_object_object_add(object, "selects", json_object_new_boolean(key.selects));
    json_object_object_add(object, "secret", json_object_new_boolean(key.secret));
    json_object *choices = json_object_new_object();
    for (const choice_facts &choice : key.choices)
        json_object_object_add(choices, choice.word.c_str(), text_or_null(choice.help));
    json_object_object_add(object, "choices", choices);
    return object;
}

json_ptr as_json(const command_facts &facts, const syntax_command &command)
{
    json_ptr object(json_object_new_object());
    json_object_object_add(object.get(), "path", text_or_null(facts.path));
    json_object_object_add(object.get(), "package", json_object_new_boolean(command.is_package()));
    json_object_object_add(object.get(), "help", text_or_null(facts.help));
    json_object_object_add(object.get(), "lines", array_of(facts.set_lines));
    json_object_object_add(object.get(), "no_lines", array_of(facts.no_lines));
    json_object_object_add(object.get(), "removal", text_or_null(facts.removal));
    json_object_object_add(object.get(), "instances", array_of(facts.instances));
    json_object_object_add(object.get(), "entries", facts.entries ? json_object_new_uint64(facts.entries) : nullptr);
    json_object_object_add(object.get(), "reported", text_or_null(facts.reported));
    json_object_object_add(object.get(), "source", text_or_null(facts.source));
    json_object *keys = json_object_new_array();
    for (const key_facts &key : facts.keys) json_object_array_add(keys, as_json(key));
    json_object_object_add(object.get(), "keys", keys);
    std::vector<std::string> contents;
    for (const auto &below : command.below) contents.push_back(below->path);
    json_object_object_add(object.get(), "contents", array_of(contents));
    return object;
}

int describe(const describe_options &options)
{
    const vocabulary vocabulary;
    const syntax_command &command = find_syntax(vocabulary, options.path);
    load_help_map(vocabulary::default_help);
    const command_facts facts = facts_of(vocabulary, command);
    if (options.json)
        puts(shown(as_json(facts, command).get()).c_str());
    else
        print_page(facts, command);
    free_help_map();
    return EXIT_DONE;
}

}  // namespace

void add_describe(command_line &line)
{
    const auto options = std::make_shared<describe_options>();
    CLI::App &added = line.add({group::vocabulary, "describe",
                                "Print all about a command: its line, keys, what they accept, how it is removed",
                                "apconf describe radio/bss/ssid_cmd", [options] { return describe(*options); }});
    added.add_option("PATH", options->path, "The command or package")->required();
    added.add_flag("--json", options->json, "Print an object on one line");
}

}  // namespace apconf_host
