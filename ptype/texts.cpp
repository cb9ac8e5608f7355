// Converters of the types whose value is the caller's own text, STRING, HEX_STR and BINARY, and of RAW_JSON, which
// converts nothing.
#include <algorithm>
#include <climits>
#include <cstring>

#include "apconf/ptype.h"
#include "ptype/slots.h"
#include "util/log.h"

namespace apconf
{
namespace
{

int check_length(const char *function, size_t length, const length_range *limits)
{
    if (!limits || (length >= limits->min && length <= limits->max)) return 0;
    LOG_AS(function, LOG_ERR, "OUT OF RANGE: value:%d, min:%d, max:%d", static_cast<int>(length),
           static_cast<int>(limits->min), static_cast<int>(limits->max));
    return -1;
}

int store_text(const char *function, const char *text, size_t length, void *value_out, const void *range)
{
    if (check_length(function, length, static_cast<const length_range *>(range)) != 0) return -1;
    store(value_out, text);
    return 0;
}

// All characters must be `allowed`; the same pass measures the text.
template <typename Allowed>
int restricted_to_ptype(const char *function, const char *text, void *value_out, const void *range, Allowed allowed)
{
    if (!text) return -1;
    const char *end = text;
    while (allowed(*end)) ++end;
    if (*end != '\0') return -1;
    return store_text(function, text, static_cast<size_t>(end - text), value_out, range);
}

// `terminator` is what the type adds to the length of its text wherever the text is measured.
int text_to_string(const char *function, const void *value, char *text_out, size_t text_size, const void *range,
                   size_t terminator)
{
    const char *text = value ? load<const char *>(value) : nullptr;
    if (!text) return -1;
    const size_t length = strlen(text) + terminator;
    if (check_length(function, length, static_cast<const length_range *>(range)) != 0) return -1;
    if (!text_out) return 0;
    if (text_size <= length) return static_cast<int>(std::min<size_t>(length, INT_MAX));
    strncpy(text_out, text, text_size);
    return 0;
}

}  // namespace
}  // namespace apconf

int STRING_to_ptype(const char *text, void *value_out, const void *range)
{
    if (!text) return -1;
    return apconf::store_text(__func__, text, range ? strlen(text) : 0, value_out, range);
}

// Any letter is taken, not only A to F: kept.
int HEX_STR_to_ptype(const char *text, void *value_out, const void *range)
{
    return apconf::restricted_to_ptype(__func__, text, value_out, range, [](char character) {
        const char lower = static_cast<char>(character | 0x20);
        return (character >= '0' && character <= '9') || (lower >= 'a' && lower <= 'z');
    });
}

int BINARY_to_ptype(const char *text, void *value_out, const void *range)
{
    return apconf::restricted_to_ptype(__func__, text, value_out, range,
                                       [](char character) { return character == '0' || character == '1'; });
}

int STRING_to_string(const void *value, char *text_out, size_t text_size, const void *range)
{
    return apconf::text_to_string(__func__, value, text_out, text_size, range, 0);
}

// These two count the terminator, so a buffer of exactly strlen + 1 bytes is too small for them: kept.
int HEX_STR_to_string(const void *value, char *text_out, size_t text_size, const void *range)
{
    return apconf::text_to_string(__func__, value, text_out, text_size, range, 1);
}

int BINARY_to_string(const void *value, char *text_out, size_t text_size, const void *range)
{
    return apconf::text_to_string(__func__, value, text_out, text_size, range, 1);
}

int RAW_JSON_to_ptype(const char *, void *, const void *)
{
    return 0;
}

// One and the same function under both names: it looks at no argument, so the different lists do not matter.
#ifndef __clang__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wattribute-alias"
#endif
int RAW_JSON_to_string(const void *, char *, size_t, const void *) __attribute__((alias("RAW_JSON_to_ptype")));
#ifndef __clang__
#pragma GCC diagnostic pop
#endif
