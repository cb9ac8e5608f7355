// One line of text that grows as it is written.
#include "schema/line_buffer.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>

#include "util/log.h"

namespace apconf
{
namespace
{

constexpr size_t usual_length = 1024;

// Choices that hold choices are listed twice at each level, so a hostile schema could ask for a line without end.
constexpr size_t longest_line = size_t{1} << 20;

}  // namespace

bool line_buffer::reserve(size_t added)
{
    if (added >= longest_line - length_) return false;
    const size_t needed = length_ + added + 1;
    if (needed <= capacity_) return true;
    const size_t capacity = std::max({needed, 2 * capacity_, usual_length});
    auto *grown = static_cast<char *>(realloc(text_.get(), capacity));
    if (!grown) return false;
    (void)text_.release();
    text_.reset(grown);
    capacity_ = capacity;
    return true;
}

void line_buffer::append(const char *format, ...)
{
    if (full_) return;
    // Nearly every piece fits in what is left, so the first attempt is the last one.
    const size_t room = capacity_ - length_;
    va_list arguments;
    va_start(arguments, format);
    const int added = vsnprintf(text_.get() + length_, room, format, arguments);
    va_end(arguments);
    if (added < 0 || !reserve(static_cast<size_t>(added))) {
        LOG_AS("append_line", LOG_ERR, "line is too long after %zu characters, skip it", length_);
        full_ = dropped_ = true;
        return;
    }
    if (static_cast<size_t>(added) >= room) {
        va_start(arguments, format);
        vsnprintf(text_.get() + length_, capacity_ - length_, format, arguments);
        va_end(arguments);
    }
    length_ += static_cast<size_t>(added);
}

void line_buffer::flush()
{
    if (!dropped_) {
        fprintf(out_, "%*s", indent, "");
        fwrite(text_.get(), 1, length_, out_);
        putc('\n', out_);
    }
    length_ = 0;
    dropped_ = full_ = false;
}

}  // namespace apconf
