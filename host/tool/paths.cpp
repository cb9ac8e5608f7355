// apconf paths: where everything is.
#include <functional>

#include "json.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/target.h"

namespace apconf_host
{

namespace
{

struct paths_options {
    std::string path;
    bool json = false;
};

void collect(const cmd_node &node, const std::string &path, std::vector<std::string> &paths)
{
    paths.push_back(path);
    for (const cmd_node *child = node.children; child && child->name; ++child)
        collect(*child, path + "/" + child->name, paths);
}

int paths(const paths_options &options)
{
    const named_node start = find_node(options.path);
    std::vector<std::string> paths;
    collect(*start.node, start.path, paths);
    if (options.json) {
        const json_ptr list(json_object_new_array());
        for (const std::string &path : paths) json_object_array_add(list.get(), json_object_new_string(path.c_str()));
        puts(shown(list.get()).c_str());
    } else {
        for (const std::string &path : paths) puts(path.c_str());
    }
    return EXIT_DONE;
}

}  // namespace

void add_paths(command_line &line)
{
    const auto options = std::make_shared<paths_options>();
    CLI::App &added = line.add({group::vocabulary, "paths", "Print the path of every package and command, one a line",
                                "apconf paths | grep vlan", [options] { return paths(*options); }});
    added.add_option("PATH", options->path, "Only those in this package");
    added.add_flag("--json", options->json, "Print an array");
}

}  // namespace apconf_host
