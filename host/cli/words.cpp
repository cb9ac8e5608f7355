// Splits command lines into words and quotes values, each the reverse of the other.
#include "cli/words.h"

#include <cctype>
#include <optional>

#include "secrets.h"

namespace apconf_host
{

namespace
{

bool is_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool is_control(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

int hex_digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

class splitter
{
public:
    explicit splitter(std::string_view line) : line_(line) {}

    split_line split()
    {
        skip_blanks();
        if (at_ < line_.size() && (line_[at_] == '!' || line_[at_] == '#')) return result_;
        while (at_ < line_.size() && result_.ok()) {
            read_word();
            if (!result_.ok()) break;
            result_.ends_in_word = at_ == line_.size();
            skip_blanks();
        }
        return result_;
    }

private:
    void skip_blanks()
    {
        while (at_ < line_.size() && is_blank(line_[at_])) ++at_;
    }

    void read_word()
    {
        word word;
        word.column = at_;
        while (at_ < line_.size() && !is_blank(line_[at_]) && result_.ok()) {
            if (line_[at_] == '"') {
                word.quoted = true;
                read_quoted(word.text);
            } else {
                word.text += line_[at_++];
            }
        }
        result_.words.push_back(std::move(word));
    }

    void read_quoted(std::string &text)
    {
        const size_t open = at_++;
        while (at_ < line_.size() && line_[at_] != '"') {
            if (line_[at_] == '\\') {
                if (!read_escape(text)) return;
            } else {
                text += line_[at_++];
            }
        }
        if (at_ == line_.size()) {
            result_.open_quote = true;
            result_.error_column = open;
            return;
        }
        ++at_;
    }

    bool read_escape(std::string &text)
    {
        const auto escaped = escape_at(at_);
        if (!escaped) {
            result_.bad_escape = true;
            result_.error_column = at_;
            return false;
        }
        text += *escaped;
        at_ += line_[at_ + 1] == 'x' ? 4 : 2;
        return true;
    }

    // The character that the escape at `place` stands for. NUL is none: no text holds it.
    std::optional<char> escape_at(size_t place) const
    {
        if (place + 1 >= line_.size()) return std::nullopt;
        switch (line_[place + 1]) {
            case '"':
            case '\\':
                return line_[place + 1];
            case 'n':
                return '\n';
            case 'r':
                return '\r';
            case 't':
                return '\t';
            case 'x': {
                if (place + 3 >= line_.size()) return std::nullopt;
                const int high = hex_digit(line_[place + 2]);
                const int low = hex_digit(line_[place + 3]);
                if (high < 0 || low < 0 || high + low == 0) return std::nullopt;
                return static_cast<char>(high * 16 + low);
            }
            default:
                return std::nullopt;
        }
    }

    std::string_view line_;
    size_t at_ = 0;
    split_line result_;
};

// A word of letters, digits and most signs stands as it is; "|" and "?" mean something to an interactive session.
bool needs_quotes(std::string_view value)
{
    if (value.empty() || value == masked_secret || value.front() == '!' || value.front() == '#') return true;
    for (const char c : value)
        if (is_blank(c) || is_control(c) || c == '"' || c == '\\' || c == '|' || c == '?') return true;
    return false;
}

}  // namespace

split_line split_words(std::string_view line)
{
    return splitter(line).split();
}

std::string quoted(std::string_view value)
{
    if (!needs_quotes(value)) return std::string(value);
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\') {
            text += {'\\', c};
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\r') {
            text += "\\r";
        } else if (c == '\t') {
            text += "\\t";
        } else if (is_control(c)) {
            text += "\\x";
            text += digits[static_cast<unsigned char>(c) >> 4];
            text += digits[static_cast<unsigned char>(c) & 15];
        } else {
            text += c;
        }
    }
    return text + '"';
}

}  // namespace apconf_host
