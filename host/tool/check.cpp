// apconf check: what is wrong with a command-tree file, a message or command lines, before anything uses them.
#include <algorithm>
#include <filesystem>

#include "cli/line_reader.h"
#include "cli/lines.h"
#include "cli/schema_check.h"
#include "tool/command_line.h"
#include "tool/input.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

namespace fs = std::filesystem;

struct check_options {
    std::string file;
    std::string help_file;  // empty: the one beside the command-tree file, if there is one
    bool json = false;
};

// What was found in a file: of each fault a line for people and an object for programs.
class findings
{
public:
    findings(const std::string &file, const char *kind)
    {
        add("file", json_object_new_string(file.c_str()));
        add("kind", json_object_new_string(kind));
        add("faults", faults_ = json_object_new_array());
    }

    void add(const char *key, json_object *value) { json_object_object_add(report_.get(), key, value); }

    // `object` becomes the findings' own.
    void add_fault(const std::string &line, json_object *object)
    {
        json_object_array_add(faults_, object);
        lines_.push_back(line);
    }

    void add_remark(const std::string &line) { remarks_.push_back(line); }

    int print(const std::string &when_good, bool json) const
    {
        if (json) {
            puts(shown(report_.get()).c_str());
        } else {
            for (const std::string &line : lines_) puts(line.c_str());
            for (const std::string &line : remarks_) puts(line.c_str());
            if (lines_.empty()) puts(when_good.c_str());
        }
        return lines_.empty() ? EXIT_DONE : EXIT_REFUSED;
    }

private:
    json_ptr report_{json_object_new_object()};
    json_object *faults_;
    std::vector<std::string> lines_;
    std::vector<std::string> remarks_;
};

void add_text(json_object *object, const char *key, const std::string &text)
{
    json_object_object_add(object, key, json_object_new_string(text.c_str()));
}

void add_number(json_object *object, const char *key, size_t number)
{
    json_object_object_add(object, key, json_object_new_uint64(number));
}

std::string help_file_of(const check_options &options)
{
    if (!options.help_file.empty() || options.file == "-") return options.help_file;
    const fs::path beside = fs::path(options.file).parent_path() / fs::path(vocabulary::default_help).filename();
    return fs::exists(beside) ? beside.string() : "";
}

int check_tree(const std::string &text, const check_options &options)
{
    register_root_cmd(lib_pkg_root);
    schema_text help;
    help.name = help_file_of(options);
    if (!help.name.empty()) help.text = read_input(help.name);
    const schema_report report = check_schema({options.file, text}, help.name.empty() ? nullptr : &help);

    findings findings(options.file, "command tree");
    findings.add("packages", json_object_new_uint64(report.packages));
    findings.add("commands", json_object_new_uint64(report.commands));
    for (const schema_fault &fault : report.faults) {
        json_object *object = json_object_new_object();
        add_text(object, "file", fault.file);
        add_number(object, "line", fault.line);
        add_text(object, "element", fault.element);
        add_text(object, "text", fault.text);
        findings.add_fault(to_text(fault), object);
    }
    return findings.print(options.file + ": no fault; " + std::to_string(report.packages) + " packages, " +
                              std::to_string(report.commands) + " commands" +
                              (help.name.empty() ? "; without a help file" : "; help texts of " + help.name),
                          options.json);
}

// What applying the message to an empty configuration does.
outcome applied(json_object *message, role as)
{
    outcome outcome;
    outcome.as = as;
    apply_message(message, outcome);
    release_configuration();
    return outcome;
}

// What every server would refuse. `place_of` tells where a path was read.
template <typename Place>
outcome check_changes(json_object *message, findings &findings, const Place &place_of)
{
    outcome taken = applied(message, role::server);
    findings.add("changes", json_object_new_uint64(taken.changes));
    for (const refusal &refusal : taken.refusals) {
        json_object *object = json_object_new_object();
        add_text(object, "path", refusal.path);
        add_text(object, "key", refusal.key);
        add_text(object, "value", refusal.value);
        add_text(object, "accepted", refusal.accepted);
        add_text(object, "text", to_text(refusal));
        findings.add_fault(place_of(refusal.path, object) + to_text(refusal), object);
    }
    return taken;
}

std::string changes_text(unsigned changes)
{
    return std::to_string(changes) + (changes == 1 ? " change" : " changes");
}

bool is_refused(const outcome &taken, const std::string &path)
{
    return std::any_of(taken.refusals.begin(), taken.refusals.end(),
                       [&path](const refusal &refusal) { return refusal.path == path; });
}

// What is no fault of a message, but better known beforehand; what is refused has been said.
void add_remarks(json_object *message, const outcome &taken, const std::string &file, findings &findings)
{
    json_object *unsayable = json_object_new_array();
    findings.add("unsayable", unsayable);
    for (const auto &unsaid : to_lines(vocabulary(), message, secrets::hidden).left_out) {
        if (is_refused(taken, unsaid.path)) continue;
        json_object *object = json_object_new_object();
        add_text(object, "path", unsaid.path);
        add_text(object, "reason", unsaid.reason);
        json_object_array_add(unsayable, object);
        findings.add_remark(file + ": " + unsaid.path + ": no command line says it: " + unsaid.reason);
    }
    json_object *unbatchable = json_object_new_array();
    findings.add("unbatchable", unbatchable);
    for (const refusal &refusal : applied(message, role::batch).refusals) {
        if (is_refused(taken, refusal.path)) continue;
        json_object *object = json_object_new_object();
        add_text(object, "path", refusal.path);
        add_text(object, "reason", "accepted is " + refusal.accepted);
        json_object_array_add(unbatchable, object);
        findings.add_remark(file + ": " + to_text(refusal) + " (by 'apconf commit'; a server takes it)");
    }
}

int check_message(const std::string &text, const check_options &options)
{
    load_tree();
    findings findings(options.file, "message");
    outcome taken;
    try {
        const json_ptr message = parse_message(text, options.file);
        taken = check_changes(message.get(), findings,
                              [&options](const std::string &, json_object *) { return options.file + ": "; });
        add_remarks(message.get(), taken, options.file, findings);
    } catch (const failure &problem) {
        json_object *object = json_object_new_object();
        add_text(object, "text", problem.what());
        findings.add_fault(problem.what(), object);
    }
    return findings.print(options.file + ": no fault; " + changes_text(taken.changes), options.json);
}

int check_lines(const std::string &text, const check_options &options)
{
    load_tree();
    findings findings(options.file, "command lines");
    const read_result read = read_lines(vocabulary(), text);
    for (const read_problem &problem : read.problems) {
        json_object *object = json_object_new_object();
        add_number(object, "line", problem.line);
        add_number(object, "column", problem.column);
        add_text(object, "text", problem.text);
        findings.add_fault(options.file + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column) +
                               ": " + problem.text,
                           object);
    }
    outcome taken;
    if (read.message)
        taken = check_changes(read.message.get(), findings, [&](const std::string &path, json_object *object) {
            const size_t line = line_of(read, path);
            if (line == 0) return options.file + ": ";
            add_number(object, "line", line);
            return options.file + ":" + std::to_string(line) + ": ";
        });
    return findings.print(options.file + ": no fault; " + changes_text(taken.changes), options.json);
}

int check(const check_options &options)
{
    const std::string text = read_input(options.file);
    const std::string byte_order_mark = "\xEF\xBB\xBF";
    const size_t begin = text.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
    const size_t first = text.find_first_not_of(" \t\r\n", begin);
    if (first == std::string::npos)
        throw failure(options.file + ": is empty; accepted is a command-tree file, a JSON message or command lines");
    if (text[first] == '<') return check_tree(text, options);
    if (!options.help_file.empty())
        throw usage_problem("--help-file belongs to a command-tree file, and " + options.file + " is none");
    return text[first] == '{' || text[first] == '[' ? check_message(text, options) : check_lines(text, options);
}

}  // namespace

void add_check(command_line &line)
{
    const auto options = std::make_shared<check_options>();
    CLI::App &added = line.add({group::vocabulary, "check",
                                "Say what is wrong with a command-tree file, a JSON message or command lines",
                                "apconf check /etc/config_cmd_tree.xml", [options] { return check(*options); }, false});
    added.add_option("FILE", options->file, "What it holds is seen from its beginning; - is standard input")
        ->required();
    added
        .add_option("--help-file", options->help_file,
                    "The help texts that go with a command-tree file; otherwise cmd_tree_help.txt beside it")
        ->type_name("FILE");
    added.add_flag("--json", options->json, "Print an object with kind and faults on one line");
}

}  // namespace apconf_host
