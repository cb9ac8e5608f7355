// Reading whole numbers by the rules of the target, whose unsigned long has 32 bits, on machines of any width. They are
// read here rather than by strtoul, whose limits follow the machine and which takes a 0b prefix in newer C libraries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace apconf
{

// The number at the start of a text. `end` is where reading stopped: the start of the text when no digit was there.
template <typename Unsigned>
struct scanned_number {
    Unsigned magnitude = 0;
    bool negative = false;
    bool overflow = false;
    const char *end = nullptr;

    // As strtoul gives it: a minus sign wraps around.
    Unsigned wrapped() const { return negative ? Unsigned{0} - magnitude : magnitude; }
};

inline bool is_blank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// The digit's value; `base` or more for what is no digit.
template <unsigned base>
inline unsigned digit_value(char character)
{
    const unsigned code = static_cast<unsigned char>(character);
    if (base <= 10 || code - '0' < 10) return code - '0';
    const unsigned letter = (code | 0x20) - 'a';
    return letter < base - 10 ? letter + 10 : base;
}

// Takes digits off the text. The base is known to the compiler: multiplying by it is most of the work.
template <unsigned base, typename Unsigned>
inline const char *scan_digits(const char *cursor, scanned_number<Unsigned> &number)
{
    for (unsigned digit; (digit = digit_value<base>(*cursor)) < base; ++cursor) {
        number.overflow |= __builtin_mul_overflow(number.magnitude, base, &number.magnitude);
        number.overflow |= __builtin_add_overflow(number.magnitude, digit, &number.magnitude);
    }
    return cursor;
}

// Blanks, a sign and digits; base 0 knows 0x and a leading 0, as in C, but takes 0x alone for no number at all.
template <typename Unsigned>
inline scanned_number<Unsigned> scan_number(const char *text, unsigned base)
{
    scanned_number<Unsigned> number;
    const char *cursor = text;
    while (is_blank(*cursor)) ++cursor;
    number.negative = *cursor == '-';
    if (*cursor == '-' || *cursor == '+') ++cursor;
    if (base == 0) {
        base = *cursor == '0' ? 8 : 10;
        if (*cursor == '0' && (cursor[1] == 'x' || cursor[1] == 'X')) {
            base = 16;
            cursor += 2;
        }
    }
    const char *const digits = cursor;
    switch (base) {
        case 8:
            cursor = scan_digits<8>(cursor, number);
            break;
        case 16:
            cursor = scan_digits<16>(cursor, number);
            break;
        default:
            cursor = scan_digits<10>(cursor, number);
    }
    number.end = cursor == digits ? text : cursor;
    return number;
}

// The whole text as a number in base 0. False when it does not fit or something follows; an empty text is 0.
template <typename Number>
inline bool parse_number(const char *text, Number &result)
{
    using Unsigned = std::make_unsigned_t<Number>;
    const auto number = scan_number<Unsigned>(text, 0);
    if (number.overflow || *number.end != '\0') return false;
    if constexpr (std::is_signed_v<Number>) {
        const Unsigned largest = std::numeric_limits<Number>::max();
        if (number.magnitude > largest + (number.negative ? 1 : 0)) return false;
    }
    result = static_cast<Number>(number.wrapped());
    return true;
}

// atoi of a 32-bit machine: what does not fit becomes the nearest limit, what is no number 0.
inline int32_t parse_leading_int(const char *text)
{
    const auto number = scan_number<uint32_t>(text, 10);
    constexpr uint32_t largest = INT32_MAX;
    if (number.overflow || number.magnitude > largest) return number.negative ? INT32_MIN : INT32_MAX;
    return static_cast<int32_t>(number.wrapped());
}

// One "%u" of a 32-bit sscanf, moving `cursor` behind it: blanks and a sign are taken, what does not fit becomes the
// largest number. False when there is no number.
inline bool scan_unsigned(const char *&cursor, uint32_t &value)
{
    const auto number = scan_number<uint32_t>(cursor, 10);
    if (number.end == cursor) return false;
    value = number.overflow ? UINT32_MAX : number.wrapped();
    cursor = number.end;
    return true;
}

// Numbers with one character of `separators` between two of them. What follows the last one is ignored.
template <size_t count>
inline bool scan_fields(const char *text, const char (&separators)[count], uint32_t (&fields)[count])
{
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 && *text++ != separators[i - 1]) return false;
        if (!scan_unsigned(text, fields[i])) return false;
    }
    return true;
}

}  // namespace apconf
