// What stands behind a pipe: `show | include REGEX`.
#pragma once

#include <regex.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace apconf_host
{

struct filter_kind {
    enum class keeps { matching, others, from_first_match_on };
    keeps what;
    const char *name;
    const char *help;  // a key of the help file, or a text
};

const std::vector<filter_kind> &filter_kinds();

// The message names the expression and what is wrong with it.
struct bad_expression : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class line_filter
{
public:
    // A POSIX extended regular expression. Throws bad_expression.
    line_filter(const filter_kind &kind, const std::string &expression);

    // Those lines of a text that it lets through.
    std::string apply(const std::string &text) const;

private:
    struct regex_release {
        void operator()(regex_t *expression) const
        {
            regfree(expression);
            delete expression;
        }
    };
    bool matches(const std::string &line) const;

    filter_kind::keeps what_;
    std::unique_ptr<regex_t, regex_release> expression_;
};

}  // namespace apconf_host
