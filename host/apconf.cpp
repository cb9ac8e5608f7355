// apconf, the command-line tool: reads and changes the configuration of a running access point, commits batches of
// changes, and shows what the queue holds.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <map>

#include "expectation.h"
#include "handlers.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

constexpr const char *assignment_help =
    "Arguments and instances, such as status=enable or radio_id=0; a key given twice makes a list of its values";

void load_tree()
{
    register_root_cmd(lib_pkg_root);
    if (command_tree_parser() != 0) throw failure("/etc/config_cmd_tree.xml: cannot be read; the system log says why");
    install_handlers();
    init_cmd_tree_data();
}

// One command line: its options, filled by the parser, and the subcommand that was named.
class command_line
{
public:
    command_line()
    {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "apconf " APCONF_VERSION);
        app_.set_help_flag("-h,--help", "Print this help and exit");
        app_.footer(
            "A PATH names packages and a command, such as config/radio/bss/ssid_cmd; \"config/\" may be left out.\n"
            "Instances stand in brackets or as KEY=VALUE: radio[0]/bss[1]/ssid_cmd is radio/bss/ssid_cmd radio_id=0 "
            "wlan_id=1.\n"
            "Exit status: 0 done, 1 refused or failed, 2 wrong usage.\n"
            "Each command has its own --help with an example.");
        add_get();
        add_change("set", "Set a command and read back that the server took it", change_,
                   "Example: apconf set radio[0]/txpower_cmd txpower=17", set_command);
        add_change("no", "Remove a command's setting, or the entries of a list whose keys all match", change_,
                   "Example: apconf no radio[0]/bss[1]/access_list/mac_acl_cmd mac=02:00:00:00:00:01", no_command);
        add_commit();
        add_queue();
    }

    int run(int argc, char **argv)
    {
        check_name(argc, argv);
        try {
            app_.parse(argc, argv);
        } catch (const CLI::ParseError &error) {
            if (error.get_exit_code() == 0) return app_.exit(error);
            fprintf(stderr, "apconf: %s\nRun 'apconf --help' for help.\n", error.what());
            return EXIT_USAGE;
        }
        load_tree();
        return commands_.at(chosen())();
    }

private:
    // The subcommand that was named, and of that one again.
    CLI::App *chosen()
    {
        CLI::App *named = &app_;
        while (!named->get_subcommands().empty()) named = named->get_subcommands().front();
        return named;
    }

    // The parser would only say that a subcommand is missing.
    void check_name(int argc, char **argv)
    {
        if (argc < 2 || argv[1][0] == '-') return;
        const std::string given = argv[1];
        std::vector<std::string> names;
        for (const CLI::App *subcommand : app_.get_subcommands({})) names.push_back(subcommand->get_name());
        if (std::find(names.begin(), names.end(), given) != names.end()) return;
        const std::string like = nearest(given, names);
        throw usage_problem("'" + given + "' is no command" + (like.empty() ? "" : "; perhaps '" + like + "'") +
                            "\nRun 'apconf --help' for help.");
    }

    CLI::App *add(CLI::App &parent, const char *name, const char *description, const char *example,
                  std::function<int()> command)
    {
        CLI::App *added = parent.add_subcommand(name, description);
        added->footer(example);
        commands_[added] = std::move(command);
        return added;
    }

    void add_get()
    {
        CLI::App *get = add(app_, "get", "Print what is configured, as JSON; null: nothing",
                            "Example: apconf get radio[0]/bss[1]/ssid_cmd", [this] { return get_command(get_); });
        get->add_option("PATH", get_.path, "The command or package")->required();
        get->add_option("KEY=VALUE", get_.assignments, assignment_help);
        get->add_flag("--json", get_.json, "Print the server's whole answer on one line");
        get->add_flag("--secrets", get_.secrets, "Show keys and passwords, which are *** otherwise");
    }

    void add_change(const char *name, const char *description, change_options &options, const char *example,
                    int (*command)(const change_options &))
    {
        CLI::App *change = add(app_, name, description, example, [&options, command] { return command(options); });
        change->add_option("PATH", options.path, "The command or package")->required();
        change->add_option("KEY=VALUE", options.assignments, assignment_help);
    }

    void add_commit()
    {
        CLI::App *commit = add(app_, "commit", "Queue a batch of changes, whole or not at all; prints its number",
                               "Example: echo '{\"config\":{\"hostname_cmd\":{\"hostname\":\"ap-12\"}}}' | apconf "
                               "commit -",
                               [this] { return commit_command(commit_); });
        commit->add_option("FILE", commit_.file, "A JSON message; - is standard input")->required();
    }

    void add_queue()
    {
        CLI::App *queue = add(app_, "queue", "Show the message queue", "Example: apconf queue show 17",
                              [this] { return list_queue(queue_); });
        queue->require_subcommand(0, 1);
        add(*queue, "list", "List all messages: number, state, time and sender", "Example: apconf queue list",
            [this] { return list_queue(queue_); });
        CLI::App *show = add(*queue, "show", "Print a message, and why it was refused", "Example: apconf queue show 17",
                             [this] { return show_queued(queue_); });
        show->add_option("NUMBER", queue_.number, "The message's number")
            ->required()
            ->check(CLI::Range(1, std::numeric_limits<int>::max()));
        show->add_flag("--secrets", queue_.secrets, "Show keys and passwords, which are *** otherwise");
    }

    CLI::App app_{"Reads and changes the configuration of a running access point.", "apconf"};
    get_options get_;
    change_options change_;
    commit_options commit_;
    queue_options queue_;
    std::map<CLI::App *, std::function<int()>> commands_;
};

int run(int argc, char **argv)
{
    try {
        return command_line().run(argc, argv);
    } catch (const usage_problem &problem) {
        fprintf(stderr, "apconf: %s\n", problem.what());
        return EXIT_USAGE;
    } catch (const refused_by_schema &problem) {
        for (const refusal &refusal : problem.refusals) fprintf(stderr, "apconf: %s\n", to_text(refusal).c_str());
    } catch (const std::exception &problem) {
        fprintf(stderr, "apconf: %s\n", problem.what());
    }
    return EXIT_REFUSED;
}

}  // namespace
}  // namespace apconf_host

int main(int argc, char **argv)
{
    return apconf_host::run(argc, argv);
}
