// Changes that the server undoes unless they are confirmed in time.
#pragma once

#include <CLI/CLI.hpp>

#include "json.h"
#include "tool/server.h"

namespace apconf_host
{

// The option --confirm SECONDS of the subcommands that change something; 0 when it is not given.
void add_confirm_option(CLI::App &subcommand, int &seconds);

// Has the server queue {"config": {...}} as this tool's set message. Returns its number; throws failure.
int request_commit(const server_connection &server, json_object *message, int seconds);

// Keeps what the commit that waits has changed. Returns its number; throws failure when there is none.
int request_confirmation();

// request_commit for a subcommand: waits until the message is applied and prints its number. Returns the exit status.
int queue_to_be_confirmed(json_object *message, int seconds);

}  // namespace apconf_host
