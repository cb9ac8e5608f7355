// Messages as command lines: the wording, the marks of what is missing, and messages and files that nobody would write.
#include "apconf/cli_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <libxml/parser.h>
#include <syslog.h>

#include <random>
#include <string>

#include "support/log_capture.h"
#include "support/printed.h"
#include "util/owners.h"

namespace
{

using apconf::json_ptr;
using apconf_test::log_capture;
using apconf_test::printed;
using apconf_test::repeated;
using apconf_test::write_file;
using apconf_test::write_schema;
using testing::ElementsAre;
using testing::IsEmpty;

json_ptr parse(const std::string &text)
{
    return json_ptr(json_tokener_parse(text.c_str()));
}

std::string converted_file(const std::string &path, json_object *message)
{
    return printed([&](FILE *out) { cli_line_convertor(out, message, path.c_str()); });
}

// The lines of {"config": object} by a schema whose config element holds `inner`.
std::string converted(const std::string &inner, const std::string &object)
{
    const json_ptr message = parse("{\"config\":" + object + "}");
    EXPECT_TRUE(message) << object;
    return converted_file(write_schema("<config ntype='package'>" + inner + "</config>"), message.get());
}

// The line of a command a with these parameters and arguments.
std::string line_of(const std::string &params, const std::string &args)
{
    return converted("<a ntype='cmd' cli_cmd='cmd'>" + params + "</a>", "{\"a\":" + args + "}");
}

std::string param(const std::string &attributes, const std::string &inner = "")
{
    return "<PARAM " + attributes + ">" + inner + "</PARAM>";
}

const std::string radio = "<radio ntype='package'><INDEX ntype='cmd' cli_cmd='radio'>" +
                          param("name='radio_id' option='pindex'") + "</INDEX><ssid ntype='cmd' cli_cmd='ssid'>" +
                          param("name='ssid'") + "</ssid><bss ntype='package'><INDEX ntype='cmd' cli_cmd='bss'>" +
                          param("name='wlan_id'") + "</INDEX><hide ntype='cmd' cli_cmd='hide'/></bss></radio>";

TEST(CliLine, WithoutStreamOrMessageNothingHappens)
{
    log_capture log;
    const json_ptr message = parse("{}");
    cli_line_convertor(nullptr, message.get(), "/tmp/absent.xml");
    EXPECT_EQ(converted_file("/tmp/absent.xml", nullptr), "");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(CliLine, AFileThatCannotBeReadIsLogged)
{
    log_capture log;
    const json_ptr message = parse("{\"config\":{}}");
    EXPECT_EQ(converted_file("/tmp/absent.xml", message.get()), "");
    EXPECT_TRUE(
        log.has(LOG_ERR, "cli_line_convertor", "parse xml '/tmp/absent.xml' failed, please check xml syntax rules"));
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST(CliLine, AMessageOrFileWithoutConfigFails)
{
    log_capture log;
    for (const char *text : {"{}", "{\"Config\":{}}", "{\"config\":null}", "[]", "\"config\"", "1", "true"}) {
        const json_ptr message = parse(text);
        log.clear();
        EXPECT_EQ(converted_file(write_schema("<config/>"), message.get()), "") << text;
        EXPECT_THAT(log.texts(), ElementsAre("convert json message to cli line failed")) << text;
        EXPECT_EQ(log.lines()[0].priority, LOG_ERR);
        EXPECT_EQ(log.lines()[0].function, "cli_line_convertor");
    }
    const json_ptr message = parse("{\"config\":{}}");
    log.clear();
    EXPECT_EQ(converted_file(write_schema("text<x><config/></x>"), message.get()), "");
    EXPECT_THAT(log.texts(), ElementsAre("convert json message to cli line failed"));
}

TEST(CliLine, ConvertingADocumentAnswersWhetherBothHaveConfig)
{
    const json_ptr message = parse("{\"config\":{\"a\":{}}}");
    const json_ptr without = parse("{}");
    const char text[] = "<t><config><a ntype='cmd' cli_cmd='words'/></config><empty/></t>";
    const apconf::xml_doc document(xmlReadMemory(text, sizeof text - 1, "t", nullptr, 0));
    ASSERT_TRUE(document);
    xmlNode *root = xmlDocGetRootElement(document.get());
    EXPECT_EQ(printed([&](FILE *out) { EXPECT_EQ(convert_config(root, message.get(), out), 0); }), "words\n");
    EXPECT_EQ(printed([&](FILE *out) {
                  EXPECT_EQ(convert_config(root, without.get(), out), -1);
                  EXPECT_EQ(convert_config(root, nullptr, out), -1);
                  EXPECT_EQ(convert_config(nullptr, message.get(), out), -1);
                  EXPECT_EQ(convert_config(root->children, message.get(), out), -1);
              }),
              "");
    EXPECT_EQ(convert_config(root, message.get(), nullptr), -1);
}

TEST(CliLine, APackagePrintsItsIndexLineAndItsCommandsOneSpaceFurtherIn)
{
    EXPECT_EQ(converted(radio, R"({"radio":{"ssid":{"ssid":"x"},"INDEX":{"radio_id":"0"},"bss":{"INDEX":{"wlan_id":"7"},
                                   "hide":{}}}})"),
              "radio 0\n ssid x\n bss 7\n  hide\n");
}

TEST(CliLine, ConfigItselfHasNoLine)
{
    EXPECT_EQ(converted("<INDEX ntype='cmd' cli_cmd='config'/>", R"({"INDEX":{}})"), "");
}

TEST(CliLine, KeysAreTakenInTheMessagesOrder)
{
    EXPECT_EQ(converted("<a ntype='cmd' cli_cmd='a'/><b ntype='cmd' cli_cmd='b'/>", R"({"b":{},"a":{}})"), "b\na\n");
}

TEST(CliLine, UnknownKeysAreSkippedWithoutAMessage)
{
    log_capture log;
    EXPECT_EQ(converted("<a ntype='cmd' cli_cmd='a'/>", R"({"MODULE":"m","x":{},"a":{},"A":{},"":{}})"), "a\n");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(CliLine, AnArrayPrintsALinePerElement)
{
    EXPECT_EQ(line_of(param("name='p'"), R"([{"p":"1"},null,{"p":"2"},{}])"), "cmd 1\ncmd 2\ncmd MISSING(p)\n");
    EXPECT_EQ(line_of(param("name='p'"), "[]"), "");
    EXPECT_EQ(
        converted(radio, R"({"radio":[{"INDEX":{"radio_id":"0"},"ssid":{"ssid":"x"}},{"INDEX":{"radio_id":"1"}}]})"),
        "radio 0\n ssid x\nradio 1\n");
}

TEST(CliLine, ANullValuePrintsTheWordsAlone)
{
    EXPECT_EQ(line_of(param("name='p'"), "null"), "cmd\n");
    EXPECT_EQ(line_of(param("name='p'"), "{}"), "cmd MISSING(p)\n");
}

TEST(CliLine, WhatLacksAKindOrWordsIsSkipped)
{
    log_capture log;
    EXPECT_EQ(converted("<no_kind cli_cmd='x'/><no_words ntype='cmd'/><no_index ntype='package' cli_cmd='x'>"
                        "<a ntype='cmd' cli_cmd='a'/></no_index>",
                        R"({"no_kind":{},"no_words":{},"no_index":{"a":{}}})"),
              "");
    EXPECT_THAT(log.texts(), ElementsAre("skip unuseful node 'no_kind'", "skip unuseful node 'no_words'",
                                         "no index cmd in package 'no_index'"));
    EXPECT_TRUE(log.has(LOG_DEBUG, "convert_command", "skip unuseful node 'no_kind'"));
    EXPECT_TRUE(log.has(LOG_ERR, "convert_command", "no index cmd in package 'no_index'"));
}

TEST(CliLine, AnIndexWithoutWordsLeavesThePackagesCommands)
{
    log_capture log;
    EXPECT_EQ(converted("<p ntype='package'><INDEX ntype='cmd'/><a ntype='cmd' cli_cmd='a'/></p>", R"({"p":{"a":{}}})"),
              " a\n");
    EXPECT_THAT(log.texts(), ElementsAre("skip unuseful node 'INDEX'"));
}

TEST(CliLine, AnyKindButPackageIsACommand)
{
    EXPECT_EQ(converted("<a ntype='index' cli_cmd='a'/><b ntype='' cli_cmd='b'/>", R"({"a":{},"b":{}})"), "a\nb\n");
}

TEST(CliLine, APackageWithoutIndexValueNamesOnlyItsWords)
{
    EXPECT_EQ(converted(radio, R"({"radio":{"ssid":{"ssid":"x"}}})"), "radio\n ssid x\n");
    EXPECT_EQ(converted(radio, R"({"radio":{"INDEX":{}}})"), "radio MISSING(radio_id)\n");
    EXPECT_EQ(converted(radio, R"({"radio":null})"), "radio\n");
}

TEST(CliLine, ANoLineNamesOnlyWhatPicksTheInstance)
{
    const std::string params = param("name='a'") + param("name='i' option='pindex'") + "<BODY name='word'>" +
                               param("name='j' option='pindex'") + "</BODY>" + param("name='k' option='pindex'");
    EXPECT_EQ(line_of(params, R"({".OPT":"no","a":"1","i":"2","j":"3","k":"4"})"), "no cmd 2 4\n");
    EXPECT_EQ(line_of(params, R"({"a":"1","i":"2","j":"3","k":"4"})"), "cmd 1 2 word 3 4\n");
    EXPECT_EQ(line_of(params, R"({".OPT":"no"})"), "no cmd MISSING(i)\n");
}

TEST(CliLine, OnlyTheWordNoMakesANoLine)
{
    for (const char *option : {"\"noall\"", "\"No\"", "\"\"", "null", "{}", "1"})
        EXPECT_EQ(line_of("", std::string("{\".OPT\":") + option + "}"), "cmd\n") << option;
}

TEST(CliLine, ANoLineDoesNotMakeTheNextOneNo)
{
    EXPECT_EQ(line_of(param("name='p'"), R"([{".OPT":"no"},{"p":"1"}])"), "no cmd\ncmd 1\n");
}

TEST(CliLine, AnIndexInNoModeNamesAllItsParameters)
{
    EXPECT_EQ(converted(radio, R"({"radio":{"INDEX":{".OPT":"no","radio_id":"0"},
                                   "bss":{"INDEX":{".OPT":"no","wlan_id":"1"}}}})"),
              "no radio 0\n no bss 1\n");
}

TEST(CliLine, ParametersAreTakenInTheSchemasOrder)
{
    EXPECT_EQ(line_of(param("name='b'") + param("name='a'"), R"({"a":"1","b":"2"})"), "cmd 2 1\n");
}

TEST(CliLine, OtherNodesAndNamelessElementsArePassedOver)
{
    EXPECT_EQ(
        line_of("text<!-- remark --><![CDATA[data]]><?pi?>" + param("ptype='UINT'", param("name='a'")) + "<BODY>" +
                    param("name='a'") + "</BODY><group name='a'>" + param("name='a'") + "</group>" + param("name='a'"),
                R"({"a":"1"})"),
        "cmd 1\n");
}

TEST(CliLine, AnOptionalParameterWithoutValueIsPassedOver)
{
    EXPECT_EQ(
        line_of(param("name='a' option='optional'", param("name='b'")) + param("name='c'"), R"({"b":"2","c":"3"})"),
        "cmd 3\n");
    EXPECT_EQ(line_of(param("name='a' option='optional'") + param("name='c'"), R"({"a":null,"c":"3"})"), "cmd 3\n");
}

TEST(CliLine, AMissingValueStopsItsListButNotTheCallers)
{
    EXPECT_EQ(line_of(param("name='a'") + param("name='b'"), R"({"b":"2"})"), "cmd MISSING(a)\n");
    EXPECT_EQ(line_of("<BODY name='w'>" + param("name='a'") + param("name='b'") + "</BODY>" + param("name='c'"),
                      R"({"b":"2","c":"3"})"),
              "cmd w MISSING(a) 3\n");
    EXPECT_EQ(line_of(param("name='a'", param("name='x'") + param("name='b'")) + param("name='c'"),
                      R"({"a":"1","b":"2","c":"3"})"),
              "cmd 1 MISSING(x) 3\n");
}

TEST(CliLine, AParametersChildrenFollowIt)
{
    EXPECT_EQ(line_of(param("name='a'", param("name='b'", param("name='c'"))) + param("name='d'"),
                      R"({"a":"1","b":"2","c":"3","d":"4"})"),
              "cmd 1 2 3 4\n");
}

TEST(CliLine, ABodyPrintsItsName)
{
    EXPECT_EQ(line_of("<BODY name='key'>" + param("name='k'") + "</BODY>", R"({"k":"x"})"), "cmd key x\n");
    EXPECT_EQ(line_of("<BODY name='key'/>", "{}"), "cmd key\n");
}

TEST(CliLine, AnOptionalBodyPrintsNothingUnlessAValueFollows)
{
    const std::string params = "<BODY name='key' option='optional'>" + param("name='k' option='optional'") + "</BODY>";
    EXPECT_EQ(line_of(params, "{}"), "cmd\n");
    EXPECT_EQ(line_of(params, R"({"k":"x"})"), "cmd key x\n");
}

TEST(CliLine, APendingBodyIsPrintedOnceAndTheLaterOneWins)
{
    const std::string params = "<BODY name='one' option='optional'/><BODY name='two' option='optional'>" +
                               param("name='a'") + param("name='b'") + "</BODY>";
    EXPECT_EQ(line_of(params, R"({"a":"1","b":"2"})"), "cmd two 1 2\n");
}

TEST(CliLine, APendingBodyIsPrintedBeforeAMissingChoiceOfAList)
{
    EXPECT_EQ(line_of("<BODY name='via' option='optional'/>" + param("name='t' option='list'", param("name='ip'")),
                      R"({"t":"ip"})"),
              "cmd via MISSING(ip)\n");
}

TEST(CliLine, APendingBodyWaitsForALaterCommandOfThePackageObject)
{
    const std::string schema = "<a ntype='cmd' cli_cmd='a'><BODY name='key' option='optional'>" +
                               param("name='k' option='optional'") + "</BODY></a><b ntype='cmd' cli_cmd='b'>" +
                               param("name='v'") + "</b><c ntype='cmd' cli_cmd='c'><BODY name='word'/>" +
                               param("name='v'") + "</c>" + radio;
    EXPECT_EQ(converted(schema, R"({"a":{},"b":[{"v":"1"},{"v":"2"}]})"), "a\nb key 1\nb 2\n");
    EXPECT_EQ(converted(schema, R"({"a":{},"c":{"v":"1"}})"), "a\nc word 1\n") << "another BODY clears it";
    EXPECT_EQ(converted(schema, R"({"a":{},"radio":{"INDEX":{"radio_id":"0"},"ssid":{"ssid":"x"}},"b":{"v":"1"}})"),
              "a\nradio 0\n ssid x\nb key 1\n")
        << "other package objects and index lines do not see it";
    EXPECT_EQ(converted(schema, R"({"a":{},"c":{".OPT":"no","v":"1"},"b":{"v":"1"}})"), "a\nno c\nb key 1\n")
        << "the words of a no line leave it alone";
}

TEST(CliLine, AListPrintsTheChosenBody)
{
    const std::string params =
        param("name='t' option='list'", "<BODY name='psk'>" + param("name='k'") + "</BODY><BODY name='open'/>" +
                                            param("name='ip'", param("name='m'")) + "<group name='g'>" +
                                            param("name='k'") + "</group><BODY name='ip'/>") +
        param("name='z' option='optional'");
    EXPECT_EQ(line_of(params, R"({"t":"psk","k":"secret","z":"1"})"), "cmd psk secret 1\n");
    EXPECT_EQ(line_of(params, R"({"t":"psk"})"), "cmd psk MISSING(k)\n");
    EXPECT_EQ(line_of(params, R"({"t":"open","k":"secret"})"), "cmd open\n");
    EXPECT_EQ(line_of(params, R"({"t":"ip","ip":"192.0.2.1","m":"24"})"), "cmd 192.0.2.1 24\n");
    EXPECT_EQ(line_of(params, R"({"t":"ip","z":"1"})"), "cmd MISSING(ip) 1\n") << "a missing choice stops nothing";
    EXPECT_EQ(line_of(params, R"({"t":"g","k":"secret","z":"1"})"), "cmd 1\n") << "another element prints nothing";
}

TEST(CliLine, AnUnknownChoiceDropsItsLineAlone)
{
    const std::string params = param("name='t' option='list'", "<BODY name='x'/>") + param("name='z'");
    EXPECT_EQ(line_of(params, R"([{"t":"y","z":"1"},{"t":"x","z":"2"},{"t":"","z":"3"},{"z":"4"}])"),
              "cmd x 2\ncmd MISSING(t)\n");
}

TEST(CliLine, AListInANoLine)
{
    EXPECT_EQ(line_of(param("name='t' option='list,pindex'", "<BODY name='x'>" + param("name='a'") + "</BODY>"),
                      R"({".OPT":"no","t":"x","a":"1"})"),
              "no cmd x\n");
}

TEST(CliLine, ValuesOfOtherTypesAreTheirJsonText)
{
    EXPECT_EQ(
        line_of(param("name='p'"), R"([{"p":1},{"p":true},{"p":1.5},{"p":[ 1, "2" ]},{"p":{ "q":null }},{"p":""}])"),
        "cmd 1\ncmd true\ncmd 1.5\ncmd [ 1, \"2\" ]\ncmd { \"q\": null }\ncmd \n");
}

TEST(CliLine, ValuesAreNoFormats)
{
    EXPECT_EQ(line_of(param("name='p'"), R"({"p":"%s%n%1000000d"})"), "cmd %s%n%1000000d\n");
}

TEST(CliLine, CommandValuesThatAreNoObjectsHaveNoArguments)
{
    for (const char *value : {"1", "\"x\"", "true", "1.5", "[\"x\"]", "[[{\"p\":\"1\"}]]"})
        EXPECT_EQ(line_of(param("name='p'"), value), "cmd MISSING(p)\n") << value;
}

TEST(CliLine, PackageValuesThatAreNoObjectsAreRefused)
{
    log_capture log;
    EXPECT_EQ(converted(radio, R"({"radio":[1,"x",[{}],true,{"INDEX":"x","bss":5}]})"), "radio MISSING(radio_id)\n");
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("package 'radio' value isn't an object but int",
                                                "package 'radio' value isn't an object but "
                                                "string",
                                                "package 'radio' value isn't an object but array",
                                                "package 'radio' value isn't an object but boolean",
                                                "package 'bss' value isn't an object but int"));
    for (const char *value : {"1", "\"x\"", "[{}]", "true"}) EXPECT_EQ(converted(radio, value), "") << value;
}

TEST(CliLine, LongLinesComeOutWhole)
{
    for (size_t length : {1000u, 1023u, 1024u, 1025u, 70000u, 1000000u}) {
        const std::string value(length, 'v');
        EXPECT_EQ(line_of(param("name='p'") + param("name='q'"), "{\"p\":\"" + value + "\",\"q\":\"end\"}"),
                  "cmd " + value + " end\n");
    }
    EXPECT_EQ(line_of(repeated(50000, param("name='p'")), R"({"p":"12345"})"),
              "cmd" + repeated(50000, " 12345") + "\n");
}

TEST(CliLine, ALineBeyondAllBoundsIsLoggedAndLeftOut)
{
    log_capture log;
    const std::string value(5000000, 'v');
    EXPECT_EQ(line_of(param("name='p'"), "[{\"p\":\"" + value + "\"},{\"p\":\"short\"}]"), "cmd short\n");
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("line is too long after 3 characters, skip it"));
}

TEST(CliLine, PackagesMayNestDeeply)
{
    constexpr int depth = 240;
    const std::string schema =
        repeated(depth, "<p ntype='package'><INDEX ntype='cmd' cli_cmd='p'/>") + repeated(depth, "</p>");
    json_ptr object(json_object_new_object());
    for (int i = 0; i < depth; i++) {
        json_ptr outer(json_object_new_object());
        json_object_object_add(outer.get(), "p", object.release());
        object = std::move(outer);
    }
    const json_ptr message(json_object_new_object());
    json_object_object_add(message.get(), "config", object.release());
    std::string expected;
    for (size_t i = 0; i < depth; i++) expected += std::string(i, ' ') + "p\n";
    EXPECT_EQ(converted_file(write_schema("<config>" + schema + "</config>"), message.get()), expected);
}

TEST(CliLine, EveryKindOfNodeIsTakenInItsStride)
{
    const std::string path = write_file(
        "/tmp/schema.xml",
        "<!DOCTYPE t [<!ENTITY e '<PARAM name=\"p\">&f;</PARAM>'><!ENTITY f 'text'><!ENTITY w 'word'>]>"
        "<t><![CDATA[data]]>&e;<config><![CDATA[data]]>&e;<?pi?><a ntype='cmd' cli_cmd='say'><![CDATA[data]]>&e;"
        "<PARAM name='p' option='list'><![CDATA[data]]>&e;<BODY name='&w;'/></PARAM></a></config></t>");
    const json_ptr message = parse(R"({"config":{"a":{"p":"word"}}})");
    EXPECT_EQ(converted_file(path, message.get()), "say word\n");
}

TEST(CliLine, AnIndexThatSaysItIsAPackageIsOne)
{
    log_capture log;
    EXPECT_EQ(converted("<p ntype='package'><INDEX ntype='package' cli_cmd='x'/><a ntype='cmd' cli_cmd='a'/></p>",
                        R"({"p":{"INDEX":{"INDEX":{}},"a":{}}})"),
              " a\n");
    EXPECT_THAT(log.texts(), ElementsAre("no index cmd in package 'INDEX'"));
}

// Random JSON under the names of the schema.
std::string random_json(std::mt19937 &random, int depth)
{
    static const char *const names[] = {"radio",    "bss",     "INDEX", "ssid",  "hide",
                                        "radio_id", "wlan_id", ".OPT",  "config"};
    static const char *const values[] = {"null", "1", "\"no\"", "\"x\"", "true", "{}", "[]", "-1.5", "\"\""};
    const auto choice = random() % (depth > 0 ? 4 : 1);
    if (choice == 0) return values[random() % std::size(values)];
    std::string text;
    const auto count = random() % 4;
    for (auto i = count; i > 0; i--) {
        if (i < count) text += ",";
        if (choice != 1) text += std::string("\"") + names[random() % std::size(names)] + "\":";
        text += random_json(random, depth - 1);
    }
    return choice == 1 ? "[" + text + "]" : "{" + text + "}";
}

TEST(CliLine, AnyJsonEndsWithWholeLines)
{
    std::mt19937 random(20240607);
    const std::string path = write_schema("<config ntype='package'>" + radio + "</config>");
    for (int i = 0; i < 1000; i++) {
        const std::string text = "{\"config\":{\"radio\":" + random_json(random, 5) + "}}";
        const json_ptr message = parse(text);
        const std::string lines = converted_file(path, message.get());
        EXPECT_TRUE(lines.empty() || lines.ends_with("\n")) << text;
    }
}

}  // namespace
