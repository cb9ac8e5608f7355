// Converters of the number types: SINT, UINT8, UINT16, UINT, UINT64 and FLOAT, and the integers' default ranges.
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "apconf/ptype.h"
#include "ptype/slots.h"
#include "ptype/target_parse.h"
#include "util/log.h"

const sint_range default_sint_range = {INT32_MIN, INT32_MAX};
const uint8_range default_uint8_range = {0, UINT8_MAX};
const uint16_range default_uint16_range = {0, UINT16_MAX};
const uint_range default_uint_range = {0, UINT32_MAX};

namespace apconf
{
namespace
{

using long64 = unsigned long long;

// The log texts, by the type that the number has while it is checked: a parsed number is a long, a value an int.

void log_parsed_out_of_range(const char *function, int32_t value, int32_t min, int32_t max)
{
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%ld, min:%d, max:%d", long{value}, min, max);
}

void log_parsed_out_of_range(const char *function, uint32_t value, uint32_t min, uint32_t max)
{
    using ulong32 = unsigned long;
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%lu, min:%u, max:%u", ulong32{value}, min, max);
}

void log_value_out_of_range(const char *function, int32_t value, int32_t min, int32_t max)
{
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%d, min:%d, max:%d", value, min, max);
}

void log_value_out_of_range(const char *function, uint32_t value, uint32_t min, uint32_t max)
{
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%u, min:%u, max:%u", value, min, max);
}

void log_value_out_of_range(const char *function, uint64_t value, uint64_t min, uint64_t max)
{
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%llu, min:%llu, max:%llu", long64{value}, long64{min}, long64{max});
}

void log_value_out_of_range(const char *function, float value, float min, float max)
{
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%f, min:%f, max:%f", double{value}, double{min}, double{max});
}

void log_parsed_out_of_range(const char *function, uint64_t value, uint64_t min, uint64_t max)
{
    log_value_out_of_range(function, value, min, max);
}

void print_number(char *text_out, size_t text_size, int32_t value)
{
    snprintf(text_out, text_size, "%d", value);
}
void print_number(char *text_out, size_t text_size, uint32_t value)
{
    snprintf(text_out, text_size, "%u", value);
}
void print_number(char *text_out, size_t text_size, uint64_t value)
{
    snprintf(text_out, text_size, "%llu", long64{value});
}
void print_number(char *text_out, size_t text_size, float value)
{
    snprintf(text_out, text_size, "%f", double{value});
}

// Written so that a value that is not a number is outside of every range.
template <typename Number, typename Range>
bool is_inside(Number number, const Range *limits)
{
    return !limits || (number >= limits->min && number <= limits->max);
}

// `Parsed` is what the text is read as and compared in, `Value` what the slot holds. Without limits all is inside.
template <typename Parsed, typename Value, typename Range>
int integer_to_ptype(const char *function, const char *text, void *value_out, const Range *limits)
{
    Parsed number;
    if (!text || !parse_number(text, number)) return -1;
    if (!is_inside(number, limits)) {
        log_parsed_out_of_range(function, number, Parsed{limits->min}, Parsed{limits->max});
        return -1;
    }
    store(value_out, static_cast<Value>(number));
    return 0;
}

template <typename Printed, typename Value, typename Range>
int number_to_string(const char *function, const void *value, char *text_out, size_t text_size, const Range *limits)
{
    if (!value) return -1;
    const Printed number = load<Value>(value);
    if (!is_inside(number, limits)) {
        log_value_out_of_range(function, number, Printed{limits->min}, Printed{limits->max});
        return -1;
    }
    if (text_out) print_number(text_out, text_size, number);
    return 0;
}

template <typename Range>
const Range *limits_of(const void *range, const Range *default_range)
{
    return range ? static_cast<const Range *>(range) : default_range;
}

constexpr const uint64_range *no_uint64_range = nullptr;
constexpr const float_range *no_float_range = nullptr;

}  // namespace
}  // namespace apconf

#define NUMBER_TO_STRING(NAME, Printed, Value, default_range)                                           \
    int NAME##_to_string(const void *value, char *text_out, size_t text_size, const void *range)        \
    {                                                                                                   \
        return apconf::number_to_string<Printed, Value>(#NAME "_to_string", value, text_out, text_size, \
                                                        apconf::limits_of(range, default_range));       \
    }
#define INTEGER_PTYPE(NAME, Parsed, Value, default_range)                                        \
    int NAME##_to_ptype(const char *text, void *value_out, const void *range)                    \
    {                                                                                            \
        return apconf::integer_to_ptype<Parsed, Value>(#NAME "_to_ptype", text, value_out,       \
                                                       apconf::limits_of(range, default_range)); \
    }                                                                                            \
    NUMBER_TO_STRING(NAME, Parsed, Value, default_range)

// clang-format off
INTEGER_PTYPE(SINT,   int32_t,  int32_t,  &default_sint_range)
INTEGER_PTYPE(UINT8,  uint32_t, uint8_t,  &default_uint8_range)
INTEGER_PTYPE(UINT16, uint32_t, uint16_t, &default_uint16_range)
INTEGER_PTYPE(UINT,   uint32_t, uint32_t, &default_uint_range)
INTEGER_PTYPE(UINT64, uint64_t, uint64_t, apconf::no_uint64_range)
NUMBER_TO_STRING(FLOAT, float, float, apconf::no_float_range)
// clang-format on

int FLOAT_to_ptype(const char *text, void *value_out, const void *range)
{
    if (!text) return -1;
    errno = 0;
    char *end;
    const float number = strtof(text, &end);
    if (errno == ERANGE || *end != '\0') return -1;
    const auto *limits = apconf::limits_of(range, apconf::no_float_range);
    if (!apconf::is_inside(number, limits)) {
        apconf::log_value_out_of_range(__func__, number, limits->min, limits->max);
        return -1;
    }
    apconf::store(value_out, number);
    return 0;
}
