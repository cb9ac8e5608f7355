// Loading the command tree against reading the same file with libxml2 alone.
#include <apconf/command_tree.h>
#include <apconf/packages.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdlib>

#include "bench/pair.h"

namespace
{

constexpr char schema_path[] = "/etc/config_cmd_tree.xml";
constexpr double goal = 1.5;

// All of what the loader gave the tree. free_cmd_tree leaves more than half of it, and memory shall not grow here.
void release(struct cmd_node *node)
{
    for (uint32_t i = 0; node->params && i < node->param_count; ++i) free_param(&node->params[i]);
    free(node->params);
    node->params = nullptr;
    for (struct cmd_node *child = node->children; child && child->name; ++child) release(child);
}

void load_tree(benchmark::State &state)
{
    for (auto _ : state) {
        if (command_tree_parser() != 0) state.SkipWithError("the command tree does not load");
        state.PauseTiming();
        release(get_cmd_tree());
        state.ResumeTiming();
    }
}

void read_file(benchmark::State &state)
{
    for (auto _ : state) {
        xmlDoc *const document = xmlReadFile(schema_path, "UTF-8", XML_PARSE_NOBLANKS);
        if (!document) state.SkipWithError("the file does not parse");
        xmlFreeDoc(document);
    }
}

}  // namespace

int main(int argc, char **argv)
{
    register_root_cmd(lib_pkg_root);
    apconf_bench::add_pair("load the command tree", goal, load_tree, read_file,
                           [](auto *benchmark) { benchmark->Unit(benchmark::kMicrosecond); });

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
