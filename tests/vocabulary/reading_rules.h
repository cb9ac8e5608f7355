// The rules of the tree file's head that make every command line readable from left to right.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <vector>

namespace apconf_test
{

// What in a command's lines, or a package's INDEX, could be read in two ways. Empty: nothing.
std::vector<std::string> ambiguities(const xmlNode *line);

// Commands of a package whose words begin those of another, or are taken by the command line itself.
std::vector<std::string> confusable_words(const xmlNode *package);

}  // namespace apconf_test
