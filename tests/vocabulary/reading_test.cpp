// Every command line of the default vocabulary can be read back: by the rules of the tree file's head, and by what the
// converter prints for values of every kind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "apconf/cli_line.h"
#include "host/expectation.h"
#include "support/printed.h"
#include "vocabulary/reading_rules.h"
#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(Reading, NoLineCanBeReadInTwoWays)
{
    for (const entry &entry : described()) EXPECT_THAT(ambiguities(entry.line), IsEmpty()) << entry.path;
}

TEST(Reading, WordsOfOneCommandNeverBeginThoseOfAnother)
{
    for (const entry &entry : described()) {
        if (!entry.is_package()) continue;
        EXPECT_THAT(confusable_words(entry.element), IsEmpty()) << entry.path;
    }
}

std::vector<std::string> rules_on(const std::string &inner)
{
    const apconf::xml_doc document = parsed("<x>" + inner + "</x>");
    return ambiguities(xmlDocGetRootElement(document.get()));
}

constexpr char optional_port[] =
    "<BODY name='port' option='optional'><PARAM name='port' ptype='UINT' option='optional'/></BODY>";

TEST(ReadingRules, ReportEachWayToMisreadALine)
{
    EXPECT_THAT(rules_on(optional_port), IsEmpty());
    EXPECT_THAT(rules_on("<PARAM name='a' ptype='UINT' option='optional'/>"),
                ElementsAre("a may be left out and has no word"));
    EXPECT_THAT(rules_on(optional_port + std::string("<PARAM name='a' ptype='UINT'/>")),
                ElementsAre("a has no word and stands behind an optional one"));
    EXPECT_THAT(rules_on(optional_port + std::string("<BODY name='to'><PARAM name='a' ptype='UINT'/></BODY>")),
                IsEmpty());
    EXPECT_THAT(rules_on(optional_port + std::string(optional_port)), ElementsAre("the word port stands twice"));
    EXPECT_THAT(rules_on("<BODY name='b' option='optional'><PARAM name='a' ptype='UINT'/></BODY>"),
                ElementsAre("b is optional, what it announces is not"));
    EXPECT_THAT(rules_on("<BODY name='b' option='optional'/>"), ElementsAre("b announces not one PARAM"));
}

TEST(ReadingRules, ReportChoicesThatLookAlike)
{
    EXPECT_THAT(rules_on("<PARAM name='t' ptype='ADDR_TYPE' option='list'><PARAM name='ip' ptype='IPV4'/>"
                         "<PARAM name='domain' ptype='STRING'/></PARAM>"),
                ElementsAre("a value could be ip or domain"));
    EXPECT_THAT(rules_on("<PARAM name='t' ptype='ADDR_TYPE' option='list'><BODY name='none'/>"
                         "<PARAM name='domain' ptype='STRING'/></PARAM>"),
                ElementsAre("the word none could be a value of domain"));
    EXPECT_THAT(
        rules_on(std::string("<PARAM name='t' ptype='ADDR_TYPE' option='list'><BODY name='none'/><BODY name='ip'>") +
                 optional_port + "</BODY></PARAM><PARAM name='a' ptype='UINT'/>"),
        ElementsAre("a has no word and stands behind an optional one"))
        << "an optional word inside a choice counts as well";
}

TEST(ReadingRules, ReportWordsAndParametersThatPartInNoLines)
{
    EXPECT_THAT(rules_on("<BODY name='b'><PARAM name='a' ptype='UINT' option='pindex'/></BODY>"),
                ElementsAre("a is missing in the \"no\" line, because its word is"));
    EXPECT_THAT(rules_on("<BODY name='b' option='pindex'><PARAM name='a' ptype='UINT'/></BODY>"),
                ElementsAre("a is not in the \"no\" line that its word is in"));
    EXPECT_THAT(
        rules_on("<BODY name='b' option='optional,pindex'><PARAM name='a' ptype='UINT' option='optional'/></BODY>"),
        ElementsAre("b and what it announces differ in \"no\" lines"));
}

TEST(ReadingRules, ReportCommandWords)
{
    const apconf::xml_doc document = parsed(
        "<p><a cli_cmd='ip'/><b cli_cmd='ip route'/><c cli_cmd='ip-acl'/><d ntype='package'><INDEX "
        "cli_cmd='no-op'/></d>"
        "<e cli_cmd='no shutdown'/></p>");
    EXPECT_THAT(confusable_words(xmlDocGetRootElement(document.get())),
                ElementsAre("ip begins ip route", "no shutdown is taken"));
}

// A parameter of one line of a command, with a value for it.
struct said {
    std::string name;
    std::string value;
    std::string word;  // that stands before it when it may be left out; empty: it must be given
    bool selects;      // named in a "no" line
};

// Any value of the parameter's type and range, without blanks.
std::string sample(const xmlNode *param)
{
    const int ptype = get_ptype_by_name(attribute(param, "ptype").c_str());
    switch (ptype) {
        case PTYPE_STRING:
        case PTYPE_HEX_STR:
            return std::string(std::max(1UL, strtoul(attribute(param, "min").c_str(), nullptr, 10)), 'a');
        case PTYPE_IPV4:
            return "192.0.2.7";
        case PTYPE_IPV4_MASK:
            return "192.0.2.0/24";
        case PTYPE_MAC_ADDR:
            return "00:1A:2B:3C:4D:5E";
        case PTYPE_TIME_HHMMSS:
            return "1:30:0";
        case PTYPE_RAW_JSON:
            return "{}";
        default:
            break;
    }
    if (has_attribute(param, "max")) return attribute(param, "max");
    const auto tokens = apconf_host::tokens_of(static_cast<uint32_t>(ptype));
    EXPECT_FALSE(tokens.empty()) << attribute(param, "name") << ": no sample for " << attribute(param, "ptype");
    return tokens.empty() ? "" : tokens.front();
}

// What one line can say when choice number `way` is made in each list; `ways` grows to the number of choices.
void collect_said(const xmlNode *parent, size_t way, size_t &ways, std::vector<said> &line,
                  const std::string &word = "")
{
    for (const xmlNode *element : elements_below(parent)) {
        const bool optional = has_option(element, PARAM_OPTION_OPTIONAL);
        if (is_named(element, "BODY")) {
            collect_said(element, way, ways, line, optional ? attribute(element, "name") : "");
            continue;
        }
        const bool selects = has_option(element, PARAM_OPTION_PINDEX);
        if (!has_option(element, PARAM_OPTION_LIST)) {
            line.push_back({attribute(element, "name"), sample(element), word, selects});
            continue;
        }
        const auto choices = elements_below(element);
        ways = std::max(ways, choices.size());
        const xmlNode *choice = choices[way % choices.size()];
        line.push_back({attribute(element, "name"), attribute(choice, "name"), word, selects});
        if (is_named(choice, "PARAM")) line.push_back({attribute(choice, "name"), sample(choice), "", false});
        collect_said(choice, way, ways, line);
    }
}

// The line that the converter prints for the command with these values.
std::string line_of(const entry &command, json_object *arguments)
{
    const apconf::json_ptr message(json_object_new_object());
    json_object *around = message.get();
    for (size_t begin = 0; begin <= command.path.size();) {
        const size_t end = std::min(command.path.find('/', begin), command.path.size());
        const bool last = end == command.path.size();
        json_object *object = last ? arguments : json_object_new_object();
        json_object_object_add(around, command.path.substr(begin, end - begin).c_str(), object);
        around = object;
        begin = end + 1;
    }
    std::string lines = printed([&](FILE *out) { convert_config(tree_root(), message.get(), out); });
    if (!lines.empty()) lines.pop_back();
    lines = lines.substr(lines.rfind('\n') + 1);
    return lines.substr(std::min(lines.find_first_not_of(' '), lines.size()));
}

std::string line_with(const entry &command, const std::vector<said> &values,
                      const std::function<bool(const said &)> &given, bool removal = false)
{
    json_object *arguments = json_object_new_object();
    if (removal) json_object_object_add(arguments, ".OPT", json_object_new_string("no"));
    for (const said &value : values)
        if (given(value))
            json_object_object_add(arguments, value.name.c_str(), json_object_new_string(value.value.c_str()));
    return line_of(command, arguments) + " ";
}

// Calls `check` with each command and with what its lines say, for each choice that a list offers.
void for_each_line(const std::function<void(const entry &, const std::vector<said> &)> &check)
{
    for (const entry &command : described()) {
        if (command.is_package()) continue;
        size_t ways = 1;
        for (size_t way = 0; way < ways; ++way) {
            std::vector<said> values;
            collect_said(command.line, way, ways, values);
            SCOPED_TRACE(command.path + ", choice " + std::to_string(way));
            check(command, values);
        }
    }
}

bool needed(const said &value)
{
    return value.word.empty();
}

TEST(Lines, SayEveryValue)
{
    for_each_line([](const entry &command, const std::vector<said> &values) {
        const std::string line = line_with(command, values, [](const said &) { return true; });
        EXPECT_THAT(line, testing::StartsWith(attribute(command.line, "cli_cmd") + " "));
        EXPECT_THAT(line, Not(HasSubstr("MISSING(")));
        for (const said &value : values) {
            // A choice that is a parameter itself has no word: the parameter's value shows that it was made.
            const bool shown = std::none_of(values.begin(), values.end(), [&](const said &other) {
                return &other != &value && other.name == value.value;
            });
            if (!shown) continue;
            EXPECT_THAT(line, HasSubstr(" " + value.value + " ")) << value.name;
        }
    });
}

TEST(Lines, LeaveOutTheWordsOfWhatIsNotGiven)
{
    for_each_line([](const entry &command, const std::vector<said> &values) {
        const std::string line = line_with(command, values, needed);
        EXPECT_THAT(line, Not(HasSubstr("MISSING(")));
        for (const said &value : values) {
            if (needed(value)) continue;
            EXPECT_THAT(line, Not(HasSubstr(" " + value.word + " "))) << value.name;
        }
    });
}

TEST(Lines, AnnounceWhatMayBeLeftOutByItsWord)
{
    for_each_line([](const entry &command, const std::vector<said> &values) {
        for (const said &one : values) {
            if (needed(one)) continue;
            const std::string line =
                line_with(command, values, [&one](const said &value) { return needed(value) || &value == &one; });
            EXPECT_THAT(line, HasSubstr(" " + one.word + " " + one.value + " "));
            EXPECT_THAT(line, Not(HasSubstr("MISSING(")));
        }
    });
}

TEST(Lines, NameTheEntryThatIsRemoved)
{
    for_each_line([](const entry &command, const std::vector<said> &values) {
        const std::string line = line_with(
            command, values, [](const said &) { return true; }, true);
        EXPECT_THAT(line, testing::StartsWith("no " + attribute(command.line, "cli_cmd") + " "));
        EXPECT_THAT(line, Not(HasSubstr("MISSING(")));
        for (const said &value : values) {
            if (value.selects) {
                EXPECT_THAT(line, HasSubstr(" " + value.value + " ")) << value.name;
            } else if (!needed(value)) {
                EXPECT_THAT(line, Not(HasSubstr(" " + value.word + " "))) << value.name;
            }
        }
    });
}

}  // namespace
