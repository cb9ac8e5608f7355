// The listing of a command-tree file: every form of line, to the byte, and files that nobody would write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <string>

#include "apconf/help.h"
#include "support/log_capture.h"
#include "support/printed.h"

namespace
{

using apconf_test::log_capture;
using apconf_test::printed;
using apconf_test::repeated;
using apconf_test::write_file;
using apconf_test::write_schema;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string listed_file(const std::string &path)
{
    return printed([&](FILE *out) { cli_list(out, path.c_str()); });
}

std::string listed(const std::string &inner)
{
    return listed_file(write_schema(inner));
}

// The line of a command that has no "no" form.
std::string line_of(const std::string &params)
{
    return listed("<a ntype='set' cli_cmd='cmd'>" + params + "</a>");
}

std::string no_and_set_lines_of(const std::string &params)
{
    return listed("<a ntype='cmd' cli_cmd='cmd'>" + params + "</a>");
}

std::string param(const std::string &attributes, const std::string &inner = "")
{
    return "<PARAM " + attributes + ">" + inner + "</PARAM>";
}

std::string type_line(const std::string &attributes)
{
    return line_of(param("name='p' " + attributes));
}

TEST(Listing, WithoutAStreamNothingHappens)
{
    log_capture log;
    cli_list(nullptr, "/tmp/absent.xml");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Listing, AFileThatCannotBeReadIsLogged)
{
    log_capture log;
    EXPECT_EQ(listed_file("/tmp/absent.xml"), "");
    EXPECT_TRUE(log.has(LOG_ERR, "cli_list", "parse xml '/tmp/absent.xml' failed, please check xml syntax rules"));
    for (const char *text : {"", "<a>", "no xml", "<!-- nothing -->", "<a/><b/>"}) {
        log.clear();
        EXPECT_EQ(listed_file(write_file("/tmp/bad.xml", text)), "") << text;
        EXPECT_THAT(log.texts(), ElementsAre("parse xml '/tmp/bad.xml' failed, please check xml syntax rules"));
    }
    log.clear();
    EXPECT_EQ(printed([](FILE *out) { cli_list(out, nullptr); }), "");
    EXPECT_EQ(log.texts().size(), 1u);
}

TEST(Listing, ACommandHasANoLineAndALine)
{
    EXPECT_EQ(no_and_set_lines_of(""), "no cmd\ncmd\n");
}

TEST(Listing, AnotherKindThanCmdHasNoNoLine)
{
    EXPECT_EQ(line_of(""), "cmd\n");
}

TEST(Listing, APackagePrintsItsIndexAndItsCommandsOneSpaceFurtherIn)
{
    EXPECT_EQ(listed("<config ntype='package'><INDEX ntype='set' cli_cmd='config'/>"
                     "<radio ntype='package'><INDEX ntype='cmd' cli_cmd='radio'>" +
                     param("name='id' ptype='UINT' min='0' max='1' option='pindex'") +
                     "</INDEX><channel ntype='cmd' cli_cmd='channel'/></radio>"
                     "<host ntype='set' cli_cmd='host name'/></config><end ntype='set' cli_cmd='end'/>"),
              "config\n"
              " no radio <0-1>\n"
              " radio <0-1>\n"
              "  no channel\n"
              "  channel\n"
              " host name\n"
              "end\n");
}

TEST(Listing, TheRootElementItselfIsNotLookedAt)
{
    EXPECT_EQ(listed_file(write_file("/tmp/schema.xml", "<config ntype='cmd' cli_cmd='config'/>")), "");
    EXPECT_EQ(listed_file(write_file("/tmp/schema.xml", "<x><c ntype='set' cli_cmd='c'/></x>")), "c\n");
}

TEST(Listing, IndexAndBodyElementsAreNoCommands)
{
    log_capture log;
    EXPECT_EQ(listed("<INDEX ntype='cmd' cli_cmd='index'/><BODY ntype='cmd' cli_cmd='body'/>"), "");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Listing, WhatLacksAKindOrWordsIsSkipped)
{
    log_capture log;
    EXPECT_EQ(listed("<no_kind cli_cmd='x'/>"
                     "<no_words ntype='cmd'/>"
                     "<no_index ntype='package' cli_cmd='x'><c ntype='cmd' cli_cmd='c'/></no_index>"
                     "<index_kind ntype='package'><INDEX cli_cmd='x'/><c ntype='cmd' cli_cmd='c'/></index_kind>"
                     "<index_words ntype='package' cli_cmd='x'><INDEX ntype='cmd'/><c ntype='cmd' cli_cmd='c'/>"
                     "</index_words>"),
              "");
    EXPECT_THAT(log.texts(), ElementsAre("skip unuseful node 'no_kind'", "skip unuseful node 'no_words'",
                                         "no index cmd in package 'no_index'", "skip unuseful node 'INDEX'",
                                         "skip unuseful node 'INDEX'"));
    EXPECT_TRUE(log.has(LOG_DEBUG, "list_package", "skip unuseful node 'no_kind'"));
    EXPECT_TRUE(log.has(LOG_ERR, "list_package", "no index cmd in package 'no_index'"));
}

TEST(Listing, EachTypeOfTheTableHasItsTokenAndDefaultLimits)
{
    EXPECT_EQ(type_line("ptype='SINT'"), "cmd <-2147483648-2147483647>\n");
    EXPECT_EQ(type_line("ptype='UINT8'"), "cmd <0-255>\n");
    EXPECT_EQ(type_line("ptype='UINT16'"), "cmd <0-65535>\n");
    EXPECT_EQ(type_line("ptype='UINT'"), "cmd <0-2147483647>\n");
    EXPECT_EQ(type_line("ptype='STRING'"), "cmd STRING1-1024\n");
    EXPECT_EQ(type_line("ptype='WORD'"), "cmd WORD1-1024\n");
    EXPECT_EQ(type_line("ptype='HEX_STR'"), "cmd HEX_STR1-1024\n");
    EXPECT_EQ(type_line("ptype='BINARY'"), "cmd BINARY1-1024\n");
    EXPECT_EQ(type_line("ptype='IPV4'"), "cmd A.B.C.D\n");
    EXPECT_EQ(type_line("ptype='MAC_ADDR'"), "cmd HH:HH:HH:HH:HH:HH\n");
    EXPECT_EQ(type_line("ptype='STATUS'"), "cmd (enable|disable)\n");
    EXPECT_EQ(type_line("ptype='TIME_HHMMSS'"), "cmd HH:MM:SS\n");
    EXPECT_EQ(type_line("ptype='IPV4_MASK'"), "cmd A.B.C.D/M\n");
}

TEST(Listing, LimitsComeFromTheElementEachForItself)
{
    EXPECT_EQ(type_line("ptype='UINT8' min='3' max='7'"), "cmd <3-7>\n");
    EXPECT_EQ(type_line("ptype='UINT8' min='3'"), "cmd <3-255>\n");
    EXPECT_EQ(type_line("ptype='UINT8' max='7'"), "cmd <0-7>\n");
    EXPECT_EQ(type_line("ptype='UINT8' min='' max='no number'"), "cmd <-no number>\n");
    EXPECT_EQ(type_line("ptype='IPV4' min='1' max='2'"), "cmd A.B.C.D\n");
}

TEST(Listing, ATypeOutsideTheTableIsNamed)
{
    EXPECT_EQ(type_line("ptype='CHANNEL'"), "cmd @CHANNEL\n");
    EXPECT_EQ(type_line("ptype='uint8' min='1'"), "cmd @uint8\n");
    EXPECT_EQ(type_line("ptype='%s%n%n'"), "cmd @%s%n%n\n");
}

TEST(Listing, AnOptionalParameterStandsInBraces)
{
    EXPECT_EQ(type_line("ptype='UINT8' option='optional'"), "cmd {<0-255>}\n");
}

TEST(Listing, AnOptionalParametersBraceClosesAfterItsChildren)
{
    EXPECT_EQ(line_of(param("name='a' ptype='UINT8' option='optional'", param("name='b' ptype='IPV4'"))),
              "cmd {<0-255> A.B.C.D}\n");
}

TEST(Listing, AHiddenParameterIsAbsentWithAllBelowIt)
{
    EXPECT_EQ(line_of(param("name='a' ptype='UINT8' option='hidden'", param("name='b' ptype='IPV4'")) +
                      param("name='c' ptype='MAC_ADDR'")),
              "cmd HH:HH:HH:HH:HH:HH\n");
    EXPECT_EQ(no_and_set_lines_of(param("name='a' ptype='UINT8' option='hidden,pindex'")), "no cmd\ncmd\n");
}

TEST(Listing, TheNoLineListsOnlyWhatPicksTheInstance)
{
    EXPECT_EQ(no_and_set_lines_of(param("name='a' ptype='UINT8'", param("name='b' ptype='IPV4' option='pindex'")) +
                                  param("name='c' ptype='MAC_ADDR' option='pindex'") + "<BODY name='word'/>"),
              "no cmd HH:HH:HH:HH:HH:HH\n"
              "cmd <0-255> A.B.C.D HH:HH:HH:HH:HH:HH word\n");
}

TEST(Listing, OptionWordsMayStandAmongBlanks)
{
    EXPECT_EQ(no_and_set_lines_of(param("name='a' ptype='UINT8' option=' optional , pindex '")),
              "no cmd {<0-255>}\ncmd {<0-255>}\n");
    EXPECT_EQ(no_and_set_lines_of(param("name='a' ptype='UINT8' option='optional pindex'")), "no cmd\ncmd {<0-255>}\n")
        << "a piece ends at its first inner blank";
}

TEST(Listing, AParameterWithoutTypeSuppressesItsWholeLine)
{
    EXPECT_EQ(listed("<a ntype='cmd' cli_cmd='a'>" + param("name='x' ptype='UINT8'") + param("name='y'") +
                     "</a><b ntype='cmd' cli_cmd='b'/>"),
              "no a\nno b\nb\n");
}

TEST(Listing, WhatHasNoNameIsNotListed)
{
    EXPECT_EQ(line_of(param("ptype='UINT8'", param("name='a' ptype='IPV4'")) + "<BODY/><other/>"), "cmd\n");
}

TEST(Listing, ABodyPrintsItsNameAndItsChildren)
{
    EXPECT_EQ(line_of("<BODY name='key'>" + param("name='a' ptype='UINT8'") + "</BODY>"), "cmd key <0-255>\n");
    EXPECT_EQ(line_of("<BODY name='key' option='optional'>" + param("name='a' ptype='UINT8'") + "</BODY>"),
              "cmd {key <0-255>}\n");
}

TEST(Listing, AnotherElementWithANamePrintsABlankAndItsChildren)
{
    EXPECT_EQ(line_of("<group name='g'>" + param("name='a' ptype='UINT8'") + "</group>"), "cmd  <0-255>\n");
    EXPECT_EQ(line_of("<group name='g' option='optional,list'>" + param("name='a' ptype='UINT8'") + "</group>"),
              "cmd { <0-255>}\n");
}

TEST(Listing, AListShowsItsChoices)
{
    EXPECT_EQ(line_of(param("name='a' option='list'", "<BODY name='one'/><BODY name='two'/>")), "cmd (one|two)\n")
        << "a list needs no ptype";
    EXPECT_EQ(line_of(param("name='a' ptype='X' option='list'", "<BODY name='off'/>" + param("name='b' ptype='IPV4'") +
                                                                    param("name='c' ptype='UINT8' option='optional'"))),
              "cmd (off| A.B.C.D| {<0-255>})\n");
}

TEST(Listing, WhatCannotBeChosenIsNoChoice)
{
    EXPECT_EQ(line_of(param("name='a' option='list'",
                            "<BODY/><group name='g'/>" + param("ptype='IPV4'") + "<BODY name='one'/>text<!-- -->")),
              "cmd (one)\n");
}

TEST(Listing, AListWithoutChoicesPrintsOnlyItsBlankOrBrace)
{
    EXPECT_EQ(line_of(param("name='a' option='list'")), "cmd \n");
    EXPECT_EQ(line_of(param("name='a' option='list,optional'", "<group name='g'/>")), "cmd {\n");
}

TEST(Listing, AChoicesChildrenFollowIt)
{
    EXPECT_EQ(line_of(param("name='a' option='list'",
                            "<BODY name='psk'>" + param("name='k' ptype='STRING'") + "</BODY><BODY name='none'/>")),
              "cmd (psk STRING1-1024|none)\n");
}

TEST(Listing, AParameterAmongTheChoicesListsItsChildrenTwice)
{
    EXPECT_EQ(line_of(param("name='a' option='list'", param("name='b' ptype='IPV4'", param("name='c' ptype='UINT8'")))),
              "cmd ( A.B.C.D <0-255> <0-255>)\n");
    EXPECT_EQ(line_of(param("name='a' option='list'",
                            param("name='b' option='list'", "<BODY name='x'>" + param("name='c' ptype='UINT8'") +
                                                                "</BODY>" + param("name='d' ptype='IPV4'")))),
              "cmd ( (x <0-255>| A.B.C.D) x <0-255> A.B.C.D)\n");
}

TEST(Listing, AHiddenChoiceLeavesItsMarkAndItsChildren)
{
    EXPECT_EQ(line_of(param("name='a' option='list'",
                            param("name='b' ptype='IPV4' option='hidden'", param("name='c' ptype='UINT8'")) +
                                "<BODY name='x' option='hidden'/>")),
              "cmd ( <0-255>|x)\n");
}

TEST(Listing, AnOptionalListsBraceStaysOpen)
{
    EXPECT_EQ(line_of(param("name='a' option='list,optional'", "<BODY name='on'/><BODY name='off'/>") +
                      param("name='b' ptype='UINT8'")),
              "cmd {(on|off) <0-255>\n");
}

TEST(Listing, AListInANoLine)
{
    EXPECT_EQ(
        no_and_set_lines_of(param("name='a' option='list,pindex'", "<BODY name='x'>" + param("name='b' ptype='UINT8'") +
                                                                       "</BODY>" + param("name='c' ptype='IPV4'"))),
        "no cmd (x|)\ncmd (x <0-255>| A.B.C.D)\n");
}

TEST(Listing, ALineWithoutTypeInAChoiceIsSuppressed)
{
    EXPECT_EQ(line_of(param("name='a' option='list'", "<BODY name='x'>" + param("name='b'") + "</BODY>")), "");
}

TEST(Listing, LongLinesComeOutWhole)
{
    for (int count : {1, 200, 1000, 20000}) {
        EXPECT_EQ(line_of(repeated(count, param("name='a' ptype='UINT8'"))),
                  "cmd" + repeated(count, " <0-255>") + "\n");
    }
    const std::string words(200000, 'w');
    EXPECT_EQ(listed("<a ntype='cmd' cli_cmd='" + words + "'/>"), "no " + words + "\n" + words + "\n");
}

TEST(Listing, ALineWithoutEndIsLoggedAndLeftOut)
{
    // Each level doubles what is below it.
    constexpr int depth = 60;
    log_capture log;
    EXPECT_EQ(listed("<a ntype='set' cli_cmd='a'>" + repeated(depth, "<PARAM name='p' option='list'>") +
                     repeated(depth, "</PARAM>") + "</a><b ntype='set' cli_cmd='b'/>"),
              "b\n");
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0].priority, LOG_ERR);
    EXPECT_THAT(log.lines()[0].text, HasSubstr("line is too long"));
}

TEST(Listing, PackagesMayNestDeeply)
{
    constexpr int depth = 250;
    std::string expected;
    for (int i = 0; i < depth; i++) expected += std::string(static_cast<size_t>(i), ' ') + "p\n";
    EXPECT_EQ(listed(repeated(depth, "<p ntype='package'><INDEX ntype='set' cli_cmd='p'/>") + repeated(depth, "</p>")),
              expected);
}

TEST(Listing, EveryKindOfNodeIsTakenInItsStride)
{
    log_capture log;
    const std::string path = write_file("/tmp/schema.xml",
                                        "<?xml version='1.0'?><!DOCTYPE tree [<!ENTITY e '<x name=\"x\">&f;</x>'>"
                                        "<!ENTITY f 'text'><!ENTITY w 'word'>]><?pi before?>"
                                        "<tree><![CDATA[data]]><!-- remark --><?pi inside?>&e;text"
                                        "<a ntype='cmd' cli_cmd='say &w;'><![CDATA[data]]>&e;text<!-- remark -->"
                                        "<PARAM name='p' ptype='X' option='list'><![CDATA[data]]>&e;<?pi?>"
                                        "<BODY name='&w;'><![CDATA[data]]></BODY></PARAM></a></tree>");
    EXPECT_EQ(listed_file(path), "no say \nsay  (word)\n") << "an attribute counts up to its first reference";
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Listing, EmptyAttributesArePresent)
{
    EXPECT_EQ(listed("<a ntype='' cli_cmd=''>" + param("name='' ptype=''") + "<BODY name=''/></a>"), " @ \n");
}

}  // namespace
