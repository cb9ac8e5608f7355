// Keeps secrets out of what people read: keys and passwords in messages and answers become "***".
#pragma once

#include <apconf/apconf.h>

#include <string>
#include <vector>

namespace apconf_host
{

constexpr const char *masked_secret = "***";

// Masks the secrets in one argument object of a command.
void mask_arguments(const apconf_command &command, json_object *arguments);

// Masks the secrets in a tree of packages and commands: an answer, a whole-tree message or a single-command message.
void mask_secrets(json_object *tree);

// The secrets in a tree that are the mark and not the secret: it was printed without them. As "config/password_cmd:
// password", without instances.
std::vector<std::string> masked_secrets_in(json_object *tree);

}  // namespace apconf_host
