// apconf queue: what waits to be applied, what was applied and what was refused.
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "json_build.h"
#include "secrets.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/queue_files.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

struct queue_options {
    int number = 0;
    bool json = false;
    bool secrets = false;
};

json_ptr message_in(const queue_entry &entry, bool secrets)
{
    json_ptr message(json_object_from_file(entry.file.c_str()));
    if (!message) throw failure(entry.file.string() + ": no JSON");
    if (!secrets) mask_secrets(message.get());
    return message;
}

std::vector<std::string> lines_in(const queue_entry &entry)
{
    std::ifstream text(entry.file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

json_ptr described(const queue_entry &entry)
{
    json_ptr object = new_object();
    add(object.get(), "number", new_number(entry.number));
    add(object.get(), "state", new_text(entry.state));
    add(object.get(), "time", new_number(written_at(entry)));
    add(object.get(), "sender", new_text(sender_of(entry).c_str()));
    return object;
}

json_ptr described_whole(const queue_entry &entry, bool secrets)
{
    json_ptr object = described(entry);
    if (entry.is_message()) {
        add(object.get(), "message", message_in(entry, secrets));
        return object;
    }
    json_ptr reasons = made(json_object_new_array());
    for (const std::string &line : lines_in(entry)) append(reasons.get(), new_text(line.c_str()));
    add(object.get(), "reasons", std::move(reasons));
    return object;
}

void print_whole(const queue_entry &entry, bool secrets)
{
    printf("%d %s, %s\n", entry.number, entry.state, time_of(entry).c_str());
    if (entry.is_message())
        puts(json_object_to_json_string_ext(message_in(entry, secrets).get(), JSON_C_TO_STRING_PRETTY |
                                                                                  JSON_C_TO_STRING_SPACED |
                                                                                  JSON_C_TO_STRING_NOSLASHESCAPE));
    else
        for (const std::string &line : lines_in(entry)) puts(line.c_str());
}

int list_queue(const queue_options &options)
{
    const auto entries = all_entries();
    if (options.json) {
        const json_ptr list = made(json_object_new_array());
        for (const queue_entry &entry : entries) append(list.get(), described(entry));
        puts(shown(list.get()).c_str());
        return EXIT_DONE;
    }
    if (entries.empty()) {
        puts("the queue is empty");
        return EXIT_DONE;
    }
    printf("%8s  %-8s %-20s %s\n", "NUMBER", "STATE", "TIME", "SENDER");
    for (const queue_entry &entry : entries)
        printf("%8d  %-8s %-20s %s\n", entry.number, entry.state, time_of(entry).c_str(), sender_of(entry).c_str());
    return EXIT_DONE;
}

int show_queued(const queue_options &options)
{
    const json_ptr list = made(json_object_new_array());
    bool found = false;
    for (const queue_entry &entry : all_entries()) {
        if (entry.number != options.number) continue;
        found = true;
        if (options.json)
            append(list.get(), described_whole(entry, options.secrets));
        else
            print_whole(entry, options.secrets);
    }
    if (!found) throw failure("message " + std::to_string(options.number) + " is not in the queue");
    if (options.json) puts(shown(list.get()).c_str());
    return EXIT_DONE;
}

void add_json(CLI::App &subcommand, queue_options &options)
{
    subcommand.add_flag("--json", options.json, "Print a JSON array of them");
}

}  // namespace

void add_queue(command_line &line)
{
    const auto options = std::make_shared<queue_options>();
    const auto run_list = [options] { return list_queue(*options); };
    CLI::App &queue = line.add({group::queue, "queue", "Show the message queue", "apconf queue show 17", run_list});
    queue.require_subcommand(0, 1);
    add_json(queue, *options);
    CLI::App &list = line.add_below(
        queue, {nullptr, "list", "List all messages: number, state, time and sender", "apconf queue list", run_list});
    add_json(list, *options);

    CLI::App &show = line.add_below(queue, {nullptr, "show", "Print a message, and why it was refused",
                                            "apconf queue show 17", [options] { return show_queued(*options); }});
    show.add_option("NUMBER", options->number, "The message's number")
        ->required()
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
    add_json(show, *options);
    add_secrets(show, options->secrets);
}

}  // namespace apconf_host
