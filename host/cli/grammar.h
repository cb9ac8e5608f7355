// The RELAX NG grammar of command-tree files: whether a document follows it, and what it allows an element to have.
#pragma once

#include <libxml/relaxng.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cli/xml.h"

namespace apconf_host
{

// The grammar file as it stood when this was built: programs need no file for it.
extern const char *const command_tree_grammar;

// One thing that an attribute's value may be.
struct value_rule {
    enum class kind { word, form, type } what;
    std::string text;

    std::string in_words() const;
    bool fits(const std::string &value) const;
};

struct attribute_rule {
    bool required = false;
    std::vector<value_rule> accepted;  // none: any text

    std::string in_words() const;
    bool fits(const std::string &value) const;
};
using attribute_rules = std::map<std::string, attribute_rule>;

// What elements of a kind may have anywhere. A certain place can allow less.
struct element_rules {
    attribute_rules attributes;
    std::set<std::string> children;  // names; "package" and "command" for those
};

class grammar
{
public:
    grammar();

    // Empty when the document is valid, else what the validator says first.
    std::string complaint(xmlDoc *document) const;

    const element_rules &rules_of(const xmlNode *element);

private:
    struct release {
        void operator()(xmlRelaxNG *schema) const { xmlRelaxNGFree(schema); }
    };
    const xmlNode *definition(const std::string &name) const;
    std::vector<const xmlNode *> patterns_of(const xmlNode *element) const;
    attribute_rules attributes(const xmlNode *parent) const;
    attribute_rules attributes_in(const xmlNode *pattern) const;
    std::vector<value_rule> values(const xmlNode *parent) const;
    std::set<std::string> children(const xmlNode *parent) const;

    document_ptr source_;
    std::unique_ptr<xmlRelaxNG, release> schema_;
    std::map<std::string, element_rules> rules_;  // by name, or by ntype where names are open
};

// "a, b or c".
std::string alternatives(const std::vector<std::string> &words);

}  // namespace apconf_host
