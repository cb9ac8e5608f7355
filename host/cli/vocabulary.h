// The vocabulary as the command line sees it: the words, parameters and help keys of the command-tree file, joined with
// the nodes of the loaded tree and their descriptions.
#pragma once

#include <apconf/apconf.h>

#include <memory>
#include <string>
#include <vector>

#include "cli/xml.h"

namespace apconf_host
{

// One PARAM or BODY of a command, in the order in which a line names them.
struct syntax_item {
    enum class kind {
        word,   // BODY: a fixed word, then what is inside
        value,  // PARAM: a value, then what is inside
        choice  // PARAM with "list": one of the items inside, then what is inside that one
    };
    kind what = kind::word;
    std::string name;
    bool optional = false;
    bool hidden = false;                  // taken, but not offered
    bool selects = false;                 // "pindex": a "no" line names it too
    const cmd_param *param = nullptr;     // ptype and range; null for a word
    const apconf_field *field = nullptr;  // where the block holds it; null for a word
    std::string ptype;                    // as the file spells it; so the next three, empty when absent
    std::string min;
    std::string max;
    std::string default_value;
    std::string help;    // a key of the help file
    std::string source;  // the standard that the limits come from
    std::vector<syntax_item> items;
};

// A command, or a package with its index parameters.
struct syntax_command {
    cmd_node *node = nullptr;
    const apconf_command *command = nullptr;
    const syntax_command *package = nullptr;  // the one around it; null for "config"
    std::string path;                         // "config/radio/bss/ssid_cmd"
    std::vector<std::string> words;           // of the command line
    bool has_no = false;                      // has a "no" form
    std::string help;
    std::string source;
    std::vector<syntax_item> items;
    std::vector<std::unique_ptr<syntax_command>> below;  // of a package, in the file's order

    bool is_package() const { return node->children != nullptr; }
    std::string line_words() const;  // "ip address"
};

// The items that hold a value, those inside others too, in the order of a line.
std::vector<const syntax_item *> values_of(const syntax_command &command);

// The instance that an INDEX object chooses, as paths show it: "[0]"; empty when it chooses none.
std::string in_brackets(json_object *index);

class vocabulary
{
public:
    static constexpr const char *default_file = "/etc/config_cmd_tree.xml";
    static constexpr const char *default_help = "/etc/cmd_tree_help.txt";

    // Joins the file with the loaded command tree. Elements that the tree does not know, and those without words, are
    // passed over. Throws std::runtime_error when the file cannot be read.
    explicit vocabulary(const char *file = default_file);

    const syntax_command &config() const { return *config_; }

    // The command or package of a node; null when the file does not have it.
    const syntax_command *find(const cmd_node *node) const;

    // The file's document, which convert_config reads.
    xmlNode *document_root() const;

private:
    document_ptr document_;
    std::unique_ptr<syntax_command> config_;
};

}  // namespace apconf_host
