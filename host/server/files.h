// Small file operations of the server: numbered files, and files that are either the old or the new one.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

// The numbers N >= 1 of the files "N<suffix>" in a directory, ascending. Names of another form are passed over.
std::vector<int> numbers_in(const std::string &directory, const std::string &suffix);

std::string numbered_file(const std::string &directory, int number, const std::string &suffix);

// Replaces `path` by a file with this text, which is on the disk when the name changes hands: whoever reads finds the
// old text or the new one, also after a crash. False, logged, leaves the old one.
bool replace_file(const std::string &path, const std::string &text);

// Removes `path`, which is gone from the disk then. True also when there is no such file; false is logged.
bool remove_file(const std::string &path);

}  // namespace apconf_host
