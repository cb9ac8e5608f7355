// The table of all ptypes, built from the two lists of ptype.h and placed by number, and what dispatches on it.
#include <cstring>
#include <utility>

#include "apconf/ptype.h"
#include "ptype/define_check.h"
#include "util/always_assert.h"

namespace apconf
{
namespace
{

// A number that both lists leave out, or that stands twice, does not compile.
consteval ptype_record record_of(int number)
{
    switch (number) {
#define RECORD(number, NAME, size) \
    case number:                   \
        return {#NAME, number, static_cast<int32_t>(size), NAME##_to_ptype, NAME##_to_string};
#define SCALAR_RECORD(number, NAME, Value) RECORD(number, NAME, sizeof(Value))
#define ENUM_RECORD(number, NAME, count) RECORD(number, NAME, sizeof(int32_t))
        APCONF_SCALAR_PTYPES(SCALAR_RECORD)
        APCONF_ENUM_PTYPES(ENUM_RECORD)
#undef ENUM_RECORD
#undef SCALAR_RECORD
#undef RECORD
    }
}

// The widths on the target. Configuration code and schema were written for them.
consteval int32_t target_size(int number)
{
    switch (number) {
        case PTYPE_UINT8:
            return 1;
        case PTYPE_UINT16:
            return 2;
        case PTYPE_MAC_ADDR:
            return 6;
        case PTYPE_UINT64:
        case PTYPE_IPV4_MASK:
            return 8;
        default:
            return 4;
    }
}

constexpr size_t value_string_size = 256;

}  // namespace
}  // namespace apconf

// clang-format off
#define TEN_RECORDS(ten)                                                                                        \
    apconf::record_of(ten + 0), apconf::record_of(ten + 1), apconf::record_of(ten + 2), apconf::record_of(ten + 3), \
    apconf::record_of(ten + 4), apconf::record_of(ten + 5), apconf::record_of(ten + 6), apconf::record_of(ten + 7), \
    apconf::record_of(ten + 8), apconf::record_of(ten + 9)
// clang-format on

constexpr ptype_record param_types[PTYPE_COUNT] = {
    TEN_RECORDS(0),        TEN_RECORDS(10),       TEN_RECORDS(20),       TEN_RECORDS(30),
    TEN_RECORDS(40),       TEN_RECORDS(50),       TEN_RECORDS(60),       TEN_RECORDS(70),
    apconf::record_of(80), apconf::record_of(81), apconf::record_of(82),
};

// Texts of the listing. They differ from the limits of the converters, and WORD is no ptype: kept.
// clang-format off
const ptype_info param_ptype_info[PARAM_PTYPE_INFO_COUNT] = {
    {"SINT",        "-2147483648", "2147483647", "<%s-%s>"},
    {"UINT8",       "0",           "255",        "<%s-%s>"},
    {"UINT16",      "0",           "65535",      "<%s-%s>"},
    {"UINT",        "0",           "2147483647", "<%s-%s>"},
    {"STRING",      "1",           "1024",       "STRING%s-%s"},
    {"WORD",        "1",           "1024",       "WORD%s-%s"},
    {"HEX_STR",     "1",           "1024",       "HEX_STR%s-%s"},
    {"BINARY",      "1",           "1024",       "BINARY%s-%s"},
    {"IPV4",        "",            "",           "A.B.C.D"},
    {"MAC_ADDR",    "",            "",           "HH:HH:HH:HH:HH:HH"},
    {"STATUS",      "",            "",           "(enable|disable)"},
    {"TIME_HHMMSS", "",            "",           "HH:MM:SS"},
    {"IPV4_MASK",   "",            "",           "A.B.C.D/M"},
};
// clang-format on

namespace apconf
{
namespace
{

template <int... number>
consteval bool sizes_are_the_targets(std::integer_sequence<int, number...>)
{
    return ((param_types[number].size == target_size(number)) && ...);
}
static_assert(sizeof(void *) != 4 || sizes_are_the_targets(std::make_integer_sequence<int, PTYPE_COUNT>()));

}  // namespace
}  // namespace apconf

int get_ptype_by_name(const char *name)
{
    ALWAYS_ASSERT(name);
    for (const ptype_record &record : param_types)
        if (strcmp(record.name, name) == 0) return record.ptype;
    return -1;
}

int get_ptype_size(uint32_t ptype)
{
    return ptype < PTYPE_COUNT ? param_types[ptype].size : -1;
}

const char *get_ptype_name(uint32_t ptype)
{
    return ptype < PTYPE_COUNT ? param_types[ptype].name : nullptr;
}

int convert_ptype_to_value(uint32_t ptype, void *value_out, const char *text, const void *range)
{
    return ptype < PTYPE_COUNT ? param_types[ptype].to_value(text, value_out, range) : -1;
}

int convert_ptype_to_string(uint32_t ptype, const void *value, char *text_out, size_t text_size)
{
    return ptype < PTYPE_COUNT ? param_types[ptype].to_string(value, text_out, text_size, nullptr) : -1;
}

int check_ptype_string(uint32_t ptype, const char *text, const void *range)
{
    return ptype < PTYPE_COUNT ? param_types[ptype].to_value(text, nullptr, range) : -1;
}

int check_ptype_value(uint32_t ptype, const void *value, const void *range)
{
    if (ptype >= PTYPE_COUNT) return -1;
    // The value stands in the place of the buffer: kept. With no room to write, no converter touches it.
    return param_types[ptype].to_string(nullptr, static_cast<char *>(const_cast<void *>(value)), 0, range);
}

const char *get_ptype_value_string(uint32_t ptype, const void *value)
{
    static char text[apconf::value_string_size];
    return convert_ptype_to_string(ptype, value, text, sizeof text) == 0 ? text : nullptr;
}

void check_ptype_define(void)
{
    apconf::check_ptype_define(param_types);
}
