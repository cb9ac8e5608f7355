// Queues batches and messages.
#include "tool/batch.h"

#include <unistd.h>

#include <cstdio>
#include <functional>

#include "json_build.h"
#include "tool/configuration.h"
#include "tool/problem.h"
#include "tool/requests.h"

namespace apconf_host
{

namespace
{

void need_queue()
{
    if (access(CMQ_MAX_INDEX, R_OK | W_OK) == 0) return;
    release_configuration();
    throw failure(CMQ_DIR ": there is no queue to write to; apconfd makes it when it starts");
}

// The queue gives a number also to a message that could not be written.
struct written {
    json_object *message;
    bool done;
};

int write_message(void *arg, int number)
{
    auto *written = static_cast<struct written *>(arg);
    const int result = cmq_put_cmessage(written->message, number);
    written->done = result >= 0;
    return result;
}

void check_changes(const outcome &taken, const std::string &name)
{
    if (taken.changes == 0) throw failure(name + ": the batch changes nothing");
}

queued queued_with(int number, bool told)
{
    if (number < 0) throw failure("the message could not be queued; the system log says why");
    return {number, told};
}

// The running configuration in `root`, as far as there is a server that tells it.
void take_running_configuration()
{
    try {
        const json_ptr configuration = running();
        outcome unused;
        apply_message(configuration.get(), unused);
    } catch (const failure &) {
        // Without a server the message waits; it can only be checked against nothing.
    }
}

}  // namespace

outcome check_message(json_object *message)
{
    take_running_configuration();
    outcome outcome;
    apply_message(message, outcome);
    release_configuration();
    return outcome;
}

void add_header(json_object *message)
{
    add(message, "MODULE", new_text("apconf"));
    add(message, "ACTION", new_text("set"));
}

queued queue_message(json_object *message)
{
    need_queue();
    add_header(message);
    written written = {message, false};
    const int number = cmq_handle_cmessage(write_message, &written);
    const bool told =
        written.done && init_cmclient(nullptr, nullptr) >= 0 && send_io_notify(IO_MSG_APPLIED, nullptr, 0) == 0;
    deinit_cmclient();
    return queued_with(written.done ? number : -1, told);
}

outcome take_batch(json_object *message)
{
    outcome outcome;
    outcome.as = role::batch;
    apply_message(message, outcome);
    if (!outcome.refusals.empty()) release_configuration();
    return outcome;
}

json_ptr batch_message(const outcome &taken, const std::string &name)
{
    check_changes(taken, name);
    json_ptr message = made(running_configuration());
    release_configuration();
    return message;
}

queued queue_batch(const outcome &taken, const std::string &name)
{
    need_queue();
    check_changes(taken, name);
    // Without a server the message waits in the queue.
    init_cmclient(nullptr, nullptr);
    const bool told = commit_batch() == 0;
    deinit_cmclient();
    return queued_with(apconf_committed_index(), told);
}

int report(const queued &message)
{
    printf("%d\n", message.number);
    fflush(stdout);
    if (message.server_told)
        warn_of_unconfirmed(message.number);
    else
        fprintf(stderr, "apconf: the server could not be told; it applies message %d when it starts\n", message.number);
    return EXIT_DONE;
}

}  // namespace apconf_host
