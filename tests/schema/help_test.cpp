// The help map, the dump of help keys, and the dump of command paths.
#include "apconf/help.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "apconf/packages.h"
#include "support/cmd_nodes.h"
#include "support/log_capture.h"
#include "support/printed.h"
#include "util/owners.h"

namespace
{

using apconf::unique_fd;
using apconf_test::command;
using apconf_test::log_capture;
using apconf_test::package;
using apconf_test::printed;
using apconf_test::repeated;
using apconf_test::write_file;
using apconf_test::write_schema;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char help_path[] = "/etc/cmd_tree_help.txt";

const std::string fixed_keys =
    "HELP_COMMIT\nHELP_NO\nHELP_END\nHELP_EXIT\nHELP_SHOW\nHELP_SHOW_RUNNING_CONFIG\nHELP_SHOW_CONFIGUREHELP_PIPE\n"
    "HELP_PIPE_FILTER_TYPE\nHELP_PIPE_FILTER_INCLUDE\nHELP_PIPE_FILTER_EXCLUDE\nHELP_PIPE_REGEXPR\n";

class HelpMap : public testing::Test
{
protected:
    void TearDown() override
    {
        free_help_map();
        std::filesystem::remove(help_path);
    }

    static void load(const std::string &text) { load_help_map(write_file("/tmp/help.txt", text).c_str()); }

    // The map as "key=text", "key" when there is no text.
    static std::vector<std::string> entries()
    {
        std::vector<std::string> result;
        for (int i = 0; i < help_count; i++)
            result.push_back(help_map[i].key + (help_map[i].text ? std::string("=") + help_map[i].text : ""));
        return result;
    }

    // What is printed after the fixed keys.
    static std::string dumped(const std::string &inner, const std::string &help = "")
    {
        write_file(help_path, help);
        const std::string path = write_schema(inner);
        const std::string text = printed([&](FILE *out) { help_dump(out, path.c_str()); });
        EXPECT_TRUE(text.starts_with(fixed_keys)) << text;
        return text.substr(std::min(text.size(), fixed_keys.size()));
    }

    log_capture log;
};

TEST_F(HelpMap, BlanksAroundKeyAndSignAndBeforeTheTextAreNotKept)
{
    load(" \t HELP_A \t = \t a text \t\n");
    EXPECT_THAT(entries(), ElementsAre("HELP_A=a text \t")) << "blanks after the text are kept";
}

TEST_F(HelpMap, LinesWithoutSignOrKeyAreIgnored)
{
    load("remark\n\n   \n= text\n \t = text\n==\nHELP_A=1\n");
    EXPECT_THAT(entries(), ElementsAre("HELP_A=1"));
}

TEST_F(HelpMap, TheFirstSignParts)
{
    load("HELP_A=b=c\nHELP B = = \nHELP_C==\n");
    EXPECT_THAT(entries(), ElementsAre("HELP_A=b=c", "HELP B== ", "HELP_C=="));
}

TEST_F(HelpMap, AnEmptyTextIsNone)
{
    load("HELP_A=\nHELP_B=  \t \nHELP_C=\r\nHELP_D=");
    EXPECT_THAT(entries(), ElementsAre("HELP_A", "HELP_B", "HELP_C", "HELP_D"));
    for (int i = 0; i < help_count; i++) EXPECT_EQ(help_map[i].text, nullptr);
}

TEST_F(HelpMap, OneNewlineIsTakenOff)
{
    load("HELP_A=a\r\nHELP_B=no newline at the end");
    EXPECT_THAT(entries(), ElementsAre("HELP_A=a\r", "HELP_B=no newline at the end"));
}

TEST_F(HelpMap, LoadingAppends)
{
    load("HELP_A=1\n");
    load("HELP_B=2\n");
    load_help_map("/tmp/absent");
    load_help_map("/");
    load_help_map(nullptr);
    EXPECT_THAT(entries(), ElementsAre("HELP_A=1", "HELP_B=2"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(HelpMap, GrowsByAHundredEntries)
{
    EXPECT_EQ(total_help_count, 0);
    load("A=1\n");
    EXPECT_EQ(total_help_count, 100);
    load(repeated(99, "A=1\n"));
    EXPECT_EQ(help_count, 100);
    EXPECT_EQ(total_help_count, 100);
    load("A=1\n");
    EXPECT_EQ(help_count, 101);
    EXPECT_EQ(total_help_count, 200);
    for (int i = help_count; i < total_help_count; i++) {
        EXPECT_EQ(help_map[i].key, nullptr);
        EXPECT_EQ(help_map[i].text, nullptr);
        EXPECT_EQ(help_map[i].printed, 0);
    }
}

TEST_F(HelpMap, AMapThatCannotGrowStopsTheLoad)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the sanitizer stops the process instead";
#endif
    struct rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    const struct rlimit low = {rlim_t{1} << 31, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &low), 0);
    help_count = total_help_count = INT_MAX - 100;
    load("HELP_A=1\nHELP_B=2\n");
    EXPECT_EQ(setrlimit(RLIMIT_AS, &before), 0);
    EXPECT_THAT(log.texts(), ElementsAre("realloc 2147483647 help map buffer failed"));
    EXPECT_TRUE(log.has(LOG_ERR, "realloc_help_map_buf", log.texts()[0]));
    EXPECT_EQ(help_map, nullptr);
    EXPECT_EQ(help_count, INT_MAX - 100);
    help_count = total_help_count = 0;
}

TEST_F(HelpMap, ALineBeyondTheBufferIsReadInPieces)
{
    // 511 characters a piece: the first ends inside the text, the second is an entry of its own.
    const std::string first = "HELP_A=" + std::string(504, 'x');
    load(first + "HELP_B= y\nHELP_C=z\n");
    EXPECT_THAT(entries(), ElementsAre(first, "HELP_B=y", "HELP_C=z"));
}

TEST_F(HelpMap, BytesOfAnyKindAreRead)
{
    load("HELP_A=1\0=2\nHELP\0_B=3\n\xff\xfe=\x80\n"s);
    EXPECT_THAT(entries(), ElementsAre("HELP_A=1", "\xff\xfe=\x80"));
}

TEST_F(HelpMap, FreeingEmptiesTheMap)
{
    load("HELP_A=1\nHELP_B=\n");
    free_help_map();
    EXPECT_EQ(help_map, nullptr);
    EXPECT_EQ(help_count, 0);
    EXPECT_EQ(total_help_count, 0);
    free_help_map();
    load("HELP_C=3\n");
    EXPECT_THAT(entries(), ElementsAre("HELP_C=3"));
}

TEST_F(HelpMap, AnUnknownKeyIsItsOwnText)
{
    const char *key = "HELP_A";
    EXPECT_EQ(get_help_string(key), key) << "the map is empty";
    load("HELP_B=2\n");
    EXPECT_EQ(get_help_string(key), key);
    EXPECT_STREQ(get_help_string("HELP_B"), "2");
    EXPECT_EQ(get_help_string(nullptr), nullptr);
}

TEST_F(HelpMap, TheFirstEntryWithATextAnswers)
{
    load("HELP_A=\nHELP_A=1\nHELP_A=2\nHELP_B=\n");
    EXPECT_EQ(help_count, 4);
    EXPECT_STREQ(get_help_string("HELP_A"), "1");
    const char *key = "HELP_B";
    EXPECT_EQ(get_help_string(key), key);
}

TEST_F(HelpMap, TheDumpPrintsTheFixedKeysFirst)
{
    EXPECT_EQ(dumped(""), "");
    write_file(help_path, "HELP_SHOW_CONFIGUREHELP_PIPE = one key\nHELP_SHOW_CONFIGURE = not printed\nHELP_NO=\n");
    const std::string path = write_schema("");
    EXPECT_EQ(printed([&](FILE *out) { help_dump(out, path.c_str()); }),
              "HELP_COMMIT\nHELP_NO\nHELP_END\nHELP_EXIT\nHELP_SHOW\nHELP_SHOW_RUNNING_CONFIG\n"
              "HELP_SHOW_CONFIGUREHELP_PIPE     = one key\nHELP_PIPE_FILTER_TYPE\nHELP_PIPE_FILTER_INCLUDE\n"
              "HELP_PIPE_FILTER_EXCLUDE\nHELP_PIPE_REGEXPR\n");
}

TEST_F(HelpMap, TheDumpWalksAllElementsBelowTheRootInDocumentOrder)
{
    EXPECT_EQ(dumped("<a help='K1'><b help='K2'><c><d help='K3'/></c></b></a>text<!-- --><e help='K4'/>",
                     "K4=four\nK2=\nK1=one\n"),
              "K1                               = one\nK2\nK3\nK4                               = four\n");
    write_file("/tmp/schema.xml", "<tree help='ROOT'/>");
    EXPECT_EQ(printed([](FILE *out) { help_dump(out, "/tmp/schema.xml"); }), fixed_keys);
}

TEST_F(HelpMap, AKeyIsPrintedOnce)
{
    EXPECT_EQ(dumped("<a help='K1'/><b help='K2'/><c help='K1'/><d help='K2'/><e help='HELP_NO'/>", "K1=one\nK1=two\n"),
              "K1                               = one\nK2\n");
}

TEST_F(HelpMap, KeysLongerThanTheirColumnAreNotCut)
{
    const std::string key(40, 'K');
    EXPECT_EQ(dumped("<a help='" + key + "'/>", key + "=text\n"), key + " = text\n");
    const std::string huge(100000, 'H');
    EXPECT_EQ(dumped("<a help='" + huge + "'/>"), huge + "\n");
}

TEST_F(HelpMap, ManyUnknownKeysMakeTheMapGrow)
{
    std::string elements, expected;
    for (int i = 0; i < 350; i++) {
        elements += "<a help='K" + std::to_string(i) + "'/>";
        expected += "K" + std::to_string(i) + "\n";
    }
    EXPECT_EQ(dumped(elements + elements), expected);
}

TEST_F(HelpMap, TheDumpAddsToWhatIsLoadedAndReleasesAll)
{
    load("K1=loaded before\n");
    EXPECT_EQ(dumped("<a help='K1'/>", "K1=one\n"), "K1                               = loaded before\n");
    EXPECT_EQ(help_map, nullptr);
    EXPECT_EQ(help_count, 0);
    EXPECT_EQ(total_help_count, 0);
}

TEST_F(HelpMap, ADumpThatFailsReleasesTheMapToo)
{
    write_file(help_path, "K1=one\n");
    EXPECT_EQ(printed([](FILE *out) { help_dump(out, "/tmp/absent.xml"); }), "");
    EXPECT_TRUE(log.has(LOG_ERR, "help_dump", "parse xml '/tmp/absent.xml' failed, please check xml syntax rules"));
    EXPECT_EQ(help_map, nullptr);
    EXPECT_EQ(total_help_count, 0);
}

TEST_F(HelpMap, WithoutAStreamTheDumpTouchesNothing)
{
    load("K1=one\n");
    help_dump(nullptr, "/tmp/absent.xml");
    EXPECT_THAT(entries(), ElementsAre("K1=one"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(HelpMap, TheDumpTakesEveryKindOfNodeInItsStride)
{
    write_file(help_path, "");
    write_file("/tmp/schema.xml",
               "<!DOCTYPE t [<!ENTITY e '<x help=\"K9\">&f;</x>'><!ENTITY f 'text'>]>"
               "<t><![CDATA[data]]>&e;<?pi?><a help=''/><b help='K1'>&e;<![CDATA[data]]></b></t>");
    EXPECT_EQ(printed([](FILE *out) { help_dump(out, "/tmp/schema.xml"); }), fixed_keys + "\nK1\n");
}

// A socket keeps the writes apart.
class CommandPaths : public testing::Test
{
protected:
    void SetUp() override
    {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0, ends), 0);
        near.reset(ends[0]);
        far.reset(ends[1]);
    }

    std::vector<std::string> received() const
    {
        std::vector<std::string> result;
        char text[4096];
        for (ssize_t size; (size = read(far.get(), text, sizeof text)) > 0;)
            result.emplace_back(text, static_cast<size_t>(size));
        return result;
    }

    // A chain of packages p, each inside the one before.
    struct cmd_node *chain(int depth)
    {
        struct cmd_node *below = nullptr;
        for (int i = 0; i < depth; i++) {
            tables.push_back({package("p", below), {}});
            below = tables.back().nodes;
        }
        return below;
    }

    struct chain_table {
        struct cmd_node nodes[2];
    };
    std::deque<chain_table> tables;
    unique_fd near, far;
    log_capture log;
};

TEST_F(CommandPaths, EachPathIsOneWriteWithNothingBetween)
{
    struct cmd_node bss_table[] = {command("ssid_cmd"), {}};
    struct cmd_node radio_table[] = {command("channel_cmd"), package("bss", bss_table), command("last_cmd"), {}};
    struct cmd_node config_table[] = {package("radio", radio_table), command("host_cmd"), {}};
    struct cmd_node root_table[] = {package("config", config_table), {}};
    struct cmd_node root = package("root", root_table);
    dump_cpath(&root, 0, near.get());
    EXPECT_THAT(received(), ElementsAre("/config", "/config/radio", "/config/radio/channel_cmd", "/config/radio/bss",
                                        "/config/radio/bss/ssid_cmd", "/config/radio/last_cmd", "/config/host_cmd"));
}

TEST_F(CommandPaths, WhatHasNoChildrenHasNoPaths)
{
    struct cmd_node leaf = command("leaf");
    struct cmd_node empty_table[] = {{}};
    struct cmd_node empty = package("empty", empty_table);
    dump_cpath(nullptr, 0, near.get());
    dump_cpath(&leaf, 0, near.get());
    dump_cpath(&empty, 0, near.get());
    EXPECT_THAT(received(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CommandPaths, TheVectorTakesWhatFitsAndEndsTheBranchThere)
{
    struct cmd_node table[] = {package("deep", chain(40)), command("next_cmd"), {}};
    struct cmd_node root = package("root", table);
    dump_cpath(&root, 0, near.get());
    const auto paths = received();
    ASSERT_EQ(paths.size(), 33u);
    EXPECT_EQ(paths[31], "/deep" + repeated(31, "/p")) << "all 64 entries";
    EXPECT_EQ(paths[32], "/next_cmd") << "the other branches go on";
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("command 'p' is nested too deep, skip what is below it"));
}

TEST_F(CommandPaths, ThirtyOneLevelsFit)
{
    struct cmd_node root = package("root", chain(31));
    dump_cpath(&root, 0, near.get());
    EXPECT_EQ(received().size(), 31u);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CommandPaths, ADepthOutsideTheVectorIsRefused)
{
    struct cmd_node table[] = {command("a"), {}};
    struct cmd_node root = package("root", table);
    for (int depth : {-1, INT_MIN, CMDVEC_COUNT - 1, int{CMDVEC_COUNT}, INT_MAX}) dump_cpath(&root, depth, near.get());
    EXPECT_THAT(received(), IsEmpty());
    EXPECT_EQ(log.texts(LOG_ERR).size(), 5u);
}

TEST_F(CommandPaths, AFailedWriteEndsTheBranch)
{
    struct cmd_node table[] = {command("a"), command("b"), {}};
    struct cmd_node root = package("root", table);
    dump_cpath(&root, 0, -1);
    EXPECT_THAT(log.texts(LOG_ERR), ElementsAre("write path of command 'a' failed: Bad file descriptor"));
}

TEST_F(CommandPaths, EveryRecordOfTheVocabularyHasItsPath)
{
    struct cmd_node root = package("root", lib_pkg_root);
    FILE *file = tmpfile();
    ASSERT_NE(file, nullptr);
    dump_cpath(&root, 0, fileno(file));
    EXPECT_THAT(log.lines(), IsEmpty());
    std::string text(static_cast<size_t>(lseek(fileno(file), 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(fileno(file), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    fclose(file);
    EXPECT_TRUE(text.starts_with("/config/config/radio/config/radio/shutdown_cmd/config/radio/ampdu_cmd"));
    EXPECT_TRUE(text.ends_with("/config/sync_sta_cmd")) << text.substr(text.size() - 60);
}

}  // namespace
