// How converters reach a caller's value and text: slots of any alignment, and output buffers of any size.
#pragma once

#include <cstddef>
#include <cstring>

namespace apconf
{

template <typename Value>
inline Value load(const void *slot)
{
    Value value;
    memcpy(&value, slot, sizeof value);
    return value;
}

// A null slot asks for validation only.
template <typename Value>
inline void store(void *slot, const Value &value)
{
    if (slot) memcpy(slot, &value, sizeof value);
}

// Copies `text`, cut to the buffer, and fills the rest of the buffer with zeros. A buffer without room stays untouched.
inline void copy_cut(char *text_out, size_t text_size, const char *text)
{
    if (!text_out || text_size == 0) return;
    strncpy(text_out, text, text_size - 1);
    text_out[text_size - 1] = '\0';
}

}  // namespace apconf
