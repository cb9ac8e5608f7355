// What a terminal shows after a program has written to it: text, cursor movements and erasing, nothing else.
#pragma once

#include <string>
#include <vector>

namespace apconf_test
{

class screen
{
public:
    explicit screen(size_t width) : width_(width), rows_(1) {}

    void write(const std::string &output);
    void resize(size_t width) { width_ = width; }

    // All rows since the beginning, without trailing blanks; nothing scrolls away.
    std::vector<std::string> rows() const;
    std::string text() const;

    // The row of the cursor, as far as the cursor.
    std::string before_cursor() const;

private:
    using cells = std::vector<std::string>;  // a character each

    void put(const std::string &character);
    void control(char character);
    void sequence(char final, const std::string &parameters);
    static std::string joined(const cells &row, size_t count);

    size_t width_;
    std::vector<cells> rows_;
    size_t row_ = 0;
    size_t column_ = 0;
    std::string pending_;  // the beginning of a sequence or character
};

}  // namespace apconf_test
