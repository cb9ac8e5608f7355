// apconf shell: an interactive session on the running access point.
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <sstream>

#include "shell/run.h"
#include "tool/batch.h"
#include "tool/command_line.h"
#include "tool/problem.h"
#include "tool/requests.h"
#include "tool/server.h"
#include "tool/subcommands.h"
#include "tool/unconfirmed.h"

namespace apconf_host
{

namespace
{

std::string message_called(int number)
{
    return "message " + std::to_string(number);
}

// Why the server refused parts of the message, a line each; empty: it did not.
std::string refusals_of(int number)
{
    std::ostringstream text;
    text << std::ifstream(CMQ_BAD_DIR "/" + std::to_string(number) + ".txt").rdbuf();
    return text.str();
}

// What became of a message that the server knows of.
committed fate_of(const server_connection &server, int number)
{
    if (!wait_until_applied(server, number))
        return {message_called(number) + " is queued; the server has not applied it yet\n"};
    const std::string refusals = refusals_of(number);
    if (refusals.empty()) return {message_called(number) + " is applied\n"};
    return {message_called(number) + " is applied but for what the server refused:\n" + refusals, true};
}

// A connection for each request: a session that only waits for its user holds none, and finds a server that was
// started anew.
class server_access_point : public access_point
{
public:
    json_ptr running(const std::string &path) override
    {
        const target target = parse_target(action::get, path, {});
        const server_connection server;
        return server.get(target, target.param().get());
    }

    committed commit(json_object *batch) override
    {
        if (!changes_anything(batch)) return unchanged;
        const queued queued = queue_message(batch);
        if (!queued.server_told)
            return {message_called(queued.number) +
                    " is queued; there is no server, which applies it when it starts\n"};
        const server_connection server;
        committed done = fate_of(server, queued.number);
        const int earlier = state_of(server).unconfirmed;
        if (earlier > 0)
            done.text += message_called(earlier) + " waits to be confirmed; unless it is, this one is undone with it\n";
        return done;
    }

    committed commit_to_be_confirmed(json_object *batch, int seconds) override
    {
        if (!changes_anything(batch)) return unchanged;
        const server_connection server;
        committed done = fate_of(server, request_commit(server, batch, seconds));
        done.text += "'confirm' within " + std::to_string(seconds) + " s keeps it; else it is undone\n";
        return done;
    }

    std::string confirm() override { return message_called(request_confirmation()) + " is confirmed\n"; }

private:
    // Throws refused_by_schema.
    static bool changes_anything(json_object *batch)
    {
        const outcome expected = check_message(batch);
        if (!expected.refusals.empty()) throw refused_by_schema(expected.refusals);
        return expected.changes > 0;
    }

    const committed unchanged = {"This is how it is configured; nothing was queued.\n"};
};

int shell()
{
    load_help_map(vocabulary::default_help);
    const vocabulary vocabulary;
    server_access_point access_point;
    session session(vocabulary, access_point);
    const bool on_terminal = isatty(STDIN_FILENO) && isatty(STDOUT_FILENO);
    return on_terminal ? run_on_terminal(session) : run_script(session, std::cin);
}

}  // namespace

void add_shell(command_line &line)
{
    line.add({group::change, "shell",
              "Configure in an interactive session, or with lines from standard input; '?' helps at any place",
              "apconf shell <site.conf", shell});
}

}  // namespace apconf_host
