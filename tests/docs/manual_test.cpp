// The manual pages say what the programs, the headers and the vocabulary say, and their examples do what they promise.
#include <apconf/ptype.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "docs/document.h"
#include "docs/manual.h"
#include "host/tool_process.h"

using namespace apconf_test;
namespace fs = std::filesystem;

namespace
{

using name_set = std::set<std::string>;

std::string manual(const std::string &name)
{
    return source_file("man/" + name);
}

std::vector<fs::path> all_pages()
{
    std::vector<fs::path> pages;
    for (const auto &entry : fs::directory_iterator(APCONF_SOURCE_DIR "/man")) pages.push_back(entry.path());
    return pages;
}

help_text help_of(const std::string &subcommand)
{
    const tool_result result = apconf(subcommand + " --help");
    EXPECT_EQ(result.status, 0) << subcommand << ": " << result.errors;
    return read_help(result.output);
}

// How every subcommand below `name` is called, by its full name: "queue show".
void collect_forms(const std::string &name, std::map<std::string, call_form> &forms)
{
    const help_text help = help_of(name);
    if (!name.empty()) forms[name] = help.form;
    for (const std::string &below : help.subcommands) collect_forms(name.empty() ? below : name + " " + below, forms);
}

// Of the subcommands that --help shows, and of those that the page knows beside them.
std::map<std::string, call_form> forms_of_tool(const manual_page &page)
{
    std::map<std::string, call_form> forms;
    collect_forms("", forms);
    for (const auto &[name, entry] : page.entries)
        if (!forms.contains(name)) forms[name] = help_of(name).form;
    return forms;
}

std::string in_words(const call_form &form)
{
    std::string text;
    for (const auto &names : {form.options, form.arguments})
        for (const std::string &name : names) text += " " + name;
    return text;
}

using json_ptr = std::unique_ptr<json_object, int (*)(json_object *)>;

json_ptr parsed(const std::string &text)
{
    return {json_tokener_parse(text.c_str()), json_object_put};
}

bool same_text_or_json(const std::string &one, const std::string &other)
{
    if (!one.starts_with("{")) return one == other;
    const json_ptr first = parsed(one);
    return first && json_object_equal(first.get(), parsed(other).get());
}

// "printed by apconf convert -, given the next one"
struct instruction {
    std::string what;    // "in", "taken by" or "printed by"
    std::string object;  // a file or a command line
    int given = 0;       // the example that is the command's input, relative to this one
};

instruction read_instruction(const std::string &text)
{
    const auto match = matches(text, "^(in|taken by apconf|printed by apconf) ([^,]*)(, given the (next|last) one)?$");
    EXPECT_EQ(match.size(), 1U) << "nothing that a test could do: '" << text << "'";
    if (match.empty()) return {};
    return {match[0][1], match[0][2], match[0][4] == "next" ? 1 : match[0][4] == "last" ? -1 : 0};
}

void try_example(const std::vector<manual_example> &examples, size_t place)
{
    const std::string &text = examples[place].text;
    const instruction told = read_instruction(examples[place].instruction);
    if (told.what == "in") {
        EXPECT_NE(source_file(told.object).find(text), std::string::npos) << told.object << " does not hold\n" << text;
        return;
    }
    const bool taken = told.what == "taken by apconf";
    const size_t input = place + static_cast<size_t>(told.given);
    ASSERT_LT(input, examples.size());
    const tool_result result = apconf(told.object, taken || told.given != 0 ? examples[input].text : "");
    EXPECT_EQ(result.status, 0) << told.object << ": " << result.output << result.errors;
    if (taken) return;
    EXPECT_PRED2(same_text_or_json, text, result.output) << "what 'apconf " << told.object << "' prints";
}

class manual_pages : public tool
{
};

}  // namespace

TEST_F(manual_pages, every_subcommand_of_the_tool_has_an_entry_and_each_entry_a_subcommand)
{
    const manual_page page = read_manual(manual("apconf.1"));
    const auto forms = forms_of_tool(page);
    for (const auto &[name, form] : forms) EXPECT_TRUE(page.entries.contains(name)) << "no entry: " << name;
    EXPECT_GE(forms.size(), 10U);
}

TEST_F(manual_pages, an_entry_names_the_options_and_arguments_that_its_subcommand_has)
{
    const manual_page page = read_manual(manual("apconf.1"));
    for (auto &[name, form] : forms_of_tool(page)) {
        const auto entry = page.entries.find(name);
        if (entry == page.entries.end()) continue;
        call_form expected = form;
        expected.options.erase("-h");
        expected.options.erase("--help");
        EXPECT_EQ(in_words(entry->second.heading), in_words(expected)) << name;
        for (const std::string &option : expected.options)
            EXPECT_TRUE(entry->second.described.contains(option) || page.described.contains(option))
                << name << " " << option << " is not explained";
        for (const std::string &option : entry->second.described)
            EXPECT_TRUE(expected.options.contains(option)) << name << " has no " << option;
    }
}

TEST_F(manual_pages, the_options_of_the_server_are_described)
{
    ASSERT_EQ(system(APCONF_SERVER " --help >/tmp/output"), 0);
    EXPECT_EQ(read_manual(manual("apconfd.8")).described, read_help(content("/tmp/output")).form.options);
}

TEST_F(manual_pages, examples_do_what_the_comment_above_them_says)
{
    fs::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                  fs::copy_options::overwrite_existing);
    size_t tried = 0;
    for (const fs::path &path : all_pages()) {
        const auto examples = manual_examples(manual(path.filename()));
        for (size_t i = 0; i < examples.size(); ++i) {
            SCOPED_TRACE(path.filename().string() + ", example " + std::to_string(i + 1));
            const bool typed = examples[i].text.starts_with("$ ") || examples[i].text.starts_with("# ");
            EXPECT_NE(typed, !examples[i].instruction.empty());
            if (typed) continue;
            try_example(examples, i);
            ++tried;
        }
    }
    EXPECT_GE(tried, 8U);
}

TEST(library_page, names_every_function_that_the_headers_declare_and_no_other)
{
    name_set declared;
    for (const auto &entry : fs::directory_iterator(APCONF_SOURCE_DIR "/include/apconf")) {
        const std::string header = source_file("include/apconf/" + entry.path().filename().string());
        for (const auto &match : matches(header, "\n[A-Za-z][A-Za-z0-9_ ]*[ *]([a-z_0-9]+)\\("))
            declared.insert(match[1]);
    }
    std::erase_if(declared, [](const std::string &name) { return name.ends_with("_fn"); });
    name_set named = words_behind(manual("libapconf.3"), "Fn");
    named.erase("NAME_to_ptype");
    named.erase("NAME_to_string");
    EXPECT_GE(declared.size(), 100U);
    for (const std::string &name : declared) EXPECT_TRUE(named.contains(name)) << name << " is missing";
    for (const std::string &name : named) EXPECT_TRUE(declared.contains(name)) << "no header declares " << name;
}

TEST(schema_page, has_the_ptypes_that_are_no_enumerations_with_the_limits_they_take)
{
    std::map<std::string, std::string> documented;
    for (const auto &row : matches(manual("apconf-schema.5"), "It ([A-Z0-9_]+) Ta (value|length|none) Ta"))
        documented[row[1]] = row[2];
    std::map<std::string, std::string> real;
#define ADD_PTYPE(number, NAME, type)                                                                     \
    {                                                                                                     \
        const std::unique_ptr<void, void (*)(void *)> range(convert_ptype_range(number, "1", "2"), free); \
        const bool is_text = number == PTYPE_STRING || number == PTYPE_HEX_STR;                           \
        real[#NAME] = !range ? "none" : is_text ? "length" : "value";                                     \
    }
    APCONF_SCALAR_PTYPES(ADD_PTYPE)
#undef ADD_PTYPE
    EXPECT_EQ(documented, real);
}
