// SINT, UINT8, UINT16, UINT, UINT64 and FLOAT: borders, syntax, ranges and log texts. Integers are read as on a 32-bit
// machine wherever the tests run.
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <random>

#include "ptype/converters.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::IsEmpty;

template <typename Value>
struct accepted_text {
    const char *text;
    Value value;
};

template <typename Value>
void expect_accepted(ptype_to_value_fn *convert, const std::vector<accepted_text<Value>> &cases)
{
    log_capture log;
    for (const auto &[text, value] : cases) {
        EXPECT_EQ(to_value<Value>(convert, text), value) << "\"" << text << "\"";
        EXPECT_EQ(convert(text, nullptr, nullptr), 0) << "\"" << text << "\"";
    }
    EXPECT_THAT(take_lines(log), IsEmpty());
}

template <typename Value>
void expect_refused_silently(ptype_to_value_fn *convert, const std::vector<const char *> &texts)
{
    log_capture log;
    for (const char *text : texts) {
        EXPECT_EQ(to_value<Value>(convert, text), std::nullopt) << "\"" << text << "\"";
        EXPECT_EQ(convert(text, nullptr, nullptr), -1) << "\"" << text << "\"";
    }
    EXPECT_THAT(take_lines(log), IsEmpty());
}

struct out_of_range_text {
    const char *text;
    const char *line;  // what follows "OUT OF RANGE: "
};

template <typename Value>
void expect_out_of_range(ptype_to_value_fn *convert, const char *function, const void *range,
                         const std::vector<out_of_range_text> &cases)
{
    log_capture log;
    for (const auto &[text, line] : cases) {
        EXPECT_EQ(to_value<Value>(convert, text, range), std::nullopt) << text;
        EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, std::string("OUT OF RANGE: ") + line))) << text;
        EXPECT_EQ(convert(text, nullptr, range), -1) << text;
        EXPECT_EQ(take_lines(log).size(), 1u) << text;
    }
}

// What every integer type accepts with the same value, and what none does.
template <typename Value>
void expect_the_common_syntax(ptype_to_value_fn *convert)
{
    expect_accepted<Value>(convert, {{"", 0},
                                     {"0", 0},
                                     {"-0", 0},
                                     {"+0", 0},
                                     {"00", 0},
                                     {"1", 1},
                                     {"+5", 5},
                                     {" \t\n\v\f\r7", 7},
                                     {" +7", 7},
                                     {"0x1F", 31},
                                     {"0X1f", 31},
                                     {"0xaB", 0xAB},
                                     {" +0x7f", 127},
                                     {"0x0", 0},
                                     {"017", 15},
                                     {"0000000000000000000000000000000000010", 8},
                                     {"0x000000000000000000000000000000000010", 16}});
    expect_refused_silently<Value>(convert, {" ",
                                             "-",
                                             "+",
                                             "+-5",
                                             "--5",
                                             "- 5",
                                             "7 ",
                                             "7\n",
                                             "12abc",
                                             "abc",
                                             "0x",
                                             "0X",
                                             "-0x",
                                             " 0x",
                                             "0xg",
                                             "0x 1",
                                             "0x-1",
                                             "08",
                                             "09",
                                             "018",
                                             "0b1",
                                             "0B1",
                                             "0b",
                                             "1.5",
                                             "1e3",
                                             "1,000",
                                             "0xx1",
                                             "0x0x1",
                                             "x1",
                                             "\xC2\xA0"
                                             "1",
                                             "1\x01",
                                             "g",
                                             "99999999999999999999999999999999999999",
                                             "-99999999999999999999999999999999999999",
                                             "0xfffffffffffffffffffffffffffffffff",
                                             "18446744073709551616",
                                             "18446744073709551617",
                                             "-18446744073709551616",
                                             "0x10000000000000000",
                                             "02000000000000000000000",
                                             "99999999999999999999999999999999999999x"});
}

TEST(Integers, ShareOneSyntax)
{
    expect_the_common_syntax<int32_t>(SINT_to_ptype);
    expect_the_common_syntax<uint8_t>(UINT8_to_ptype);
    expect_the_common_syntax<uint16_t>(UINT16_to_ptype);
    expect_the_common_syntax<uint32_t>(UINT_to_ptype);
    expect_the_common_syntax<uint64_t>(UINT64_to_ptype);
}

TEST(Sint, HasTheBordersOf32BitSignedNumbers)
{
    expect_accepted<int32_t>(SINT_to_ptype, {{"2147483647", 2147483647},
                                             {"-2147483648", INT32_MIN},
                                             {"-2147483647", -2147483647},
                                             {"-1", -1},
                                             {"-0x10", -16},
                                             {"-010", -8},
                                             {"0x7fffffff", INT32_MAX},
                                             {"-0x80000000", INT32_MIN},
                                             {"017777777777", INT32_MAX},
                                             {"-020000000000", INT32_MIN}});
    expect_refused_silently<int32_t>(
        SINT_to_ptype, {"2147483648", "-2147483649", "4294967295", "-4294967295", "4294967296", "-4294967296",
                        "0x80000000", "0xffffffff", "-0x80000001", "020000000000", "9223372036854775807",
                        "-9223372036854775808", "18446744073709551615", "-18446744073709551615"});
}

TEST(Sint, LogsWhatIsOutsideOfTheRange)
{
    const sint_range range = {-5, 5};
    expect_out_of_range<int32_t>(SINT_to_ptype, "SINT_to_ptype", &range,
                                 {{"6", "value:6, min:-5, max:5"},
                                  {"-6", "value:-6, min:-5, max:5"},
                                  {"-2147483648", "value:-2147483648, min:-5, max:5"}});
    EXPECT_EQ(to_value<int32_t>(SINT_to_ptype, "-5", &range), -5);
    EXPECT_EQ(to_value<int32_t>(SINT_to_ptype, "5", &range), 5);
    EXPECT_EQ(to_value<int32_t>(SINT_to_ptype, "", &range), 0);
}

TEST(Uint8, ComparesTheWholeNumberWithItsDefaultRange)
{
    expect_accepted<uint8_t>(UINT8_to_ptype, {{"255", 255}, {"0xff", 255}, {"0377", 255}});
    // A minus sign wraps around 32 bits before the range is looked at.
    expect_accepted<uint8_t>(UINT8_to_ptype, {{"-4294967295", 1}, {"-4294967041", 255}});
    expect_refused_silently<uint8_t>(UINT8_to_ptype, {"4294967296", "-4294967296", "4294967297", "0x100000001"});
    expect_out_of_range<uint8_t>(UINT8_to_ptype, "UINT8_to_ptype", nullptr,
                                 {{"256", "value:256, min:0, max:255"},
                                  {"257", "value:257, min:0, max:255"},
                                  {"65536", "value:65536, min:0, max:255"},
                                  {"-1", "value:4294967295, min:0, max:255"},
                                  {"4294967295", "value:4294967295, min:0, max:255"},
                                  {"-4294967040", "value:256, min:0, max:255"}});
    const uint8_range range = {10, 20};
    expect_out_of_range<uint8_t>(UINT8_to_ptype, "UINT8_to_ptype", &range,
                                 {{"9", "value:9, min:10, max:20"},
                                  {"21", "value:21, min:10, max:20"},
                                  {"266", "value:266, min:10, max:20"},
                                  {"", "value:0, min:10, max:20"}});
    EXPECT_EQ(to_value<uint8_t>(UINT8_to_ptype, "10", &range), 10);
    EXPECT_EQ(to_value<uint8_t>(UINT8_to_ptype, "20", &range), 20);
}

TEST(Uint16, ComparesTheWholeNumberWithItsDefaultRange)
{
    expect_accepted<uint16_t>(UINT16_to_ptype, {{"65535", 65535}, {"0xFFFF", 65535}, {"-4294901761", 65535}});
    expect_refused_silently<uint16_t>(UINT16_to_ptype, {"4294967296", "-4294967296"});
    expect_out_of_range<uint16_t>(
        UINT16_to_ptype, "UINT16_to_ptype", nullptr,
        {{"65536", "value:65536, min:0, max:65535"}, {"-1", "value:4294967295, min:0, max:65535"}});
    const uint16_range range = {7, 7};
    expect_out_of_range<uint16_t>(UINT16_to_ptype, "UINT16_to_ptype", &range,
                                  {{"6", "value:6, min:7, max:7"}, {"8", "value:8, min:7, max:7"}});
    EXPECT_EQ(to_value<uint16_t>(UINT16_to_ptype, "7", &range), 7);
}

TEST(Uint, HasTheBordersOf32BitUnsignedNumbersAndWrapsMinusSigns)
{
    expect_accepted<uint32_t>(UINT_to_ptype, {{"2147483648", 2147483648},
                                              {"4294967295", 4294967295},
                                              {"0xffffffff", 4294967295},
                                              {"037777777777", 4294967295},
                                              {"-1", 4294967295},
                                              {"-4294967295", 1},
                                              {"-0xffffffff", 1}});
    expect_refused_silently<uint32_t>(
        UINT_to_ptype, {"4294967296", "-4294967296", "4294967297", "-4294967297", "0x100000000", "040000000000",
                        "18446744073709551615", "-18446744073709551615", "9223372036854775808"});
    const uint_range range = {5, 4000000000};
    expect_out_of_range<uint32_t>(UINT_to_ptype, "UINT_to_ptype", &range,
                                  {{"4", "value:4, min:5, max:4000000000"},
                                   {"4000000001", "value:4000000001, min:5, max:4000000000"},
                                   {"-1", "value:4294967295, min:5, max:4000000000"}});
    EXPECT_EQ(to_value<uint32_t>(UINT_to_ptype, "4000000000", &range), 4000000000);
}

TEST(Uint64, HasTheBordersOf64BitUnsignedNumbersAndNoDefaultRange)
{
    expect_accepted<uint64_t>(UINT64_to_ptype, {{"4294967296", 4294967296},
                                                {"18446744073709551615", UINT64_MAX},
                                                {"0xffffffffffffffff", UINT64_MAX},
                                                {"01777777777777777777777", UINT64_MAX},
                                                {"-1", UINT64_MAX},
                                                {"-4294967296", UINT64_MAX - 4294967295},
                                                {"-18446744073709551615", 1}});
    const uint64_range range = {4294967296, 18446744073709551614u};
    expect_out_of_range<uint64_t>(
        UINT64_to_ptype, "UINT64_to_ptype", &range,
        {{"4294967295", "value:4294967295, min:4294967296, max:18446744073709551614"},
         {"18446744073709551615", "value:18446744073709551615, min:4294967296, max:18446744073709551614"}});
    EXPECT_EQ(to_value<uint64_t>(UINT64_to_ptype, "4294967296", &range), 4294967296);
}

TEST(Integers, AStaleErrorNumberDoesNotMatter)
{
    errno = ERANGE;
    EXPECT_EQ(to_value<uint32_t>(UINT_to_ptype, "12"), 12u);
    errno = ERANGE;
    EXPECT_EQ(to_value<float>(FLOAT_to_ptype, "12"), 12.0f);
}

// What a 32-bit strtol or strtoul makes of a text, told through the 64-bit functions.
std::optional<uint32_t> read_as_on_32_bits(const std::string &text, bool is_signed)
{
    const size_t start = text.find_first_not_of(" \t");
    const bool negative = start != std::string::npos && text[start] == '-';
    std::string unsigned_text = text;
    if (negative) unsigned_text[start] = '+';
    errno = 0;
    char *end;
    const unsigned long long magnitude = strtoull(unsigned_text.c_str(), &end, 0);
    const unsigned long long largest = !is_signed ? UINT32_MAX : negative ? 2147483648u : 2147483647u;
    if (errno == ERANGE || *end != '\0' || magnitude > largest) return std::nullopt;
    return static_cast<uint32_t>(negative ? 0 - magnitude : magnitude);
}

TEST(Integers, AgreeWith32BitParsingOnRandomTexts)
{
    std::mt19937 random(20240611);
    const std::string alphabet = "00112233445566778899  +-xXacfFgz\t";
    const std::vector<std::string> starts = {"", "", "", "0x", "-", "-0x", "0", "429496729", "-429496729", "214748364"};
    log_capture log;
    for (int round = 0; round < 200000; ++round) {
        std::string text = starts[random() % starts.size()];
        for (size_t length = random() % 8; length > 0; --length) text += alphabet[random() % alphabet.size()];
        const auto as_unsigned = read_as_on_32_bits(text, false);
        const auto as_signed = read_as_on_32_bits(text, true);
        ASSERT_EQ(to_value<uint32_t>(UINT_to_ptype, text.c_str()), as_unsigned) << "\"" << text << "\"";
        const auto number = to_value<int32_t>(SINT_to_ptype, text.c_str());
        ASSERT_EQ(number.has_value(), as_signed.has_value()) << "\"" << text << "\"";
        ASSERT_EQ(number ? static_cast<uint32_t>(*number) : 0, as_signed.value_or(0)) << "\"" << text << "\"";
    }
    EXPECT_THAT(take_lines(log), IsEmpty());
}

template <typename Value>
void expect_round_trips(ptype_to_value_fn *to_ptype, ptype_to_string_fn *to_string)
{
    std::mt19937_64 random(7);
    for (int round = 0; round < 2000; ++round) {
        const auto value = static_cast<Value>(random() >> (random() % 64));
        ASSERT_EQ(to_value<Value>(to_ptype, to_text(to_string, value).c_str()), value);
    }
}

TEST(Integers, EveryValueSurvivesItsText)
{
    expect_round_trips<int32_t>(SINT_to_ptype, SINT_to_string);
    expect_round_trips<uint8_t>(UINT8_to_ptype, UINT8_to_string);
    expect_round_trips<uint16_t>(UINT16_to_ptype, UINT16_to_string);
    expect_round_trips<uint32_t>(UINT_to_ptype, UINT_to_string);
    expect_round_trips<uint64_t>(UINT64_to_ptype, UINT64_to_string);
}

TEST(Integers, PrintTheirLimits)
{
    EXPECT_EQ(to_text(SINT_to_string, int32_t{INT32_MIN}), "-2147483648");
    EXPECT_EQ(to_text(SINT_to_string, int32_t{INT32_MAX}), "2147483647");
    EXPECT_EQ(to_text(UINT8_to_string, uint8_t{255}), "255");
    EXPECT_EQ(to_text(UINT16_to_string, uint16_t{65535}), "65535");
    EXPECT_EQ(to_text(UINT_to_string, uint32_t{UINT32_MAX}), "4294967295");
    EXPECT_EQ(to_text(UINT64_to_string, uint64_t{UINT64_MAX}), "18446744073709551615");
}

template <typename Value>
void expect_value_out_of_range(ptype_to_string_fn *convert, const char *function, Value value, const void *range,
                               const char *line)
{
    log_capture log;
    const printed output = print(convert, value, 64, range);
    EXPECT_EQ(output.result, -1);
    EXPECT_FALSE(output.written);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line(function, std::string("OUT OF RANGE: ") + line)));
    EXPECT_EQ(convert(&value, nullptr, 0, range), -1);
    EXPECT_EQ(take_lines(log).size(), 1u);
}

TEST(Integers, RefuseToPrintWhatIsOutsideOfTheRange)
{
    const sint_range sint = {-5, 5};
    const uint8_range uint8 = {1, 254};
    const uint16_range uint16 = {1, 65534};
    const uint_range uint = {1, 4294967294};
    const uint64_range uint64 = {1, 18446744073709551614u};
    expect_value_out_of_range(SINT_to_string, "SINT_to_string", int32_t{-6}, &sint, "value:-6, min:-5, max:5");
    expect_value_out_of_range(SINT_to_string, "SINT_to_string", int32_t{6}, &sint, "value:6, min:-5, max:5");
    expect_value_out_of_range(UINT8_to_string, "UINT8_to_string", uint8_t{255}, &uint8, "value:255, min:1, max:254");
    expect_value_out_of_range(UINT8_to_string, "UINT8_to_string", uint8_t{0}, &uint8, "value:0, min:1, max:254");
    expect_value_out_of_range(UINT16_to_string, "UINT16_to_string", uint16_t{65535}, &uint16,
                              "value:65535, min:1, max:65534");
    expect_value_out_of_range(UINT_to_string, "UINT_to_string", uint32_t{UINT32_MAX}, &uint,
                              "value:4294967295, min:1, max:4294967294");
    expect_value_out_of_range(UINT64_to_string, "UINT64_to_string", uint64_t{UINT64_MAX}, &uint64,
                              "value:18446744073709551615, min:1, max:18446744073709551614");
    EXPECT_EQ(print(SINT_to_string, int32_t{-5}, 64, &sint).text, "-5");
    EXPECT_EQ(print(UINT64_to_string, uint64_t{1}, 64, &uint64).text, "1");
}

TEST(Numbers, PrintingIsCutToTheBufferAndWithoutABufferOnlyChecks)
{
    const uint32_t value = 12345;
    const printed cut = print(UINT_to_string, value, 4);
    EXPECT_EQ(cut.result, 0);
    EXPECT_EQ(cut.text, "123");
    const printed nothing = print(UINT_to_string, value, 0);
    EXPECT_EQ(nothing.result, 0);
    EXPECT_EQ(UINT_to_string(&value, nullptr, 0, nullptr), 0);
    EXPECT_EQ(UINT_to_string(&value, nullptr, 64, nullptr), 0);
    const float number = 1.5f;
    EXPECT_EQ(print(FLOAT_to_string, number, 4).text, "1.5");
    EXPECT_EQ(FLOAT_to_string(&number, nullptr, 64, nullptr), 0);
}

TEST(Integers, DefaultRangesHoldTheLimitsOfTheTypes)
{
    EXPECT_EQ(default_sint_range.min, INT32_MIN);
    EXPECT_EQ(default_sint_range.max, INT32_MAX);
    EXPECT_EQ(default_uint8_range.min, 0);
    EXPECT_EQ(default_uint8_range.max, 255);
    EXPECT_EQ(default_uint16_range.min, 0);
    EXPECT_EQ(default_uint16_range.max, 65535);
    EXPECT_EQ(default_uint_range.min, 0u);
    EXPECT_EQ(default_uint_range.max, 4294967295u);
}

TEST(Float, ReadsWhatStrtofReads)
{
    expect_accepted<float>(FLOAT_to_ptype, {{"", 0.0f},
                                            {"0", 0.0f},
                                            {"1.5", 1.5f},
                                            {"-2.25e3", -2250.0f},
                                            {" +7", 7.0f},
                                            {".5", 0.5f},
                                            {"0x1p3", 8.0f},
                                            {"3.40282347e+38", FLT_MAX},
                                            // Just above it: what is just below is an underflow to some machines.
                                            {"1.17549436e-38", FLT_MIN},
                                            {"inf", HUGE_VALF}});
    expect_refused_silently<float>(FLOAT_to_ptype,
                                   {"1e39", "-1e39", "1e-50", "1.5x", "1.5 ", "x", " ", "-", "1,5", "."});
    const auto not_a_number = to_value<float>(FLOAT_to_ptype, "nan");
    ASSERT_TRUE(not_a_number);
    EXPECT_TRUE(std::isnan(*not_a_number));
}

TEST(Float, IsCheckedOnlyAgainstAGivenRange)
{
    const float_range range = {-1.5f, 2.5f};
    expect_out_of_range<float>(FLOAT_to_ptype, "FLOAT_to_ptype", &range,
                               {{"-1.75", "value:-1.750000, min:-1.500000, max:2.500000"},
                                {"3", "value:3.000000, min:-1.500000, max:2.500000"},
                                {"inf", "value:inf, min:-1.500000, max:2.500000"},
                                {"nan", "value:nan, min:-1.500000, max:2.500000"}});
    EXPECT_EQ(to_value<float>(FLOAT_to_ptype, "-1.5", &range), -1.5f);
    EXPECT_EQ(to_value<float>(FLOAT_to_ptype, "2.5", &range), 2.5f);
    expect_value_out_of_range(FLOAT_to_string, "FLOAT_to_string", 3.0f, &range,
                              "value:3.000000, min:-1.500000, max:2.500000");
    EXPECT_EQ(print(FLOAT_to_string, 2.5f, 64, &range).text, "2.500000");
    EXPECT_EQ(to_text(FLOAT_to_string, -0.125f), "-0.125000");
    EXPECT_EQ(to_text(FLOAT_to_string, FLT_MAX), "340282346638528859811704183484516925440.000000");
}

}  // namespace
