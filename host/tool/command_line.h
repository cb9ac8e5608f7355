// The command line of apconf: collects the subcommands, parses what was typed and runs the one that was named.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace apconf_host
{

// The headings of 'apconf --help'.
namespace group
{
constexpr const char *running = "Running configuration";
constexpr const char *change = "Changes";
constexpr const char *queue = "Queue";
constexpr const char *vocabulary = "Vocabulary";
}  // namespace group

struct subcommand {
    const char *group;  // null: one of another subcommand's own
    const char *name;
    const char *description;
    const char *example;       // a command line as it is typed
    std::function<int()> run;  // returns the exit status, or throws what problem.h declares
    bool needs_tree = true;    // the command tree is loaded first; false: `run` does so itself if it must
};

class command_line
{
public:
    command_line();

    // The caller adds the options, which live as long as `run` does.
    CLI::App &add(subcommand added);
    CLI::App &add_below(CLI::App &parent, subcommand added);

    // Returns the exit status. Throws what problem.h declares.
    int run(int argc, char **argv);

    // What was added, for completion.
    const CLI::App &parser() const { return app_; }

private:
    void check_name(int argc, char **argv);
    const subcommand &chosen();

    CLI::App app_;
    std::map<const CLI::App *, subcommand> commands_;
};

// Loads the command tree and installs the handlers. Throws failure.
void load_tree();

// What several subcommands take.
struct address {
    std::string path;
    std::vector<std::string> assignments;
};
void add_address(CLI::App &subcommand, address &where);
void add_secrets(CLI::App &subcommand, bool &secrets);

}  // namespace apconf_host
