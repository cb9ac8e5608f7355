// The default tree file as its tests see it: each element beside the record of the package tables that it is for.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <vector>

#include "apconf/apconf.h"
#include "support/log_capture.h"
#include "util/owners.h"

namespace apconf_test
{

constexpr char tree_path[] = APCONF_SOURCE_DIR "/etc/config_cmd_tree.xml";
constexpr char help_path[] = APCONF_SOURCE_DIR "/etc/cmd_tree_help.txt";
constexpr char grammar_path[] = APCONF_SOURCE_DIR "/etc/config_cmd_tree.rng";
constexpr char start_path[] = APCONF_SOURCE_DIR "/etc/start_config.json";

// A package or command of the file.
struct entry {
    std::string path;  // "config/radio/bss/ssid_cmd"
    const xmlNode *element;
    const xmlNode *line;            // that has the words and parameters: a package's INDEX, else the element
    const cmd_node *node;           // null: the tables do not have it
    const apconf_command *command;  // null likewise

    bool is_package() const { return line != element; }
};

// All packages and commands in the file's order. The first call loads the file into the command tree.
const std::vector<entry> &entries();

// Those of them that the tables have and that say how they read.
std::vector<entry> described();

// The file's root element, as the converter wants it.
xmlNode *tree_root();

// What loading it logged.
const std::vector<log_line> &loading_log();

std::string contents(const std::string &path);
apconf::xml_doc parsed(const std::string &xml);

std::vector<const xmlNode *> elements_below(const xmlNode *parent);
bool is_named(const xmlNode *element, const char *name);
bool has_attribute(const xmlNode *element, const char *name);
std::string attribute(const xmlNode *element, const char *name);
bool has_option(const xmlNode *element, uint8_t option);

// The PARAM elements at any depth below, in document order.
std::vector<const xmlNode *> parameters(const xmlNode *line);

}  // namespace apconf_test
