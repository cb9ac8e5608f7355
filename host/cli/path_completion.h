// What could stand at the end of a path or an assignment of the tool's command line.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

// Paths that begin as typed and are one component longer at most: "radio/", "radio[", "radio[0]/",
// "radio[0]/channel_cmd".
std::vector<std::string> complete_path(const std::string &typed);

// "status=" or, behind the sign, "status=enable": keys of the path's command and packages that neither the path nor the
// assignments before have given.
std::vector<std::string> complete_assignment(const std::string &path, const std::vector<std::string> &before,
                                             const std::string &typed);

}  // namespace apconf_host
