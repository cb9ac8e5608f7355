// Owners and small readers of libxml2 documents.
#pragma once

#include <apconf/apconf.h>
#include <libxml/tree.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace apconf_host
{

struct document_release {
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using document_ptr = std::unique_ptr<xmlDoc, document_release>;

inline bool is_named(const xmlNode *element, const char *name)
{
    return strcmp(reinterpret_cast<const char *>(element->name), name) == 0;
}

// The text of an attribute; empty when it is absent.
inline std::string attribute(const xmlNode *element, const char *name)
{
    const char *text = get_xmlnode_attr(element, name);
    return text ? text : "";
}

// The elements that an element holds.
inline std::vector<xmlNode *> children_of(const xmlNode *parent)
{
    std::vector<xmlNode *> children;
    for (xmlNode *child = parent->children; child; child = child->next)
        if (child->type == XML_ELEMENT_NODE) children.push_back(child);
    return children;
}

}  // namespace apconf_host
