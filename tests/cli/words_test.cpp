// Lines split into words, and values that become one word again.
#include "host/cli/words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace
{

using apconf_host::split_words;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> texts(const std::string &line)
{
    std::vector<std::string> result;
    for (const auto &word : split_words(line).words) result.push_back(word.text);
    return result;
}

TEST(words, blanks_and_tabs_separate_and_columns_count_bytes)
{
    const auto line = split_words("  radio \t0 ");
    ASSERT_EQ(line.words.size(), 2u);
    EXPECT_EQ(line.words[0].text, "radio");
    EXPECT_EQ(line.words[0].column, 2u);
    EXPECT_EQ(line.words[1].column, 9u);
    EXPECT_FALSE(line.ends_in_word);
    EXPECT_TRUE(split_words("radio 0").ends_in_word);
}

TEST(words, quotes_keep_blanks_and_escapes_stand_for_one_character)
{
    EXPECT_THAT(texts(R"(ssid "my \"own\" net\\" x)"), ElementsAre("ssid", "my \"own\" net\\", "x"));
    EXPECT_THAT(texts(R"("\n\r\t\x01\xfF")"), ElementsAre("\n\r\t\x01\xff"));
    EXPECT_THAT(texts(R"(a"b c"d)"), ElementsAre("ab cd"));
    EXPECT_THAT(texts(R"(ssid "")"), ElementsAre("ssid", ""));
    EXPECT_TRUE(split_words(R"("no")").words[0].quoted);
}

TEST(words, comments_and_empty_lines_have_no_words)
{
    for (const char *line : {"", "   ", "! a comment", "  # one more", "\r"})
        EXPECT_THAT(texts(line), IsEmpty()) << line;
    EXPECT_THAT(texts("ssid a!b#c"), ElementsAre("ssid", "a!b#c"));
}

TEST(words, an_open_quote_and_a_bad_escape_say_where)
{
    const auto open = split_words(R"(ssid "my)");
    EXPECT_TRUE(open.open_quote);
    EXPECT_EQ(open.error_column, 5u);
    for (const char *line : {R"(ssid "\q")", R"(ssid "\x0")", R"(ssid "\xgg")", R"(ssid "\x00")", R"(ssid "\)"}) {
        const auto bad = split_words(line);
        EXPECT_FALSE(bad.ok()) << line;
        EXPECT_TRUE(bad.bad_escape) << line;
        EXPECT_EQ(bad.error_column, 6u) << line;
    }
}

TEST(words, only_what_needs_quotes_gets_them)
{
    EXPECT_EQ(apconf_host::quoted("plain-Text_1.5/x:y;'()[]{}"), "plain-Text_1.5/x:y;'()[]{}");
    EXPECT_EQ(apconf_host::quoted(""), "\"\"");
    EXPECT_EQ(apconf_host::quoted("a b"), "\"a b\"");
    EXPECT_EQ(apconf_host::quoted("a|b"), "\"a|b\"");
    EXPECT_EQ(apconf_host::quoted("why?"), "\"why?\"");
    EXPECT_EQ(apconf_host::quoted("!x"), "\"!x\"");
    EXPECT_EQ(apconf_host::quoted("***"), "\"***\"");
    EXPECT_EQ(apconf_host::quoted("\"\\\n\r\t\x7f"), R"("\"\\\n\r\t\x7f")");
}

TEST(words, every_text_without_nul_comes_back)
{
    std::mt19937 source(1);
    for (int i = 0; i < 20000; ++i) {
        std::string text(source() % 20, ' ');
        for (char &c : text) c = static_cast<char>(1 + source() % 255);
        EXPECT_THAT(texts("x " + apconf_host::quoted(text) + " y"), ElementsAre("x", text, "y"));
    }
}

}  // namespace
