// Gets configurations from the server, the archive and files.
#include "tool/configuration.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "cli/line_reader.h"
#include "tool/input.h"
#include "tool/problem.h"
#include "tool/server.h"

namespace apconf_host
{

namespace
{

bool is_number(const std::string &name)
{
    return !name.empty() && std::all_of(name.begin(), name.end(), [](unsigned char c) { return isdigit(c); });
}

json_ptr archived(const std::string &number)
{
    const std::string file = std::string(CMQ_OLD_DIR "/") + number + ".json";
    json_ptr message(json_object_from_file(file.c_str()));
    if (!message) throw failure("there is no archived configuration " + number + "; 'apconf history' lists them");
    return message;
}

}  // namespace

json_ptr running()
{
    const target everything = parse_target(action::get, "config", {});
    return server_connection().get(everything, nullptr);
}

bool looks_like_json(const std::string &text)
{
    const size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && text[first] == '{';
}

json_ptr message_in(const vocabulary &vocabulary, const std::string &text, const std::string &file)
{
    if (looks_like_json(text)) return parse_message(text, file);
    read_result read = read_lines(vocabulary, text);
    if (read.message) return std::move(read.message);
    std::string problems;
    for (const read_problem &problem : read.problems)
        problems += (problems.empty() ? "" : "\n") + file + ":" + std::to_string(problem.line) + ":" +
                    std::to_string(problem.column) + ": " + problem.text;
    throw failure(problems);
}

json_ptr named_configuration(const vocabulary &vocabulary, const std::string &name, std::string &what)
{
    what = is_number(name) ? "archived " + name : name;
    if (name == "running") return running();
    return is_number(name) ? archived(name) : message_in(vocabulary, read_input(name), name);
}

bool report_left_out(const line_text &lines)
{
    for (const unsayable &unsaid : lines.left_out)
        fprintf(stderr, "apconf: %s: no line says %s: %s\n", unsaid.path.c_str(), unsaid.value.c_str(),
                unsaid.reason.c_str());
    return !lines.left_out.empty();
}

}  // namespace apconf_host
