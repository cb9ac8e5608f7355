// The command line of apconf: collects the subcommands, parses what was typed and runs the one that was named.
#include "tool/command_line.h"

#include <libxml/xmlerror.h>

#include <algorithm>
#include <cstdio>

#include "cli/vocabulary.h"
#include "expectation.h"
#include "handlers.h"
#include "tool/problem.h"

namespace apconf_host
{

void load_tree()
{
    const std::string file = vocabulary::default_file;
    register_root_cmd(lib_pkg_root);
    // libxml2 would say what it thinks of the file where it happens to stand in the output.
    xmlSetStructuredErrorFunc(nullptr, [](void *, xmlErrorPtr) {});
    const bool loaded = command_tree_parser() == 0;
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    if (!loaded) throw failure(file + ": cannot be read; 'apconf check " + file + "' says why");
    install_handlers();
    init_cmd_tree_data();
}

void add_address(CLI::App &subcommand, address &where)
{
    subcommand.add_option("PATH", where.path, "The command or package")->required();
    subcommand.add_option("KEY=VALUE", where.assignments,
                          "Arguments and instances, such as status=enable or radio_id=0; a key given twice makes a "
                          "list of its values");
}

void add_secrets(CLI::App &subcommand, bool &secrets)
{
    subcommand.add_flag("--secrets", secrets, "Show keys and passwords, which are *** otherwise");
}

command_line::command_line() : app_("Reads and changes the configuration of a running access point.", "apconf")
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
}

CLI::App &command_line::add(subcommand added)
{
    return add_below(app_, std::move(added));
}

CLI::App &command_line::add_below(CLI::App &parent, subcommand added)
{
    CLI::App &app = *parent.add_subcommand(added.name, added.description);
    app.footer(std::string("Example: ") + added.example);
    if (added.group) app.group(added.group);
    commands_[&app] = std::move(added);
    return app;
}

int command_line::run(int argc, char **argv)
{
    check_name(argc, argv);
    try {
        app_.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) return app_.exit(error);
        throw usage_problem(std::string(error.what()) + "\nRun 'apconf --help' for help.");
    }
    const subcommand &named = chosen();
    if (named.needs_tree) load_tree();
    return named.run();
}

// The subcommand that was named, and of that one again.
const subcommand &command_line::chosen()
{
    const CLI::App *named = &app_;
    while (!named->get_subcommands().empty()) named = named->get_subcommands().front();
    return commands_.at(named);
}

// The parser would only say that a subcommand is missing.
void command_line::check_name(int argc, char **argv)
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

}  // namespace apconf_host
