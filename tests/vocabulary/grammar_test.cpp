// The RELAX NG grammar takes the default tree file and refuses copies with a mistake in them.
#include <gtest/gtest.h>
#include <libxml/relaxng.h>

#include <memory>
#include <regex>
#include <set>

#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;

void ignore_message(void *, const char *, ...) {}

class grammar
{
public:
    grammar() : parser_(xmlRelaxNGNewParserCtxt(grammar_path)), schema_(xmlRelaxNGParse(parser_.get())) {}

    bool loaded() const { return schema_ != nullptr; }

    bool accepts(xmlDoc *document) const
    {
        const std::unique_ptr<xmlRelaxNGValidCtxt, decltype(&xmlRelaxNGFreeValidCtxt)> context(
            xmlRelaxNGNewValidCtxt(schema_.get()), xmlRelaxNGFreeValidCtxt);
        xmlRelaxNGSetValidErrors(context.get(), ignore_message, ignore_message, nullptr);
        return xmlRelaxNGValidateDoc(context.get(), document) == 0;
    }

private:
    struct release {
        void operator()(xmlRelaxNGParserCtxt *parser) const { xmlRelaxNGFreeParserCtxt(parser); }
        void operator()(xmlRelaxNG *schema) const { xmlRelaxNGFree(schema); }
    };
    std::unique_ptr<xmlRelaxNGParserCtxt, release> parser_;
    std::unique_ptr<xmlRelaxNG, release> schema_;
};

TEST(Grammar, TakesTheTreeFile)
{
    const grammar grammar;
    ASSERT_TRUE(grammar.loaded());
    const auto document = parsed(contents(tree_path));
    EXPECT_TRUE(grammar.accepts(document.get()));
}

struct mistake {
    const char *what;
    const char *from;  // the first place where it stands is changed
    const char *to;
};

void PrintTo(const mistake &mistake, std::ostream *out)
{
    *out << mistake.what;
}

class GrammarRefuses : public testing::TestWithParam<mistake>
{
};

TEST_P(GrammarRefuses, ATreeFileWith)
{
    std::string xml = contents(tree_path);
    const std::string from = GetParam().from;
    const size_t place = xml.find(from, xml.find("<config_cmd_tree>"));
    ASSERT_NE(place, std::string::npos) << from;
    xml.replace(place, from.size(), GetParam().to);
    const grammar grammar;
    ASSERT_TRUE(grammar.loaded());
    const auto document = parsed(xml);
    EXPECT_FALSE(grammar.accepts(document.get()));
}

const mistake mistakes[] = {
    {"unknown_attribute", "<shutdown_cmd ", "<shutdown_cmd colour=\"red\" "},
    {"unknown_kind_of_node", "<shutdown_cmd ntype=\"cmd\"", "<shutdown_cmd ntype=\"command\""},
    {"command_that_is_only_entered", "<shutdown_cmd ntype=\"cmd\"", "<shutdown_cmd ntype=\"node\""},
    {"command_without_words", " cli_cmd=\"shutdown\"", ""},
    {"words_in_capitals", "cli_cmd=\"ssid\"", "cli_cmd=\"SSID\""},
    {"command_without_help", " help=\"HELP_RADIO_SHUTDOWN\"", ""},
    {"parameter_without_help", " help=\"HELP_SSID\"", ""},
    {"help_key_of_another_form", "\"HELP_SSID\"", "\"ssid\""},
    {"package_without_index", "<INDEX ntype=\"node\" cli_cmd=\"wmm\" help=\"HELP_WMM\"/>", ""},
    {"package_without_key_that_can_be_removed", "<INDEX ntype=\"node\" cli_cmd=\"wmm\"",
     "<INDEX ntype=\"cmd\" cli_cmd=\"wmm\""},
    {"index_key_that_does_not_select", "max=\"15\" option=\"pindex\"", "max=\"15\""},
    {"no_entries_at_all", "repeat=\"8\"", "repeat=\"0\""},
    {"parameter_without_type", " ptype=\"STATUS\"", ""},
    {"type_that_does_not_exist", "ptype=\"STATUS\"", "ptype=\"STATE\""},
    {"limit_that_is_no_number", "max=\"64\"", "max=\"many\""},
    {"limit_of_an_address", "ptype=\"IPV4\"", "ptype=\"IPV4\" max=\"9\""},
    {"text_of_no_length", "name=\"ssid\" ptype=\"STRING\" min=\"1\"", "name=\"ssid\" ptype=\"STRING\" min=\"0\""},
    {"default_that_is_empty", "default=\"enable\"", "default=\"\""},
    {"source_that_is_blank", "source=\"IEEE 802.11-2020, A-MPDU Parameters field\"", "source=\" \""},
    {"misspelt_option", "option=\"pindex\"", "option=\"pinddex\""},
    {"optional_parameter_without_word", "ptype=\"CHANNEL\" help", "ptype=\"CHANNEL\" option=\"optional\" help"},
    {"optional_word_before_a_needed_parameter", "min=\"1\" max=\"4094\" option=\"optional\"", "min=\"1\" max=\"4094\""},
    {"word_before_an_optional_parameter", "<BODY name=\"vlan\" option=\"optional\"", "<BODY name=\"vlan\""},
    {"optional_word_that_selects_alone", "<BODY name=\"port\" option=\"optional,pindex\"",
     "<BODY name=\"port\" option=\"optional\""},
    {"needed_parameter_behind_an_optional_one", "</switchport_cmd>",
     "<PARAM name=\"mtu\" ptype=\"UINT\" help=\"HELP_MTU\"/></switchport_cmd>"},
    {"list_without_choices",
     "<BODY name=\"server\" help=\"HELP_DHCP_TYPE_SERVER\"/>\n          <BODY name=\"relay\" "
     "help=\"HELP_DHCP_TYPE_RELAY\"/>",
     ""},
    {"choices_without_list", "ptype=\"SWITCHPORT_TYPE\" default=\"access\" option=\"list\"",
     "ptype=\"SWITCHPORT_TYPE\" default=\"access\""},
    {"list_of_numbers", "ptype=\"SWITCHPORT_TYPE\" default=\"access\"", "ptype=\"UINT\""},
    {"choice_without_name", "<BODY name=\"access\" ", "<BODY "},
    {"word_with_a_blank", "<BODY name=\"vlan\" ", "<BODY name=\"vlan id\" "},
    {"text_between_elements", "<shutdown_cmd ", "text<shutdown_cmd "},
};

INSTANTIATE_TEST_SUITE_P(Mistake, GrammarRefuses, testing::ValuesIn(mistakes),
                         [](const auto &tested) { return std::string(tested.param.what); });

TEST(Grammar, KnowsEachType)
{
    const std::string text = contents(grammar_path);
    const std::regex value("<value>([A-Z][A-Z0-9_]*)</value>");
    std::multiset<std::string> known;
    for (std::sregex_iterator match(text.begin(), text.end(), value), end; match != end; ++match)
        known.insert((*match)[1]);
    std::multiset<std::string> types;
    for (const ptype_record &type : param_types) types.insert(type.name);
    EXPECT_EQ(known, types);
}

}  // namespace
