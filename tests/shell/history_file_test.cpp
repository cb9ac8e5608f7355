// The file of earlier lines: complete, private, bounded, and never in the way.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "host/shell/history_file.h"
#include "host/tool_process.h"

namespace
{

namespace fs = std::filesystem;
using apconf_host::history_file;
using apconf_test::content;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *path = "/tmp/history/lines";

class history : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::remove_all("/tmp/history");
        fs::create_directory("/tmp/history");
    }
    static mode_t mode()
    {
        struct stat status = {};
        EXPECT_EQ(stat(path, &status), 0);
        return status.st_mode & 0777;
    }
};

TEST_F(history, keeps_lines_of_several_sessions)
{
    const history_file one(path);
    const history_file other(path);
    EXPECT_THAT(one.load(), IsEmpty());
    one.append("first");
    other.append("second");
    one.append("third");
    EXPECT_THAT(history_file(path).load(), ElementsAre("first", "second", "third"));
    EXPECT_EQ(mode(), 0600u);
}

TEST_F(history, makes_a_file_private_that_was_not)
{
    std::ofstream(path) << "first\n";
    chmod(path, 0644);
    history_file(path).append("second");
    EXPECT_EQ(mode(), 0600u);
    EXPECT_STREQ(content(path).c_str(), "first\nsecond\n");
}

TEST_F(history, is_cut_down_to_its_last_lines)
{
    {
        std::ofstream file(path);
        for (size_t i = 1; i <= history_file::most_lines + 5; ++i) file << i << "\n";
    }
    const auto lines = history_file(path).load();
    EXPECT_EQ(lines.size(), history_file::most_lines);
    EXPECT_EQ(lines.front(), "6");
    EXPECT_TRUE(content(path).starts_with("6\n7\n"));
    EXPECT_EQ(mode(), 0600u);
    EXPECT_EQ(history_file(path).load(), lines);
    EXPECT_EQ(std::distance(fs::directory_iterator("/tmp/history"), {}), 1) << "nothing else is left behind";
}

TEST_F(history, is_no_reason_to_fail)
{
    fs::create_directory(path);
    EXPECT_THAT(history_file(path).load(), IsEmpty());
    history_file(path).append("lost");
    const history_file nowhere("/tmp/history/none/lines");
    nowhere.append("lost");
    EXPECT_THAT(nowhere.load(), IsEmpty());
    const history_file none("");
    none.append("lost");
    EXPECT_THAT(none.load(), IsEmpty());
    mkfifo("/tmp/history/pipe", 0600);
    const history_file pipe("/tmp/history/pipe");
    pipe.append("lost");
    EXPECT_THAT(pipe.load(), IsEmpty()) << "and does not wait for anybody";
}

TEST_F(history, belongs_to_the_user)
{
    setenv("HOME", "/tmp/history", 1);
    history_file::of_user().append("first");
    EXPECT_STREQ(content("/tmp/history/.apconf_history").c_str(), "first\n");
    unsetenv("HOME");
    history_file::of_user().append("lost");
    EXPECT_THAT(history_file::of_user().load(), IsEmpty());
}

}  // namespace
