// Runs converters on guarded slots and buffers, and shows log lines as one text each.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "apconf/ptype.h"
#include "support/log_capture.h"

namespace apconf_test
{

inline std::string error_line(const std::string &function, const std::string &text)
{
    return std::to_string(LOG_ERR) + " " + function + ": " + text;
}

// What was logged since the last call, "PRIORITY FUNCTION: TEXT" each.
inline std::vector<std::string> take_lines(log_capture &log)
{
    std::vector<std::string> result;
    for (const auto &line : log.lines())
        result.push_back(std::to_string(line.priority) + " " + line.function + ": " + line.text);
    log.clear();
    return result;
}

// The converted value; nothing when the text is refused. The slot lies at an odd address, exactly its bytes are
// written, and none when the text is refused.
template <typename Value>
std::optional<Value> to_value(ptype_to_value_fn *convert, const char *text, const void *range = nullptr)
{
    constexpr unsigned char guard = 0xA5;
    alignas(16) std::array<unsigned char, sizeof(Value) + 16> room;
    room.fill(guard);
    unsigned char *const slot = room.data() + 1;
    const int result = convert(text, slot, range);
    EXPECT_TRUE(result == 0 || result == -1) << result;
    const size_t written = result == 0 ? sizeof(Value) : 0;
    EXPECT_EQ(room[0], guard);
    EXPECT_TRUE(std::all_of(slot + written, room.data() + room.size(), [](auto byte) { return byte == guard; }))
        << "wrote outside of the value, or wrote a refused one: " << (text ? text : "(null)");
    if (result != 0) return std::nullopt;
    Value value;
    memcpy(&value, slot, sizeof value);
    return value;
}

struct printed {
    int result;
    std::string text;  // what the buffer holds up to its first terminator; "" when nothing was written
    bool written;
};

// Converts into a buffer of `size` bytes with guards around it.
template <typename Value>
printed print(ptype_to_string_fn *convert, const Value &value, size_t size = 64, const void *range = nullptr)
{
    constexpr char guard = '#';
    std::string room(size + 16, guard);
    char *const buffer = room.data() + 8;
    const int result = convert(&value, buffer, size, range);
    const std::string inside(buffer, size);
    EXPECT_EQ(room.substr(0, 8), std::string(8, guard)) << "wrote before the buffer";
    EXPECT_EQ(room.substr(8 + size), std::string(8, guard)) << "wrote behind the buffer";
    const bool written = inside != std::string(size, guard);
    EXPECT_TRUE(!written || inside.find('\0') != std::string::npos) << "not terminated";
    return {result, written ? std::string(inside.c_str()) : "", written};
}

// The text of a value that converts.
template <typename Value>
std::string to_text(ptype_to_string_fn *convert, const Value &value)
{
    const printed output = print(convert, value);
    EXPECT_EQ(output.result, 0);
    EXPECT_TRUE(output.written);
    return output.text;
}

}  // namespace apconf_test
