// Retrieving the whole configuration, with every field of every record set, against building and releasing the same
// tree with json-c alone.
#include <apconf/apconf.h>
#include <json-c/json.h>

#include "bench/bare_json.h"
#include "bench/pair.h"
#include "tests/store/batch.h"

namespace
{

using namespace apconf_bench;
using apconf_test::batch;

// Every value is converted to its text, and each record of the tree asks a handler.
constexpr double goal = 1.5;

// The caller owns it.
json_object *retrieve_everything()
{
    // Reporting hands the object over: the block keeps a reference of its own.
    json_object *const kept = json_object_get(root.config.ism_cmd.ism);
    lookup_ctx lookup = {};
    json_object *message = nullptr;
    retrieve_config(&message, &lookup, "bench");
    root.config.ism_cmd.ism = kept;
    return message;
}

void retrieve(benchmark::State &state)
{
    for (auto _ : state) {
        json_object *const message = retrieve_everything();
        if (!message) state.SkipWithError("not retrieved");
        json_object_put(message);
    }
}

void build(benchmark::State &state, const bare_message &message)
{
    for (auto _ : state) json_object_put(message.build());
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    register_root_cmd(lib_pkg_root);
    init_cmd_tree_data();
    batch everything(batch::extent::everything);
    everything.fill();
    keep_freed_memory();
    json_object *const message = retrieve_everything();
    const bare_message bare(message);
    json_object_put(message);
    add_pair(
        "retrieve everything", goal, retrieve, [&bare](benchmark::State &state) { build(state, bare); },
        [](auto *benchmark) { benchmark->Unit(benchmark::kMicrosecond); });
    benchmark::RunSpecifiedBenchmarks();
}
