// A session whose lines come from a file or another program.
#include <cstdio>

#include "shell/run.h"
#include "tool/problem.h"

namespace apconf_host
{

namespace
{

void report(const problem &wrong, size_t line)
{
    // What was printed before stands before.
    fflush(stdout);
    const std::string column = wrong.column ? ", column " + std::to_string(*wrong.column + 1) : "";
    fprintf(stderr, "apconf: line %zu%s: %s\n", line, column.c_str(), wrong.text.c_str());
}

}  // namespace

int run_script(session &session, std::istream &lines)
{
    bool failed = false;
    size_t number = 0;
    for (std::string line; !session.ended() && std::getline(lines, line);) {
        ++number;
        const reply reply = session.execute(line);
        fputs(reply.output.c_str(), stdout);
        if (!reply.wrong) continue;
        failed = true;
        report(*reply.wrong, number);
    }
    fflush(stdout);
    if (session.has_changes()) {
        failed = true;
        fputs("apconf: the session ended with changes that were not committed; they are lost\n", stderr);
    }
    return failed ? EXIT_REFUSED : EXIT_DONE;
}

}  // namespace apconf_host
