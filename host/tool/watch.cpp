// apconf watch: prints each message as it is applied.
#include <signal.h>
#include <sys/socket.h>

#include <cstdio>

#include "cli/lines.h"
#include "json_build.h"
#include "secrets.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/queue_files.h"
#include "tool/subcommands.h"
#include "tool/subscription.h"

namespace apconf_host
{

namespace
{

struct watch_options {
    bool json = false;
    bool secrets = false;
};

// What the signal handler ends.
volatile sig_atomic_t watched = -1;
volatile sig_atomic_t stopped = 0;

void stop(int)
{
    stopped = 1;
    shutdown(watched, SHUT_RDWR);
}

void stop_on_signals(int fd)
{
    watched = fd;
    struct sigaction action = {};
    action.sa_handler = stop;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &action, nullptr);
}

std::string headline(json_object *event)
{
    json_object *number = member(event, "number");
    std::string line = number ? "message " + shown(number) : "set";
    line += " from " + sender_of(member(event, "message")) + ", " +
            local_time(json_object_get_int64(member(event, "time")));
    const int refusals = json_object_get_int(member(event, "refusals"));
    return refusals > 0 ? line + ", " + std::to_string(refusals) + " refused" : line;
}

// What one message sets and removes, as lines; what no line says, as remarks.
void print_lines(const vocabulary &vocabulary, json_object *message, bool with_secrets)
{
    const line_text lines = to_lines(vocabulary, message, with_secrets ? secrets::shown : secrets::hidden);
    fputs(lines.text.c_str(), stdout);
    for (const unsayable &rest : lines.left_out) printf("# %s: %s\n", rest.path.c_str(), rest.value.c_str());
}

void print_event(const vocabulary &vocabulary, json_object *event, bool with_secrets)
{
    printf("# %s\n", headline(event).c_str());
    json_object *message = member(event, "message");
    json_object *config = member(message, "config");
    if (!json_object_is_type(config, json_type_array)) return print_lines(vocabulary, message, with_secrets);
    // The whole configuration is replaced.
    for (size_t i = 0; i < json_object_array_length(config); ++i) {
        json_object *part = json_object_array_get_idx(config, i);
        if (member(part, ".OPT")) {
            puts("# everything is removed, then");
            continue;
        }
        const json_ptr rest = new_object();
        add(rest.get(), "config", shared(part));
        print_lines(vocabulary, tidied(rest.get()).get(), with_secrets);
    }
}

void print_json(json_object *event, bool with_secrets)
{
    if (!with_secrets) mask_secrets(member(event, "message"));
    puts(json_object_to_json_string_ext(event, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE));
}

int watch(const watch_options &options)
{
    const vocabulary vocabulary;
    subscription events;
    stop_on_signals(events.descriptor());
    while (const json_ptr event = events.next()) {
        if (options.json)
            print_json(event.get(), options.secrets);
        else
            print_event(vocabulary, event.get(), options.secrets);
        if (fflush(stdout) != 0) throw failure("standard output cannot be written");
    }
    if (stopped) return EXIT_DONE;
    throw failure("the server has ended the connection: it has gone, or its events were not read in time");
}

}  // namespace

void add_watch(command_line &line)
{
    const auto options = std::make_shared<watch_options>();
    CLI::App &added = line.add({group::running, "watch", "Print each message as it is applied, until Ctrl-C",
                                "apconf watch --json | jq .number", [options] { return watch(*options); }});
    added.add_flag("--json", options->json, "Print each as a JSON object on one line");
    add_secrets(added, options->secrets);
}

}  // namespace apconf_host
