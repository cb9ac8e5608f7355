// apconf commit: a batch of changes, checked whole and then queued as one message.
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>

#include "json.h"
#include "tool/problem.h"
#include "tool/subcommands.h"

namespace apconf_host
{

namespace
{

std::string read_all(const std::string &file)
{
    if (file == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    std::ifstream stream(file);
    if (!stream) throw failure(file + ": cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Where the text stops being JSON, for people: a line number from 1.
size_t line_of(const std::string &text, size_t position)
{
    size_t line = 1;
    for (size_t i = 0; i < position && i < text.size(); ++i) line += text[i] == '\n';
    return line;
}

struct tokener_release {
    void operator()(json_tokener *tokener) const { json_tokener_free(tokener); }
};

json_ptr parse_batch(const std::string &file)
{
    const std::string text = read_all(file);
    const std::unique_ptr<json_tokener, tokener_release> tokener(json_tokener_new());
    // The text is handed over with its NUL: it says that nothing follows.
    json_ptr batch(json_tokener_parse_ex(tokener.get(), text.c_str(), static_cast<int>(text.size() + 1)));
    const auto error = json_tokener_get_error(tokener.get());
    if (error != json_tokener_success)
        throw failure(file + ", line " + std::to_string(line_of(text, json_tokener_get_parse_end(tokener.get()))) +
                      ": " + json_tokener_error_desc(error));
    const size_t end = json_tokener_get_parse_end(tokener.get());
    if (text.find_first_not_of(" \t\r\n", end) != std::string::npos)
        throw failure(file + ", line " + std::to_string(line_of(text, end)) + ": something follows the message");
    if (!json_object_is_type(batch.get(), json_type_object)) throw failure(file + ": a message is a JSON object");
    return batch;
}

}  // namespace

int commit_command(const commit_options &options)
{
    const json_ptr batch = parse_batch(options.file);
    outcome outcome;
    outcome.as = role::batch;
    apply_message(batch.get(), outcome);
    if (!outcome.refusals.empty()) {
        release_configuration();
        throw refused_by_schema(outcome.refusals);
    }
    if (access(CMQ_MAX_INDEX, R_OK | W_OK) != 0) {
        release_configuration();
        throw failure(CMQ_DIR ": there is no queue to write to; apconfd makes it when it starts");
    }
    if (outcome.changes == 0) throw failure(options.file + ": the batch changes nothing");
    // Without a server the message waits in the queue.
    init_cmclient(nullptr, nullptr);
    const bool told = commit_batch() == 0;
    deinit_cmclient();
    if (apconf_committed_index() < 0) throw failure("the message could not be queued; the system log says why");
    printf("%d\n", apconf_committed_index());
    if (!told)
        fprintf(stderr, "apconf: the server could not be told; it applies message %d when it starts\n",
                apconf_committed_index());
    return EXIT_DONE;
}

}  // namespace apconf_host
