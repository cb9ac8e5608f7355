// The default vocabulary as it reads on the command line: its listing, its help and its start configuration, compared
// with tests/golden/ byte for byte. After a wanted change to etc/, run the program once with APCONF_UPDATE_GOLDEN=1 in
// the environment: it writes the files anew, and the difference is what is to be reviewed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json-c/json.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "apconf/cli_line.h"
#include "apconf/help.h"
#include "support/log_capture.h"
#include "support/printed.h"
#include "util/owners.h"

namespace
{

using apconf_test::log_capture;
using apconf_test::printed;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char schema_path[] = APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml";

std::string contents(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void expect_golden(const std::string &name, const std::string &text)
{
    const std::string path = APCONF_SOURCE_DIR "/tests/golden/" + name;
    if (getenv("APCONF_UPDATE_GOLDEN")) apconf_test::write_file(path, text);
    EXPECT_EQ(text, contents(path)) << "if the change is wanted, run again with APCONF_UPDATE_GOLDEN=1";
}

TEST(DefaultVocabulary, Listing)
{
    log_capture log;
    expect_golden("listing.txt", printed([](FILE *out) { cli_list(out, schema_path); }));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(DefaultVocabulary, Help)
{
    log_capture log;
    std::filesystem::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                               std::filesystem::copy_options::overwrite_existing);
    expect_golden("help.txt", printed([](FILE *out) { help_dump(out, schema_path); }));
    EXPECT_THAT(log.lines(), IsEmpty());
    std::filesystem::remove("/etc/cmd_tree_help.txt");
}

TEST(DefaultVocabulary, StartConfigurationAsLines)
{
    log_capture log;
    const apconf::json_ptr message(json_object_from_file(APCONF_SOURCE_DIR "/etc/start_config.json"));
    ASSERT_TRUE(message);
    const std::string lines = printed([&](FILE *out) { cli_line_convertor(out, message.get(), schema_path); });
    expect_golden("cli_lines.txt", lines);
    EXPECT_THAT(lines, Not(HasSubstr("MISSING")));
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
