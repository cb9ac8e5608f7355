// apconf rollback: back to an archived configuration, by one queued message.
//
// A store owner's batch cannot say that something is no longer configured, so the message is the difference between
// what is running and the archive. It is tried out on this process's own block before anything is queued.
#include <cstdio>
#include <limits>

#include "difference.h"
#include "json_build.h"
#include "tool/batch.h"
#include "tool/command_line.h"
#include "tool/configuration.h"
#include "tool/problem.h"
#include "tool/queue_files.h"
#include "tool/requests.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

std::string archived_numbers()
{
    std::string first;
    std::string last;
    for (const queue_entry &entry : all_entries()) {
        if (entry.state != std::string("applied")) continue;
        last = std::to_string(entry.number);
        if (first.empty()) first = last;
    }
    if (first.empty()) return "none is archived";
    return first == last ? "only " + first + " is" : "archived are " + first + " to " + last;
}

// {"config": {...}}
json_ptr archived(int number)
{
    json_ptr configuration(json_object_from_file((CMQ_OLD_DIR "/" + std::to_string(number) + ".json").c_str()));
    if (!configuration)
        throw failure("configuration " + std::to_string(number) + " is not archived; " + archived_numbers());
    if (!json_object_is_type(member(configuration.get(), "config"), json_type_object))
        throw failure("archived configuration " + std::to_string(number) + " is damaged: it has no \"config\"");
    return configuration;
}

bool same_configuration(json_object *one, json_object *other)
{
    const auto text = [](json_object *configuration) {
        json_object *config = member(configuration, "config");
        return std::string(config ? to_line(config) : "{}");
    };
    return text(one) == text(other);
}

void apply(json_object *configuration)
{
    const json_ptr message = new_object();
    add(message.get(), "ACTION", new_text("set"));
    add(message.get(), "config", shared(member(configuration, "config")));
    outcome outcome;
    apply_message(message.get(), outcome);
    if (!outcome.refusals.empty()) throw refused_by_schema(outcome.refusals);
}

// Nothing is queued that would not lead exactly there.
void rehearse(json_object *from, json_object *message, json_object *to)
{
    if (member(from, "config")) apply(from);
    apply(message);
    const json_ptr result(running_configuration());
    release_configuration();
    if (!same_configuration(result.get(), to))
        throw failure("the archived configuration cannot be restored exactly by this version; nothing was changed");
}

// The archive holds what came of the message, whatever has been applied since.
void verify(int queued, json_object *wanted)
{
    if (same_configuration(archived(queued).get(), wanted)) return;
    throw failure("message " + std::to_string(queued) +
                  " was applied to another configuration than the one it was made for: something changed in between; "
                  "run it again");
}

int rollback(int number)
{
    const json_ptr wanted = archived(number);
    const json_ptr present = running();
    const json_ptr message = difference(present.get(), wanted.get());
    if (json_object_object_length(message.get()) == 0) {
        fprintf(stderr, "apconf: configuration %d is what is running\n", number);
        return EXIT_DONE;
    }
    rehearse(present.get(), message.get(), wanted.get());
    const queued queued = queue_message(message.get());
    report(queued);
    if (!wait_until_applied(server_connection(), queued.number))
        throw failure("message " + std::to_string(queued.number) + " is queued, but the server has not applied it yet");
    verify(queued.number, wanted.get());
    return EXIT_DONE;
}

}  // namespace

void add_rollback(command_line &line)
{
    const auto number = std::make_shared<int>(0);
    CLI::App &added =
        line.add({group::change, "rollback", "Go back to an archived configuration; prints the number of the message",
                  "apconf history; apconf rollback 12", [number] { return rollback(*number); }});
    added.add_option("NUMBER", *number, "The configuration as it was after message NUMBER")
        ->required()
        ->check(CLI::Range(1, std::numeric_limits<int>::max()));
}

}  // namespace apconf_host
