// Keeps secrets out of what people read: keys and passwords in messages and answers become "***".
#pragma once

#include <apconf/apconf.h>

namespace apconf_host
{

constexpr const char *masked_secret = "***";

// Masks the secrets in a tree of packages and commands: an answer, a whole-tree message or a single-command message.
void mask_secrets(json_object *tree);

}  // namespace apconf_host
