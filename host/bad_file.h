// What the server writes into the files that say why messages, or parts of them, are not in force: a line for each
// refusal, and one for a commit that was undone.
#pragma once

namespace apconf_host
{

// Opens the line of a commit that was undone.
constexpr const char *undone_mark = "undone: ";

}  // namespace apconf_host
