// Reading a command-tree file, and looks at its nodes, for the units that walk it.
#pragma once

#include <libxml/tree.h>

#include <cstring>

#include "util/owners.h"

namespace apconf
{

// The document in `path`, which has a root element; null when it could not be read, logged in the name of `reporter`.
xml_doc read_schema(const char *reporter, const char *path);

inline const char *name_of(const xmlNode *node)
{
    return reinterpret_cast<const char *>(node->name);
}

// CDATA nodes have no name.
inline bool is_named(const xmlNode *node, const char *name)
{
    return node->name && strcmp(name_of(node), name) == 0;
}

// Only elements have attributes, and only below them is it safe to descend: entity references lead in circles.
inline bool is_element(const xmlNode *node)
{
    return node->type == XML_ELEMENT_NODE;
}

}  // namespace apconf
