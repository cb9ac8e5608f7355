// Range records from "min" and "max" texts: defaults, limits, the order of the limits, and what is logged.
#include <cfloat>
#include <cstdlib>

#include "ptype/converters.h"
#include "support/failing_allocation.h"
#include "util/owners.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char *function = "convert_ptype_range";

template <typename Range>
struct limits {
    decltype(Range::min) min;
    decltype(Range::max) max;
    bool operator==(const limits &) const = default;
};

// The record's limits; nothing when there is no record.
template <typename Range>
std::optional<limits<Range>> make(uint32_t ptype, const char *min, const char *max)
{
    const apconf::owner<void *, [](void *record) { free(record); }> record(convert_ptype_range(ptype, min, max));
    if (!record) return std::nullopt;
    Range range;
    memcpy(&range, record.get(), sizeof range);
    return limits<Range>{range.min, range.max};
}

template <typename Range>
void expect_limits(uint32_t ptype, const char *min, const char *max, limits<Range> expected)
{
    log_capture log;
    EXPECT_EQ(make<Range>(ptype, min, max), expected) << get_ptype_name(ptype);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

// The last line that a refused pair of texts leaves, all lines before it being the converter's.
std::string last_line(uint32_t ptype, const char *min, const char *max)
{
    log_capture log;
    EXPECT_EQ(convert_ptype_range(ptype, min, max), nullptr);
    const auto lines = take_lines(log);
    return lines.empty() ? "" : lines.back();
}

std::string failed(uint32_t ptype, const std::string &which, const std::string &text)
{
    return error_line(function, std::string("convert ptype '") + get_ptype_name(ptype) + "' range " + which + " '" +
                                    text + "' failed");
}

std::string disordered(uint32_t ptype)
{
    return error_line(function,
                      std::string("convert ptype '") + get_ptype_name(ptype) + "' range min is more than max");
}

TEST(Ranges, AnAbsentLimitIsTheTypesOwn)
{
    expect_limits<sint_range>(PTYPE_SINT, "-5", nullptr, {-5, INT32_MAX});
    expect_limits<sint_range>(PTYPE_SINT, nullptr, "5", {INT32_MIN, 5});
    expect_limits<uint8_range>(PTYPE_UINT8, "10", nullptr, {10, 255});
    expect_limits<uint8_range>(PTYPE_UINT8, nullptr, "20", {0, 20});
    expect_limits<uint16_range>(PTYPE_UINT16, "10", nullptr, {10, 65535});
    expect_limits<uint16_range>(PTYPE_UINT16, nullptr, "20", {0, 20});
    expect_limits<uint_range>(PTYPE_UINT, "10", nullptr, {10, 4294967295});
    expect_limits<uint_range>(PTYPE_UINT, nullptr, "20", {0, 20});
    expect_limits<uint64_range>(PTYPE_UINT64, "10", nullptr, {10, UINT64_MAX});
    expect_limits<uint64_range>(PTYPE_UINT64, nullptr, "20", {0, 20});
    expect_limits<float_range>(PTYPE_FLOAT, "2.5", nullptr, {2.5f, 3.40282347e+38f});
    expect_limits<float_range>(PTYPE_FLOAT, nullptr, "100", {1.17549435e-38f, 100});
    expect_limits<length_range>(PTYPE_STRING, "10", nullptr, {10, 10240});
    expect_limits<length_range>(PTYPE_STRING, nullptr, "20", {1, 20});
    expect_limits<length_range>(PTYPE_HEX_STR, "10", nullptr, {10, 10240});
    expect_limits<length_range>(PTYPE_HEX_STR, nullptr, "20", {1, 20});
}

TEST(Ranges, BothLimitsAreReadAndMayBeEqual)
{
    expect_limits<sint_range>(PTYPE_SINT, "-2147483648", "2147483647", {INT32_MIN, INT32_MAX});
    expect_limits<sint_range>(PTYPE_SINT, "-10", "-5", {-10, -5});
    expect_limits<uint8_range>(PTYPE_UINT8, "0", "255", {0, 255});
    expect_limits<uint8_range>(PTYPE_UINT8, "0x10", "020", {16, 16});
    expect_limits<uint16_range>(PTYPE_UINT16, "7", "7", {7, 7});
    expect_limits<uint_range>(PTYPE_UINT, "1", "4294967295", {1, 4294967295});
    expect_limits<uint_range>(PTYPE_UINT, "1", "-1", {1, 4294967295});
    expect_limits<uint64_range>(PTYPE_UINT64, "4294967296", "18446744073709551615", {4294967296, UINT64_MAX});
    expect_limits<float_range>(PTYPE_FLOAT, "-1.5", "1.5", {-1.5f, 1.5f});
    expect_limits<length_range>(PTYPE_STRING, "3", "3", {3, 3});
    expect_limits<length_range>(PTYPE_STRING, "1", "20480", {1, 20480});
    expect_limits<uint8_range>(PTYPE_UINT8, "", "1", {0, 1});
}

TEST(Ranges, TwoAbsentTextsMakeNoRecord)
{
    log_capture log;
    for (uint32_t ptype = 0; ptype < PTYPE_COUNT; ++ptype)
        EXPECT_EQ(convert_ptype_range(ptype, nullptr, nullptr), nullptr);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Ranges, OtherTypesHaveNoneWhateverTheTexts)
{
    log_capture log;
    for (uint32_t ptype = 0; ptype < PTYPE_COUNT; ++ptype) {
        if (ptype >= PTYPE_SINT && ptype <= PTYPE_HEX_STR) continue;
        EXPECT_EQ(convert_ptype_range(ptype, "1", "2"), nullptr) << get_ptype_name(ptype);
        EXPECT_EQ(convert_ptype_range(ptype, "bad", nullptr), nullptr) << get_ptype_name(ptype);
    }
    EXPECT_EQ(convert_ptype_range(PTYPE_BINARY, "1", "64"), nullptr);
    EXPECT_EQ(convert_ptype_range(83, "1", "2"), nullptr);
    EXPECT_EQ(convert_ptype_range(0xFFFFFFFF, "1", "2"), nullptr);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Ranges, ALimitOutsideOfTheTypesDefaultRangeFailsAfterTheConvertersLine)
{
    log_capture log;
    EXPECT_EQ(convert_ptype_range(PTYPE_UINT8, "10", "300"), nullptr);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line("UINT8_to_ptype", "OUT OF RANGE: value:300, min:0, max:255"),
                                             error_line(function, "convert ptype 'UINT8' range max '300' failed")));
    EXPECT_EQ(convert_ptype_range(PTYPE_UINT16, "-1", "300"), nullptr);
    EXPECT_THAT(take_lines(log),
                ElementsAre(error_line("UINT16_to_ptype", "OUT OF RANGE: value:4294967295, min:0, max:65535"),
                            error_line(function, "convert ptype 'UINT16' range min '-1' failed")));
}

TEST(Ranges, ALimitThatIsNoValueOfTheTypeFails)
{
    for (const uint32_t ptype :
         {PTYPE_SINT, PTYPE_UINT8, PTYPE_UINT16, PTYPE_UINT, PTYPE_UINT64, PTYPE_FLOAT, PTYPE_STRING, PTYPE_HEX_STR}) {
        EXPECT_EQ(last_line(ptype, "low", "9"), failed(ptype, "min", "low"));
        EXPECT_EQ(last_line(ptype, "1", "high"), failed(ptype, "max", "high"));
        EXPECT_EQ(last_line(ptype, nullptr, "high"), failed(ptype, "max", "high"));
        EXPECT_EQ(last_line(ptype, "low", "high"), failed(ptype, "min", "low"));
    }
    EXPECT_EQ(last_line(PTYPE_UINT, "4294967296", nullptr), failed(PTYPE_UINT, "min", "4294967296"));
    EXPECT_EQ(last_line(PTYPE_SINT, nullptr, "2147483648"), failed(PTYPE_SINT, "max", "2147483648"));
    EXPECT_EQ(last_line(PTYPE_FLOAT, nullptr, "1e39"), failed(PTYPE_FLOAT, "max", "1e39"));
}

TEST(Ranges, MinAboveMaxFails)
{
    EXPECT_EQ(last_line(PTYPE_UINT, "5", "4"), disordered(PTYPE_UINT));
    EXPECT_EQ(last_line(PTYPE_SINT, "-5", "-10"), disordered(PTYPE_SINT));
    EXPECT_EQ(last_line(PTYPE_UINT8, "5", "4"), disordered(PTYPE_UINT8));
    EXPECT_EQ(last_line(PTYPE_UINT16, "5", "4"), disordered(PTYPE_UINT16));
    EXPECT_EQ(last_line(PTYPE_UINT64, "-1", "4"), disordered(PTYPE_UINT64));
    EXPECT_EQ(last_line(PTYPE_FLOAT, "1.5", "1.25"), disordered(PTYPE_FLOAT));
    EXPECT_EQ(last_line(PTYPE_STRING, "5", "4"), disordered(PTYPE_STRING));
    EXPECT_EQ(last_line(PTYPE_HEX_STR, "-1", nullptr), disordered(PTYPE_HEX_STR));
    EXPECT_EQ(last_line(PTYPE_STRING, "10241", nullptr), disordered(PTYPE_STRING));
    EXPECT_EQ(last_line(PTYPE_FLOAT, nullptr, "0"), disordered(PTYPE_FLOAT));
}

TEST(Ranges, AFloatRangeWithOnlyAMaximumLeavesOutZeroAndNegativeValues)
{
    void *range = convert_ptype_range(PTYPE_FLOAT, nullptr, "100");
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(check_ptype_string(PTYPE_FLOAT, "0", range), -1);
    EXPECT_EQ(check_ptype_string(PTYPE_FLOAT, "-1", range), -1);
    EXPECT_EQ(check_ptype_string(PTYPE_FLOAT, "0.001", range), 0);
    EXPECT_EQ(check_ptype_string(PTYPE_FLOAT, "100", range), 0);
    free(range);
}

TEST(Ranges, TextLengthsAreReadLenientlyAndZeroFails)
{
    EXPECT_EQ(last_line(PTYPE_STRING, "0", nullptr), failed(PTYPE_STRING, "min", "0"));
    EXPECT_EQ(last_line(PTYPE_STRING, nullptr, "0"), failed(PTYPE_STRING, "max", "0"));
    EXPECT_EQ(last_line(PTYPE_STRING, "", nullptr), failed(PTYPE_STRING, "min", ""));
    EXPECT_EQ(last_line(PTYPE_HEX_STR, "0x10", nullptr), failed(PTYPE_HEX_STR, "min", "0x10"));
    expect_limits<length_range>(PTYPE_STRING, "8 characters", " +0012x", {8, 12});
    expect_limits<length_range>(PTYPE_HEX_STR, nullptr, "-1", {1, 4294967295});
    expect_limits<length_range>(PTYPE_HEX_STR, "-2", "-1", {4294967294, 4294967295});
}

TEST(Ranges, TextLengthsBeyond32BitsSaturate)
{
    for (const char *text : {"2147483647", "2147483648", "4294967296", "4294967297", "99999999999999999999"})
        expect_limits<length_range>(PTYPE_STRING, nullptr, text, {1, 2147483647});
    for (const char *text : {"-2147483648", "-2147483649", "-4294967296", "-4294967295", "-99999999999999999999"})
        expect_limits<length_range>(PTYPE_STRING, nullptr, text, {1, 2147483648});
}

TEST(Ranges, AnEmptyTextIsRefusedOnceARangeExists)
{
    void *range = convert_ptype_range(PTYPE_STRING, nullptr, "5");
    ASSERT_NE(range, nullptr);
    EXPECT_EQ(check_ptype_string(PTYPE_STRING, "", range), -1);
    EXPECT_EQ(check_ptype_string(PTYPE_STRING, "12345", range), 0);
    EXPECT_EQ(check_ptype_string(PTYPE_STRING, "123456", range), -1);
    free(range);
}

TEST(Ranges, WithoutMemoryThereIsSilentlyNoRecord)
{
    if (!can_fail_allocations) GTEST_SKIP() << "a sanitizer owns the allocator";
    log_capture log;
    void *range;
    {
        const failing_allocation failing;
        range = convert_ptype_range(PTYPE_UINT, "1", "2");
    }
    EXPECT_EQ(range, nullptr);
    EXPECT_THAT(take_lines(log), IsEmpty());
}

}  // namespace
