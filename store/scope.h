// Views of the data block for the code that works from descriptions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "apconf/description.h"

namespace apconf
{

// A {list, count} pair of the block, whatever its elements are. A list without memory, or a negative count, is empty.
class list_view
{
public:
    struct pair {
        void *list;
        int32_t count;
    };

    explicit list_view(void *place);
    explicit list_view(const void *place) : list_view(const_cast<void *>(place)) {}
    void *list() const { return pair_.list; }
    uint32_t count() const { return static_cast<uint32_t>(pair_.count); }
    char *element(uint32_t index, uint32_t size) const
    {
        return static_cast<char *>(pair_.list) + size_t{index} * size;
    }
    void store(void *list, int32_t count);

private:
    char *place_;
    pair pair_;
};

// The fields of a command, for range-based loops.
struct field_range {
    const apconf_field *first;
    const apconf_field *last;
    const apconf_field *begin() const { return first; }
    const apconf_field *end() const { return last; }
};
inline field_range fields_of(const apconf_command &command)
{
    return {command.fields, command.fields + command.field_count};
}

// Elements of the command's array; 1 for a command without one.
uint32_t element_count(const apconf_command &command);

template <typename Value>
Value load(const void *place)
{
    Value value;
    memcpy(&value, place, sizeof value);
    return value;
}

}  // namespace apconf
