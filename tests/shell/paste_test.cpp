// Pasted configuration text, whose indentation says where each line belongs.
#include "host/cli/lines.h"
#include "host/random_message.h"
#include "shell/session_test.h"

namespace
{

using apconf_host::json_ptr;
using apconf_test::text_of;

class pasted_text : public apconf_test::session_test
{
};

TEST_F(pasted_text, indentation_decides_between_packages_that_know_the_same_words)
{
    const std::string text = "radio 0\n bss 0\n  ssid lobby\n shutdown\nhostname hall\n";
    EXPECT_EQ(paste(text), "");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n shutdown\nhostname hall\n");
}

TEST_F(pasted_text, a_line_without_indentation_belongs_where_the_text_began)
{
    execute("radio 0");
    EXPECT_EQ(paste("bss 0\n ssid lobby\nshutdown\n"), "");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n shutdown\n");
}

TEST_F(pasted_text, what_is_typed_behind_it_belongs_to_the_innermost_package)
{
    paste("radio 0\n bss 0\n  ssid lobby\n");
    execute("shutdown");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n  shutdown\n");
}

TEST_F(pasted_text, can_begin_in_the_middle)
{
    paste("radio 0\nbss 0");
    EXPECT_EQ(paste("   ssid lobby\n  auth-open-wpa2\n   wpa2 8021x ccmp"), "");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n  auth-open-wpa2\n   wpa2 8021x ccmp\n");
}

TEST_F(pasted_text, may_leave_its_packages_in_words)
{
    EXPECT_EQ(paste("radio 0\n bss 0\n  ssid lobby\n  exit\n txpower 5\n exit\nhostname hall"), "");
    EXPECT_EQ(session_->prompt(), "apconf*> ");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n txpower 5\nhostname hall\n");
}

TEST_F(pasted_text, without_indentation_reads_as_typed)
{
    EXPECT_EQ(paste("radio 0\nbss 0\nssid lobby\nshutdown\nexit\nshutdown\nend\nhostname hall"), "");
    EXPECT_EQ(changes(), "radio 0\n bss 0\n  ssid lobby\n  shutdown\n shutdown\nhostname hall\n");
}

TEST_F(pasted_text, a_configuration_as_lines_gives_the_same_batch)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        apconf_host::release_configuration();
        apconf_test::random_message random(seed, 5 + seed % 40);
        apconf_host::outcome outcome;
        apconf_host::apply_message(random.make().get(), outcome);
        const json_ptr running(apconf_host::running_configuration());
        const json_ptr said = apconf_host::tidied(running.get());
        const auto lines = apconf_host::to_lines(*vocabulary_, said.get());
        if (!lines.left_out.empty()) continue;
        execute("end");
        execute("discard");
        ASSERT_EQ(paste(lines.text), "") << seed;
        execute("commit");
        ASSERT_EQ(access_point_.batches.back(), text_of(said.get())) << seed << "\n" << lines.text;
    }
    EXPECT_GT(access_point_.batches.size(), 20u);
}

}  // namespace
