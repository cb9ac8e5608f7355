// The documentation as the tests read it: whole files, fenced blocks by their label, tables by their heading.
#pragma once

#include <string>
#include <vector>

namespace apconf_test
{

// A file of the source tree; fails the test when it cannot be read.
std::string source_file(const std::string &path);

struct fenced_block {
    std::string language;  // the label's first word
    std::string name;      // the rest of the label
    std::string text;      // without the newline before the closing fence
};

std::vector<fenced_block> fenced_blocks(const std::string &document);

// The block labelled "LANGUAGE NAME"; fails the test when there is not exactly one.
std::string block(const std::string &document, const std::string &label);

// The bytes of a hex block. What follows a semicolon is a remark.
std::string bytes(const std::string &document, const std::string &name);

// The rows of the first table below a heading, without the table's head; code quotes are taken off.
using table = std::vector<std::vector<std::string>>;
table table_below(const std::string &document, const std::string &heading);

// All matches of an extended regular expression, each as its groups, the whole match first.
std::vector<std::vector<std::string>> matches(const std::string &text, const std::string &expression);

// What stands between two texts of a file, both required.
std::string between(const std::string &text, const std::string &first, const std::string &last);

}  // namespace apconf_test
