// A configuration as command lines, against parsing the same JSON and the same XML with the bare libraries.
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/pair.h"
#include "tests/store/batch.h"

namespace
{

using namespace apconf_bench;
using apconf_test::batch;

constexpr char schema_path[] = "/etc/config_cmd_tree.xml";
constexpr double goal = 1.5;

void convert(benchmark::State &state, json_object *message, FILE *out)
{
    for (auto _ : state) cli_line_convertor(out, message, schema_path);
}

void parse_both(benchmark::State &state, const std::string &text)
{
    for (auto _ : state) {
        json_object *const message = json_tokener_parse(text.c_str());
        xmlDoc *const document = xmlReadFile(schema_path, "UTF-8", XML_PARSE_NOBLANKS);
        if (!message || !document) state.SkipWithError("not parsed");
        state.PauseTiming();
        json_object_put(message);
        state.ResumeTiming();
        xmlFreeDoc(document);
    }
}

void add(const std::string &what, const std::string &text, FILE *out)
{
    json_object *const message = json_tokener_parse(text.c_str());
    add_pair(
        what + " as command lines, " + std::to_string(text.size()) + " bytes", goal,
        [message, out](benchmark::State &state) { convert(state, message, out); },
        [text](benchmark::State &state) { parse_both(state, text); },
        [](auto *benchmark) { benchmark->Unit(benchmark::kMicrosecond); });
}

std::string text_of(json_object *message)
{
    const std::string text = json_object_to_json_string_ext(message, JSON_C_TO_STRING_PRETTY);
    json_object_put(message);
    return text;
}

// Every field of every record set.
std::string largest_configuration()
{
    batch everything(batch::extent::everything);
    everything.fill();
    lookup_ctx lookup = {};
    json_object *message = nullptr;
    retrieve_config(&message, &lookup, "bench");
    return text_of(message);
}

}  // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    register_root_cmd(lib_pkg_root);
    init_cmd_tree_data();
    FILE *const out = fopen("/dev/null", "w");
    keep_freed_memory();
    add("start configuration", text_of(json_object_from_file(CMQ_START_CONFIG)), out);
    add("largest configuration", largest_configuration(), out);
    benchmark::RunSpecifiedBenchmarks();
}
