// Child elements and attributes by name. CDATA nodes have no name, so every name is looked at before it is compared.
#include <libxml/tree.h>

#include <cstring>

#include "apconf/util.h"

namespace apconf
{
namespace
{

// Most names differ in their first letter, which spares the call.
bool is_called(const xmlChar *node_name, const char *name)
{
    if (!node_name || static_cast<char>(*node_name) != *name) return false;
    return strcmp(reinterpret_cast<const char *>(node_name), name) == 0;
}

}  // namespace
}  // namespace apconf

xmlNode *search_child_node(xmlNode *node, const char *name)
{
    if (!node || !name) return nullptr;
    for (xmlNode *child = node->children; child; child = child->next)
        if (child->type == XML_ELEMENT_NODE && apconf::is_called(child->name, name)) return child;
    return nullptr;
}

const char *get_xmlnode_attr(const xmlNode *node, const char *name)
{
    if (!node || !name || node->type != XML_ELEMENT_NODE) return nullptr;
    const xmlAttr *attribute = node->properties;
    while (attribute && !apconf::is_called(attribute->name, name)) attribute = attribute->next;
    if (!attribute || !attribute->children) return nullptr;
    return reinterpret_cast<const char *>(attribute->children->content);
}
