// apconf commit: a batch of changes, checked whole and then queued as one message.
#include "secrets.h"
#include "tool/batch.h"
#include "tool/command_line.h"
#include "tool/input.h"
#include "tool/problem.h"
#include "tool/subcommands.h"
#include "tool/unconfirmed.h"

namespace apconf_host
{

namespace
{

struct commit_options {
    std::string file;
    int confirm = 0;  // seconds; 0: it needs no confirmation
};

// What was printed without its secrets must not replace them.
void refuse_masked_secrets(json_object *batch)
{
    std::vector<refusal> refusals;
    for (const std::string &where : masked_secrets_in(batch))
        refusals.push_back({where, "", masked_secret, "the secret itself; it was not shown, --secrets shows it"});
    if (!refusals.empty()) throw refused_by_schema(refusals);
}

int commit(const commit_options &options)
{
    const json_ptr batch = parse_message(read_input(options.file), options.file);
    refuse_masked_secrets(batch.get());
    const outcome taken = take_batch(batch.get());
    if (!taken.refusals.empty()) throw refused_by_schema(taken.refusals);
    if (options.confirm > 0) return queue_to_be_confirmed(batch_message(taken, options.file).get(), options.confirm);
    return report(queue_batch(taken, options.file));
}

}  // namespace

void add_commit(command_line &line)
{
    const auto options = std::make_shared<commit_options>();
    CLI::App &added =
        line.add({group::change, "commit", "Queue a batch of changes, whole or not at all; prints its number",
                  "echo '{\"config\":{\"hostname_cmd\":{\"hostname\":\"ap-12\"}}}' | apconf commit --confirm 60 -",
                  [options] { return commit(*options); }});
    added.add_option("FILE", options->file, "A JSON message; - is standard input")->required();
    add_confirm_option(added, options->confirm);
}

}  // namespace apconf_host
