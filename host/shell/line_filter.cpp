// What stands behind a pipe: lines chosen by a regular expression.
#include "shell/line_filter.h"

#include <sstream>

namespace apconf_host
{

const std::vector<filter_kind> &filter_kinds()
{
    static const std::vector<filter_kind> kinds = {
        {filter_kind::keeps::matching, "include", "HELP_PIPE_FILTER_INCLUDE"},
        {filter_kind::keeps::others, "exclude", "HELP_PIPE_FILTER_EXCLUDE"},
        {filter_kind::keeps::from_first_match_on, "begin", "Print from the first line that matches on"},
    };
    return kinds;
}

line_filter::line_filter(const filter_kind &kind, const std::string &expression) : what_(kind.what)
{
    auto compiled = std::make_unique<regex_t>();
    const int error = regcomp(compiled.get(), expression.c_str(), REG_EXTENDED | REG_NOSUB);
    if (error != 0) {
        char reason[128];
        regerror(error, compiled.get(), reason, sizeof reason);
        throw bad_expression("'" + expression + "' is no regular expression: " + reason);
    }
    expression_.reset(compiled.release());
}

std::string line_filter::apply(const std::string &text) const
{
    std::istringstream lines(text);
    std::string kept;
    bool begun = false;
    for (std::string line; std::getline(lines, line);) {
        const bool matched = matches(line);
        begun = begun || matched;
        const bool keep = what_ == filter_kind::keeps::matching ? matched
                          : what_ == filter_kind::keeps::others ? !matched
                                                                : begun;
        if (keep) kept += line + "\n";
    }
    return kept;
}

bool line_filter::matches(const std::string &line) const
{
    return regexec(expression_.get(), line.c_str(), 0, nullptr, 0) == 0;
}

}  // namespace apconf_host
