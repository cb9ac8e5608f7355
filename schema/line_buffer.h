// One line of text that grows as it is written and is printed indented or, after a fault, not at all.
#pragma once

#include <cstddef>
#include <cstdio>

#include "util/owners.h"

namespace apconf
{

class line_buffer
{
public:
    explicit line_buffer(FILE *out) : out_(out) {}

    void append(const char *format, ...) __attribute__((format(printf, 2, 3)));
    // The line will not be printed.
    void drop() { dropped_ = true; }
    // The line has outgrown its limit or memory; nothing more is taken until it is flushed.
    bool is_full() const { return full_; }
    // Prints the line unless it was dropped, and starts an empty one.
    void flush();

    int indent = 0;

private:
    bool reserve(size_t added);

    FILE *out_;
    heap_text text_;
    size_t length_ = 0;
    size_t capacity_ = 0;
    bool dropped_ = false;
    bool full_ = false;
};

}  // namespace apconf
