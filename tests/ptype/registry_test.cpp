// The table of all types: its records, what dispatches on them, and the check that stops a process with a bad table.
#include <csignal>
#include <cstdlib>
#include <set>

#include "ptype/converters.h"
#include "ptype/define_check.h"
#include "ptype/vocabulary.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

bool holds_a_pointer(int number)
{
    return number == PTYPE_RAW_JSON || number == PTYPE_STRING || number == PTYPE_HEX_STR || number == PTYPE_BINARY;
}

TEST(Registry, HoldsEveryTypeUnderItsNumberWithItsNameAndSize)
{
    ASSERT_EQ(std::size(all_types), size_t{PTYPE_COUNT});
    for (int number = 0; number < PTYPE_COUNT; ++number) {
        const auto &expected = all_types[number];
        ASSERT_EQ(expected.number, number);
        const int size = holds_a_pointer(number) ? static_cast<int>(sizeof(void *)) : expected.target_size;
        EXPECT_STREQ(param_types[number].name, expected.name);
        EXPECT_EQ(param_types[number].ptype, number);
        EXPECT_EQ(param_types[number].size, size) << expected.name;
        EXPECT_EQ(get_ptype_by_name(expected.name), number);
        EXPECT_STREQ(get_ptype_name(static_cast<uint32_t>(number)), expected.name);
        EXPECT_EQ(get_ptype_size(static_cast<uint32_t>(number)), size) << expected.name;
    }
}

TEST(Registry, EveryRecordLeadsToTheConvertersOfItsName)
{
    struct converters {
        int number, constant;
        ptype_to_value_fn *to_value;
        ptype_to_string_fn *to_string;
    };
    const std::vector<converters> all = {
#define CONVERTERS(number, NAME, detail) {number, PTYPE_##NAME, NAME##_to_ptype, NAME##_to_string},
        APCONF_SCALAR_PTYPES(CONVERTERS) APCONF_ENUM_PTYPES(CONVERTERS)
#undef CONVERTERS
    };
    EXPECT_EQ(all.size(), size_t{PTYPE_COUNT});
    for (const auto &expected : all) {
        EXPECT_EQ(expected.constant, expected.number);
        EXPECT_EQ(param_types[expected.number].to_value, expected.to_value) << expected.number;
        EXPECT_EQ(param_types[expected.number].to_string, expected.to_string) << expected.number;
    }
}

TEST(Registry, NamesAreCaseSensitiveAndUnknownOnesGiveMinusOne)
{
    EXPECT_EQ(get_ptype_by_name("UINT8"), 2);
    EXPECT_EQ(get_ptype_by_name("uint8"), -1);
    EXPECT_EQ(get_ptype_by_name("UINT8 "), -1);
    EXPECT_EQ(get_ptype_by_name("WORD"), -1);
    EXPECT_EQ(get_ptype_by_name(""), -1);
}

TEST(Registry, NumbersOutsideOfTheTableAreRefusedSilently)
{
    log_capture log;
    uint32_t value = 7;
    char text[8] = "before";
    for (const uint32_t number : {83u, 84u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(get_ptype_name(number), nullptr);
        EXPECT_EQ(get_ptype_size(number), -1);
        EXPECT_EQ(convert_ptype_to_value(number, &value, "12", nullptr), -1);
        EXPECT_EQ(convert_ptype_to_string(number, &value, text, sizeof text), -1);
        EXPECT_EQ(check_ptype_string(number, "12", nullptr), -1);
        EXPECT_EQ(check_ptype_value(number, &value, nullptr), -1);
        EXPECT_EQ(get_ptype_value_string(number, &value), nullptr);
    }
    EXPECT_EQ(value, 7u);
    EXPECT_STREQ(text, "before");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(get_ptype_size(11), 6);
    EXPECT_EQ(get_ptype_size(5), 8);
}

TEST(Registry, ConvertsByNumberAndValidatesWithoutASlot)
{
    uint32_t value = 0;
    const uint_range range = {10, 20};
    EXPECT_EQ(convert_ptype_to_value(PTYPE_UINT, nullptr, "12", nullptr), 0);
    EXPECT_EQ(convert_ptype_to_value(PTYPE_UINT, &value, "12", &range), 0);
    EXPECT_EQ(value, 12u);
    EXPECT_EQ(convert_ptype_to_value(PTYPE_UINT, &value, "21", &range), -1);
    EXPECT_EQ(value, 12u);
    EXPECT_EQ(check_ptype_string(PTYPE_UINT, "20", &range), 0);
    EXPECT_EQ(check_ptype_string(PTYPE_UINT, "21", &range), -1);
    EXPECT_EQ(check_ptype_string(PTYPE_UINT, "21", nullptr), 0);
    char text[8];
    EXPECT_EQ(convert_ptype_to_string(PTYPE_UINT, &value, text, sizeof text), 0);
    EXPECT_STREQ(text, "12");
}

TEST(Registry, EveryTypeRefusesANullTextAndANullValueSilently)
{
    log_capture log;
    char text[64] = "before";
    uint64_t value = 0x1122334455667788;
    for (uint32_t number = 1; number < PTYPE_COUNT; ++number) {
        EXPECT_EQ(convert_ptype_to_value(number, &value, nullptr, nullptr), -1) << get_ptype_name(number);
        EXPECT_EQ(convert_ptype_to_value(number, nullptr, nullptr, nullptr), -1) << get_ptype_name(number);
        EXPECT_EQ(convert_ptype_to_string(number, nullptr, text, sizeof text), -1) << get_ptype_name(number);
    }
    EXPECT_EQ(value, 0x1122334455667788u);
    EXPECT_STREQ(text, "before");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Registry, CheckingAValueFailsForEveryTypeButRawJson)
{
    log_capture log;
    const char *text = "1";
    const struct {
        const char *text;
        uint64_t more;
    } value = {text, 0};
    for (uint32_t number = 1; number < PTYPE_COUNT; ++number)
        EXPECT_EQ(check_ptype_value(number, &value, nullptr), -1) << get_ptype_name(number);
    EXPECT_EQ(check_ptype_value(PTYPE_RAW_JSON, &value, nullptr), 0);
    EXPECT_EQ(value.text, text);
    EXPECT_EQ(value.more, 0u);
    const uint32_t number = 12;
    EXPECT_EQ(check_ptype_value(PTYPE_UINT, &number, nullptr), -1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Registry, ValueStringsShareOneBufferOf256Bytes)
{
    const uint32_t number = 4294967295;
    const char *first = get_ptype_value_string(PTYPE_UINT, &number);
    ASSERT_STREQ(first, "4294967295");
    const int32_t on = 1;
    EXPECT_EQ(get_ptype_value_string(PTYPE_BOOLEAN, &on), first);
    EXPECT_STREQ(first, "true");

    const std::string longest(255, 'x'), too_long(256, 'x'), far_too_long(300, 'x');
    const char *text = longest.c_str();
    EXPECT_STREQ(get_ptype_value_string(PTYPE_STRING, &text), longest.c_str());
    text = too_long.c_str();
    EXPECT_EQ(get_ptype_value_string(PTYPE_STRING, &text), nullptr);
    text = far_too_long.c_str();
    EXPECT_EQ(get_ptype_value_string(PTYPE_STRING, &text), nullptr);
    text = longest.c_str();
    EXPECT_EQ(get_ptype_value_string(PTYPE_HEX_STR, &text), nullptr);
    ++text;
    EXPECT_STREQ(get_ptype_value_string(PTYPE_HEX_STR, &text), text);
    const int32_t unknown = 2;
    EXPECT_EQ(get_ptype_value_string(PTYPE_BOOLEAN, &unknown), nullptr);
    EXPECT_EQ(get_ptype_value_string(PTYPE_BOOLEAN, nullptr), nullptr);
}

TEST(Registry, ListingTextsAreTheKnownOnes)
{
    const std::vector<std::array<std::string, 4>> expected = {
        {"SINT", "-2147483648", "2147483647", "<%s-%s>"},
        {"UINT8", "0", "255", "<%s-%s>"},
        {"UINT16", "0", "65535", "<%s-%s>"},
        {"UINT", "0", "2147483647", "<%s-%s>"},
        {"STRING", "1", "1024", "STRING%s-%s"},
        {"WORD", "1", "1024", "WORD%s-%s"},
        {"HEX_STR", "1", "1024", "HEX_STR%s-%s"},
        {"BINARY", "1", "1024", "BINARY%s-%s"},
        {"IPV4", "", "", "A.B.C.D"},
        {"MAC_ADDR", "", "", "HH:HH:HH:HH:HH:HH"},
        {"STATUS", "", "", "(enable|disable)"},
        {"TIME_HHMMSS", "", "", "HH:MM:SS"},
        {"IPV4_MASK", "", "", "A.B.C.D/M"},
    };
    std::vector<std::array<std::string, 4>> listed;
    for (const auto &info : param_ptype_info) listed.push_back({info.name, info.min, info.max, info.format});
    EXPECT_EQ(listed, expected);
}

TEST(DefineCheck, IsSilentOnTheLibrarysTable)
{
    log_capture log;
    check_ptype_define();
    apconf::check_ptype_define(param_types);
    EXPECT_THAT(log.lines(), IsEmpty());
}

using table = std::array<ptype_record, PTYPE_COUNT>;

log_capture *abort_log = nullptr;

// In the dying child: the check on a table, with its log lines on standard error.
void check_and_show(const table &records)
{
    log_capture log;
    abort_log = &log;
    signal(SIGABRT, [](int) {
        for (const auto &line : take_lines(*abort_log)) fprintf(stderr, "%s\n", line.c_str());
        signal(SIGABRT, SIG_DFL);
        raise(SIGABRT);
    });
    apconf::check_ptype_define(records.data());
}

// Breaks one record of a good table and expects the process to stop with that record's line.
template <typename Change>
void expect_stop_at(int index, Change change)
{
    table records;
    std::copy(std::begin(param_types), std::end(param_types), records.begin());
    ptype_record &bad = records[static_cast<size_t>(index)];
    change(bad);
    char line[256];
    snprintf(line, sizeof line,
             "ptype define error: index:%d, name:%p, ptype:%d, to_value_handler:%p, "
             "to_string_handler:%p\n",
             index, static_cast<const void *>(bad.name), bad.ptype, reinterpret_cast<const void *>(bad.to_value),
             reinterpret_cast<const void *>(bad.to_string));
    EXPECT_EXIT(check_and_show(records), testing::KilledBySignal(SIGABRT),
                testing::AllOf(HasSubstr("check_ptype_define"), HasSubstr(error_line("check_ptype_define", line))));
}

TEST(DefineCheckDeathTest, StopsAtTheFirstBadRecord)
{
    expect_stop_at(0, [](ptype_record &record) { record.ptype = 1; });
    expect_stop_at(12, [](ptype_record &record) { record.name = nullptr; });
    expect_stop_at(65, [](ptype_record &record) { record.to_value = nullptr; });
    expect_stop_at(82, [](ptype_record &record) { record.to_string = nullptr; });
}

TEST(DefineCheckDeathTest, LogsOnlyTheFirstOfTwoBadRecords)
{
    table records;
    std::copy(std::begin(param_types), std::end(param_types), records.begin());
    records[3].ptype = -3;
    records[4].ptype = -4;
    EXPECT_EXIT(check_and_show(records), testing::KilledBySignal(SIGABRT),
                testing::AllOf(HasSubstr("ptype:-3"), testing::Not(HasSubstr("ptype:-4"))));
}

TEST(RegistryDeathTest, ANullNameIsAProgrammingError)
{
    EXPECT_DEATH(get_ptype_by_name(nullptr), "get_ptype_by_name.*name");
}

TEST(RawJson, AcceptsAnythingAndTouchesNothing)
{
    EXPECT_EQ(reinterpret_cast<const void *>(RAW_JSON_to_ptype), reinterpret_cast<const void *>(RAW_JSON_to_string));
    log_capture log;
    void *slot = &log;
    EXPECT_EQ(convert_ptype_to_value(PTYPE_RAW_JSON, &slot, "{", nullptr), 0);
    EXPECT_EQ(convert_ptype_to_value(PTYPE_RAW_JSON, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(slot, &log);
    char text[8] = "before";
    EXPECT_EQ(convert_ptype_to_string(PTYPE_RAW_JSON, &slot, text, sizeof text), 0);
    EXPECT_EQ(convert_ptype_to_string(PTYPE_RAW_JSON, nullptr, nullptr, 0), 0);
    EXPECT_STREQ(text, "before");
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
