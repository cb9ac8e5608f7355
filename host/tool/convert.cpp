// apconf convert: a message as command lines.
#include <cstdio>
#include <sstream>

#include "tool/command_line.h"
#include "tool/configuration.h"
#include "tool/input.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct convert_options {
    std::string file;
    bool json = false;
    bool secrets = false;
};

json_ptr as_json(const line_text &lines)
{
    json_ptr result(json_object_new_object());
    json_object *texts = json_object_new_array();
    json_object_object_add(result.get(), "lines", texts);
    std::istringstream stream(lines.text);
    for (std::string line; std::getline(stream, line);)
        json_object_array_add(texts, json_object_new_string(line.c_str()));
    json_object *left_out = json_object_new_array();
    json_object_object_add(result.get(), "left_out", left_out);
    for (const unsayable &unsaid : lines.left_out) {
        json_object *entry = json_object_new_object();
        json_object_object_add(entry, "path", json_object_new_string(unsaid.path.c_str()));
        json_object_object_add(entry, "value", json_object_new_string(unsaid.value.c_str()));
        json_object_object_add(entry, "reason", json_object_new_string(unsaid.reason.c_str()));
        json_object_array_add(left_out, entry);
    }
    return result;
}

int convert(const convert_options &options)
{
    const json_ptr message = parse_message(read_input(options.file), options.file);
    const line_text lines = to_lines(vocabulary(), message.get(), options.secrets ? secrets::shown : secrets::hidden);
    if (options.json)
        puts(json_object_to_json_string_ext(as_json(lines).get(),
                                            JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE));
    else
        fputs(lines.text.c_str(), stdout);
    return report_left_out(lines) ? EXIT_REFUSED : EXIT_DONE;
}

}  // namespace

void add_convert(command_line &line)
{
    const auto options = std::make_shared<convert_options>();
    CLI::App &added =
        line.add({group::vocabulary, "convert", "Print a message as command lines; 'apconf apply' reads them back",
                  "apconf convert /etc/config/start_config.json", [options] { return convert(*options); }});
    added.add_option("FILE", options->file, "A JSON message; - is standard input")->required();
    added.add_flag("--json", options->json, "Print the lines, and what no line says, as JSON");
    add_secrets(added, options->secrets);
}

}  // namespace apconf_host
