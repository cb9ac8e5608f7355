// How a subcommand fails: what was refused, or what could not be done. main prints it and ends the program.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "handlers.h"

namespace apconf_host
{

enum exit_status { EXIT_DONE = 0, EXIT_REFUSED = 1, EXIT_USAGE = 2 };

// The command line cannot be understood.
struct usage_problem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// It was understood, but could not be done.
struct failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The schema, or whoever applied it, does not accept it.
struct refused_by_schema : std::runtime_error {
    explicit refused_by_schema(std::vector<refusal> list) : std::runtime_error("refused"), refusals(std::move(list)) {}
    explicit refused_by_schema(refusal one) : refused_by_schema(std::vector<refusal>{std::move(one)}) {}
    std::vector<refusal> refusals;
};

}  // namespace apconf_host
