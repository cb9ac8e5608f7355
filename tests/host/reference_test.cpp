// The command reference is made anew by its program, which also finds where a file differs from what it would write.
#include <sys/wait.h>

#include <filesystem>
#include <fstream>

#include "host/tool_process.h"

namespace
{

namespace fs = std::filesystem;
using apconf_test::content;

class reference : public apconf_test::tool
{
protected:
    void SetUp() override
    {
        tool::SetUp();
        fs::copy_file(APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt", "/etc/cmd_tree_help.txt",
                      fs::copy_options::overwrite_existing);
        ASSERT_EQ(run("--write /tmp/commands.md"), 0);
    }

    // Its exit status; what it says is in /tmp/said.
    static int run(const std::string &arguments)
    {
        const int status = system((APCONF_REFERENCE " " + arguments + " >/tmp/said 2>&1").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
};

TEST_F(reference, agrees_with_what_it_has_written)
{
    EXPECT_EQ(run("--check /tmp/commands.md"), 0);
    EXPECT_EQ(content("/tmp/said"), "");
}

TEST_F(reference, a_difference_is_shown_with_its_line_and_the_way_out)
{
    std::string page = content("/tmp/commands.md");
    page.replace(page.find("reference"), 9, "catalogue");
    std::ofstream("/tmp/commands.md") << page;
    EXPECT_EQ(run("--check /tmp/commands.md"), 1);
    EXPECT_EQ(content("/tmp/said"),
              "/tmp/commands.md:1: is not what the vocabulary says\n"
              "  it is:     # Command catalogue\n"
              "  should be: # Command reference\n"
              "'cmake --build --preset release --target reference' writes it anew.\n");
    fs::resize_file("/tmp/commands.md", page.size() - 10);
    EXPECT_EQ(run("--check /tmp/commands.md"), 1);
    EXPECT_EQ(run("--check /tmp/none.md"), 1);
    EXPECT_EQ(run("--chek /tmp/commands.md"), 2);
}

}  // namespace
