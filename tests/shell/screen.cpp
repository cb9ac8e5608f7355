#include "shell/screen.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace apconf_test
{

namespace
{

// Bytes of the UTF-8 character that begins with this one.
size_t length_of(unsigned char first)
{
    return first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

}  // namespace

void screen::write(const std::string &output)
{
    std::string input = pending_ + output;
    pending_.clear();
    size_t at = 0;
    while (at < input.size()) {
        if (input[at] == '\033') {
            // ESC [ parameters final
            size_t end = at + 2;
            while (end < input.size() && (input[end] < '@' || input[end] > '~')) ++end;
            if (end >= input.size()) break;
            EXPECT_EQ(input[at + 1], '[') << "an escape sequence that this screen does not know";
            sequence(input[end], input.substr(at + 2, end - at - 2));
            at = end + 1;
        } else if (static_cast<unsigned char>(input[at]) < ' ') {
            control(input[at++]);
        } else {
            const size_t length = length_of(static_cast<unsigned char>(input[at]));
            if (at + length > input.size()) break;
            put(input.substr(at, length));
            at += length;
        }
    }
    pending_ = input.substr(std::min(at, input.size()));
}

void screen::put(const std::string &character)
{
    // The cursor waits behind the last column for the character that needs the next row.
    if (column_ == width_) {
        column_ = 0;
        control('\n');
    }
    cells &here = rows_[row_];
    if (here.size() <= column_) here.resize(column_ + 1, " ");
    here[column_++] = character;
}

void screen::control(char character)
{
    switch (character) {
        case '\n':
            if (++row_ == rows_.size()) rows_.emplace_back();
            break;
        case '\r':
            column_ = 0;
            break;
        case '\b':
            column_ -= column_ > 0 ? 1 : 0;
            break;
        case '\a':
            break;
        default:
            ADD_FAILURE() << "control character " << static_cast<int>(character);
    }
}

void screen::sequence(char final, const std::string &parameters)
{
    if (parameters.starts_with("?")) return;  // a mode, such as that of pasting
    const size_t count = parameters.empty() ? 1 : std::stoul(parameters);
    cells &here = rows_[row_];
    switch (final) {
        case 'A':
            row_ -= std::min(row_, count);
            break;
        case 'B':
            row_ = std::min(row_ + count, rows_.size() - 1);
            break;
        case 'C':
            column_ = std::min(column_ + count, width_ - 1);
            break;
        case 'D':
            column_ -= std::min(column_, count);
            break;
        case 'G':
            column_ = count - 1;
            break;
        case 'K':
            here.resize(std::min(here.size(), column_));
            break;
        case 'm':  // colours
            break;
        case 'P':
            if (column_ < here.size())
                here.erase(here.begin() + static_cast<std::ptrdiff_t>(column_),
                           here.begin() + static_cast<std::ptrdiff_t>(std::min(column_ + count, here.size())));
            break;
        case '@':
            if (column_ < here.size()) here.insert(here.begin() + static_cast<std::ptrdiff_t>(column_), count, " ");
            break;
        default:
            ADD_FAILURE() << "escape sequence " << parameters << final;
    }
}

std::string screen::joined(const cells &row, size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i) text += i < row.size() ? row[i] : " ";
    return text;
}

std::vector<std::string> screen::rows() const
{
    std::vector<std::string> texts;
    for (const cells &row : rows_) {
        std::string text = joined(row, row.size());
        text.erase(text.find_last_not_of(' ') + 1);
        texts.push_back(std::move(text));
    }
    return texts;
}

std::string screen::text() const
{
    std::string text;
    for (const std::string &row : rows()) text += row + "\n";
    return text;
}

std::string screen::before_cursor() const
{
    return joined(rows_[row_], column_);
}

}  // namespace apconf_test
