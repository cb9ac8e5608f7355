// STRING, HEX_STR and BINARY: which characters they take, their length ranges, and the sizes of the buffers they need.
#include "ptype/converters.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char letters_and_digits[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

// The characters that stand alone as a valid text of the type.
std::string accepted_characters(ptype_to_value_fn *convert)
{
    std::string accepted;
    for (int code = 1; code < 256; ++code) {
        const char text[] = {static_cast<char>(code), '\0'};
        if (convert(text, nullptr, nullptr) == 0) accepted += text;
    }
    return accepted;
}

TEST(Texts, TakeTheCharactersOfTheirType)
{
    log_capture log;
    std::string expected = letters_and_digits;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(accepted_characters(STRING_to_ptype).size(), 255u);
    EXPECT_EQ(accepted_characters(HEX_STR_to_ptype), expected);
    EXPECT_EQ(accepted_characters(BINARY_to_ptype), "01");
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Texts, TheValueIsTheCallersOwnText)
{
    log_capture log;
    const char *string = "any text: \xC3\xA4 {}", *hex = "xyz", *binary = "0110", *empty = "";
    EXPECT_EQ(to_value<const char *>(STRING_to_ptype, string), string);
    EXPECT_EQ(to_value<const char *>(HEX_STR_to_ptype, hex), hex);
    EXPECT_EQ(to_value<const char *>(HEX_STR_to_ptype, letters_and_digits), letters_and_digits);
    EXPECT_EQ(to_value<const char *>(BINARY_to_ptype, binary), binary);
    for (auto *convert : {STRING_to_ptype, HEX_STR_to_ptype, BINARY_to_ptype})
        EXPECT_EQ(to_value<const char *>(convert, empty), empty);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Texts, AForbiddenCharacterAnywhereIsRefusedSilently)
{
    log_capture log;
    const length_range range = {1, 2};
    for (const char *text : {"ab-c", "-abc", "abc-", "a b", "a\nb", "ab:cd", "\xC3\xA4", "abcdef."}) {
        EXPECT_EQ(to_value<const char *>(HEX_STR_to_ptype, text), std::nullopt) << text;
        EXPECT_EQ(to_value<const char *>(HEX_STR_to_ptype, text, &range), std::nullopt) << text;
    }
    for (const char *text : {"2", "012", "a01", "01 ", " 01"}) {
        EXPECT_EQ(to_value<const char *>(BINARY_to_ptype, text), std::nullopt) << text;
        EXPECT_EQ(to_value<const char *>(BINARY_to_ptype, text, &range), std::nullopt) << text;
    }
    EXPECT_THAT(take_lines(log), IsEmpty());
}

void expect_length_range(ptype_to_value_fn *convert, const char *function)
{
    log_capture log;
    const length_range range = {2, 4};
    for (const char *text : {"01", "010", "0101"}) EXPECT_EQ(to_value<const char *>(convert, text, &range), text);
    EXPECT_THAT(take_lines(log), IsEmpty());
    EXPECT_EQ(to_value<const char *>(convert, "0", &range), std::nullopt);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, "OUT OF RANGE: value:1, min:2, max:4")));
    EXPECT_EQ(to_value<const char *>(convert, "01010", &range), std::nullopt);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, "OUT OF RANGE: value:5, min:2, max:4")));
    EXPECT_EQ(to_value<const char *>(convert, "", &range), std::nullopt);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, "OUT OF RANGE: value:0, min:2, max:4")));
    const length_range wide = {1, 4294967295};
    EXPECT_NE(to_value<const char *>(convert, "0", &wide), std::nullopt);
    EXPECT_EQ(to_value<const char *>(convert, "", &wide), std::nullopt);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, "OUT OF RANGE: value:0, min:1, max:-1")));
}

TEST(Texts, LengthsAreCheckedAgainstAGivenRange)
{
    expect_length_range(STRING_to_ptype, "STRING_to_ptype");
    expect_length_range(HEX_STR_to_ptype, "HEX_STR_to_ptype");
    expect_length_range(BINARY_to_ptype, "BINARY_to_ptype");
}

// `needed` is the smallest buffer that takes the ten characters; below it the answer is `needed` - 1.
void expect_buffer_rule(ptype_to_string_fn *convert, size_t needed)
{
    const char *text = "0101010101";
    for (size_t size = 0; size < needed; ++size) {
        const printed output = print(convert, text, size);
        EXPECT_EQ(output.result, static_cast<int>(needed) - 1) << size;
        EXPECT_FALSE(output.written) << size;
    }
    const printed output = print(convert, text, needed);
    EXPECT_EQ(output.result, 0);
    EXPECT_EQ(output.text, text);
}

TEST(Texts, ABufferThatIsTooSmallIsAnsweredWithTheMeasuredLength)
{
    log_capture log;
    expect_buffer_rule(STRING_to_string, 11);
    expect_buffer_rule(HEX_STR_to_string, 12);
    expect_buffer_rule(BINARY_to_string, 12);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Texts, AnEmptyTextFollowsTheSameRule)
{
    const char *text = "";
    const printed nothing = print(STRING_to_string, text, 0);
    EXPECT_EQ(nothing.result, 0);
    const printed string = print(STRING_to_string, text, 1);
    EXPECT_EQ(string.result, 0);
    EXPECT_TRUE(string.written);
    EXPECT_EQ(print(HEX_STR_to_string, text, 0).result, 1);
    EXPECT_EQ(print(HEX_STR_to_string, text, 1).result, 1);
    EXPECT_EQ(print(HEX_STR_to_string, text, 2).result, 0);
}

TEST(Texts, TheRestOfTheBufferIsFilledWithZeros)
{
    const char *text = "ab";
    for (auto *convert : {STRING_to_string, HEX_STR_to_string}) {
        char buffer[16];
        memset(buffer, '#', sizeof buffer);
        ASSERT_EQ(convert(&text, buffer, 12, nullptr), 0);
        EXPECT_EQ(std::string(buffer, 12), std::string("ab\0\0\0\0\0\0\0\0\0\0", 12));
        EXPECT_EQ(std::string(buffer + 12, 4), "####");
    }
}

TEST(Texts, ANullTextInsideTheValueIsRefused)
{
    const char *text = nullptr;
    for (auto *convert : {STRING_to_string, HEX_STR_to_string, BINARY_to_string}) {
        const printed output = print(convert, text);
        EXPECT_EQ(output.result, -1);
        EXPECT_FALSE(output.written);
        EXPECT_EQ(convert(nullptr, nullptr, 0, nullptr), -1);
    }
}

// `counted` is the length that the type measures for the four characters.
void expect_printed_range(ptype_to_string_fn *convert, const char *function, uint32_t counted)
{
    log_capture log;
    const char *text = "0101";
    const length_range exact = {counted, counted}, shorter = {1, counted - 1}, longer = {counted + 1, 99};
    EXPECT_EQ(print(convert, text, 64, &exact).text, text);
    EXPECT_EQ(convert(&text, nullptr, 0, &exact), 0);
    EXPECT_EQ(convert(&text, nullptr, 64, nullptr), 0);
    EXPECT_THAT(take_lines(log), IsEmpty());
    const std::string value = "OUT OF RANGE: value:" + std::to_string(counted);
    const printed refused = print(convert, text, 64, &shorter);
    EXPECT_EQ(refused.result, -1);
    EXPECT_FALSE(refused.written);
    EXPECT_THAT(take_lines(log),
                ElementsAre(error_line(function, value + ", min:1, max:" + std::to_string(counted - 1))));
    EXPECT_EQ(convert(&text, nullptr, 0, &longer), -1);
    EXPECT_THAT(take_lines(log),
                ElementsAre(error_line(function, value + ", min:" + std::to_string(counted + 1) + ", max:99")));
}

TEST(Texts, PrintingChecksTheRangeFirstAndCountsTheTerminatorOfHexAndBinary)
{
    expect_printed_range(STRING_to_string, "STRING_to_string", 4);
    expect_printed_range(HEX_STR_to_string, "HEX_STR_to_string", 5);
    expect_printed_range(BINARY_to_string, "BINARY_to_string", 5);
}

}  // namespace
