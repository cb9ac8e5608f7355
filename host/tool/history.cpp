// apconf history: which messages made the configuration what it is.
#include <cstdio>
#include <fstream>
#include <limits>
#include <map>
#include <optional>

#include "bad_file.h"
#include "cli/lines.h"
#include "difference.h"
#include "json_build.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/queue_files.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct history_options {
    int newest = 20;
    bool json = false;
};

// One handled message: what is left of it in "old" and in "bad".
struct handled {
    std::optional<queue_entry> archived;
    std::optional<queue_entry> complaints;
};

struct row {
    int number = 0;
    int64_t time = 0;
    std::string sender = "-";
    std::optional<size_t> changes;  // nothing: the configuration before it is not archived
    size_t refusals = 0;
    bool archived = false;
    bool undone = false;

    const char *result() const
    {
        if (undone) return "undone";
        if (refusals == 0) return "applied";
        return archived && changes != size_t{0} ? "in part" : "refused";
    }
};

std::map<int, handled> handled_messages()
{
    std::map<int, handled> messages;
    for (const queue_entry &entry : all_entries()) {
        if (entry.state == std::string("applied")) messages[entry.number].archived = entry;
        if (entry.state == std::string("refused")) messages[entry.number].complaints = entry;
    }
    return messages;
}

// What is set in it; marks and removals of what is unset do not count as changes. Null when it cannot be read.
json_ptr archived_configuration(const queue_entry &entry)
{
    const json_ptr message(json_object_from_file(entry.file.c_str()));
    return message ? tidied(message.get()) : nullptr;
}

void read_complaints(const queue_entry &entry, row &row)
{
    std::ifstream file(entry.file);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(undone_mark))
            row.undone = true;
        else
            ++row.refusals;
}

// `before`: the configuration of the message archived before, which becomes this one's.
row read_row(int number, const handled &message, json_ptr &before)
{
    row row;
    row.number = number;
    if (message.complaints) {
        read_complaints(*message.complaints, row);
        row.time = written_at(*message.complaints);
    }
    if (message.archived) {
        json_ptr configuration = archived_configuration(*message.archived);
        row.archived = true;
        row.time = written_at(*message.archived);
        row.sender = sender_of(*message.archived);
        if (before && configuration) row.changes = changed_commands(before.get(), configuration.get());
        before = std::move(configuration);
    }
    return row;
}

std::vector<row> newest_rows(size_t wanted)
{
    const auto messages = handled_messages();
    const size_t skipped = messages.size() > wanted ? messages.size() - wanted : 0;
    auto next = std::next(messages.begin(), static_cast<std::ptrdiff_t>(skipped));
    json_ptr before;
    for (auto earlier = next; !before && earlier != messages.begin();)
        if ((--earlier)->second.archived) before = archived_configuration(*earlier->second.archived);
    // Message 1 of a fresh queue changes a configuration in which nothing is set.
    if (next != messages.end() && next->first == 1) before = new_object();
    std::vector<row> rows;
    for (; next != messages.end(); ++next) rows.push_back(read_row(next->first, next->second, before));
    return rows;
}

void print_json(const std::vector<row> &rows)
{
    const json_ptr list = made(json_object_new_array());
    for (const row &row : rows) {
        json_ptr object = new_object();
        add(object.get(), "number", new_number(row.number));
        add(object.get(), "time", new_number(row.time));
        add(object.get(), "sender", new_text(row.sender.c_str()));
        add(object.get(), "changes", row.changes ? new_number(static_cast<int64_t>(*row.changes)) : nullptr);
        add(object.get(), "refusals", new_number(static_cast<int64_t>(row.refusals)));
        add(object.get(), "result", new_text(row.result()));
        append(list.get(), std::move(object));
    }
    puts(json_object_to_json_string_ext(list.get(), JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE));
}

int history(const history_options &options)
{
    const auto rows = newest_rows(static_cast<size_t>(options.newest));
    if (options.json) {
        print_json(rows);
        return EXIT_DONE;
    }
    if (rows.empty()) puts("no message has been handled yet");
    if (!rows.empty()) printf("%8s  %-20s %7s  %-8s %s\n", "NUMBER", "TIME", "CHANGES", "RESULT", "SENDER");
    for (const row &row : rows)
        printf("%8d  %-20s %7s  %-8s %s\n", row.number, local_time(row.time).c_str(),
               row.changes ? std::to_string(*row.changes).c_str() : "-", row.result(), row.sender.c_str());
    return EXIT_DONE;
}

}  // namespace

void add_history(command_line &line)
{
    const auto options = std::make_shared<history_options>();
    CLI::App &added = line.add({group::queue, "history",
                                "List the messages that were handled: time, commands changed, result and sender",
                                "apconf history -n 5", [options] { return history(*options); }});
    added.add_option("-n,--newest", options->newest, "How many, the newest ones")
        ->type_name("N")
        ->check(CLI::Range(1, std::numeric_limits<int>::max()))
        ->capture_default_str();
    added.add_flag("--json", options->json, "Print them as a JSON array");
}

}  // namespace apconf_host
