// The tool's side of commits that have to be confirmed.
#include "tool/unconfirmed.h"

#include <unistd.h>

#include <cstdio>

#include "json_build.h"
#include "server/limits.h"
#include "tool/batch.h"
#include "tool/problem.h"
#include "tool/requests.h"

namespace apconf_host
{

namespace
{

void explain(int number, int seconds, bool applied)
{
    if (!applied)
        fprintf(stderr, "apconf: message %d is not applied yet; once it is,\n", number);
    else if (access((CMQ_BAD_DIR "/" + std::to_string(number) + ".txt").c_str(), F_OK) == 0)
        fprintf(stderr, "apconf: parts of it were refused: 'apconf queue show %d'\n", number);
    fprintf(stderr, "apconf: confirm it within %d s with 'apconf confirm', or it is undone\n", seconds);
}

[[noreturn]] void refuse_commit(const server_connection &server, reply_code code)
{
    const int earlier = code == reply_code::unconfirmed ? state_of(server).unconfirmed : 0;
    if (earlier > 0)
        throw failure("message " + std::to_string(earlier) + " waits to be confirmed; 'apconf confirm' first");
    throw failure(std::string("the message could not be queued: ") + describe(code));
}

[[noreturn]] void refuse_confirmation(const server_connection &server, reply_code code)
{
    if (code != reply_code::not_waiting) throw failure(std::string("the server answered: ") + describe(code));
    const int queued = state_of(server).unconfirmed;
    if (queued > 0) throw failure("message " + std::to_string(queued) + " is not applied yet; confirm it then");
    throw failure("there is nothing to confirm: no commit waits for it");
}

}  // namespace

void add_confirm_option(CLI::App &subcommand, int &seconds)
{
    subcommand
        .add_option("--confirm", seconds,
                    "Undo it, and everything after it, unless 'apconf confirm' comes within so many seconds after it "
                    "is applied")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, static_cast<int>(limits::confirm_time.count())));
}

int request_commit(const server_connection &server, json_object *message, int seconds)
{
    add_header(message);
    const json_ptr request = new_object();
    add(request.get(), "seconds", new_number(seconds));
    add(request.get(), "message", shared(message));
    const server_answer answer = ask(server, message_type::commit, request.get());
    if (answer.code != reply_code::ok) refuse_commit(server, answer.code);
    return json_object_get_int(member(answer.data.get(), "number"));
}

int request_confirmation()
{
    const server_connection server;
    const server_answer answer = ask(server, message_type::confirm);
    if (answer.code != reply_code::ok) refuse_confirmation(server, answer.code);
    return json_object_get_int(member(answer.data.get(), "number"));
}

int queue_to_be_confirmed(json_object *message, int seconds)
{
    const server_connection server;
    const int number = request_commit(server, message, seconds);
    printf("%d\n", number);
    fflush(stdout);
    explain(number, seconds, wait_until_applied(server, number));
    return EXIT_DONE;
}

}  // namespace apconf_host
