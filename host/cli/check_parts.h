// The parts of check_schema, each one look at the same document, and what they share.
#pragma once

#include <string>
#include <vector>

#include "cli/schema_check.h"
#include "cli/xml.h"

namespace apconf_host
{

// What is wrong with elements of the document.
class element_faults
{
public:
    struct fault {
        const xmlNode *element;
        std::string text;
    };

    void add(const xmlNode *element, std::string text) { faults_.push_back({element, std::move(text)}); }

    bool has(const xmlNode *element) const
    {
        for (const fault &known : faults_)
            if (known.element == element) return true;
        return false;
    }

    const std::vector<fault> &all() const { return faults_; }

private:
    std::vector<fault> faults_;
};

// Elements against the compiled-in tree, PARAMs against the keys of the descriptions, and what the ptypes say of
// ranges, defaults and choices. Counts into `report`.
void check_records(xmlNode *root, element_faults &faults, schema_report &report);

// What its ptype says of a PARAM's options, limits, default and choices. Returns the options as bits.
uint8_t check_param(const xmlNode *param, uint32_t ptype, element_faults &faults);

// Command lines that would be read as two commands.
void check_words(xmlNode *root, element_faults &faults);

// Help keys both ways; what is wrong in the help file itself goes to `report`.
void check_help_keys(const xmlNode *root, const schema_text &help, element_faults &faults, schema_report &report);

// The RELAX NG grammar. It says little about what it refuses, so the smallest element that it refuses by itself is
// looked for, and nothing is said of one that already has a fault.
void check_grammar(xmlNode *root, element_faults &faults);

// "ptype 'UNIT' refused: accepted is UINT".
inline std::string refused(const std::string &what, const std::string &value, const std::string &accepted)
{
    return what + " '" + value + "' refused: accepted is " + accepted;
}

inline bool is_item(const xmlNode *element)
{
    return is_named(element, "PARAM") || is_named(element, "BODY");
}

// The element with the words of a command or package: its INDEX, or itself. Null: a package without INDEX.
inline xmlNode *words_of(xmlNode *element)
{
    return attribute(element, "ntype") == "package" ? search_child_node(element, "INDEX") : element;
}

}  // namespace apconf_host
