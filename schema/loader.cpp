// The schema loader: walks the command-tree file and gives the registered nodes their parameters and repeat counts.
// The file never creates nodes; what it gets wrong is logged and passed over.
#include <json-c/json.h>
#include <libxml/tree.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "apconf/command_tree.h"
#include "apconf/ptype.h"
#include "apconf/util.h"
#include "ptype/target_parse.h"
#include "schema/schema_file.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

constexpr char schema_path[] = "/etc/config_cmd_tree.xml";

// Wide enough for a value of every type.
constexpr size_t value_buffer_size = 64;

// A parameter record until a node takes it.
class new_param
{
public:
    new_param() = default;
    new_param(const new_param &) = delete;
    new_param &operator=(const new_param &) = delete;
    ~new_param() { free_param(&record); }

    void hand_over() { record = {}; }

    struct cmd_param record = {};
};

// Only reports: a parameter is kept whatever its list holds.
void check_enum_list(const xmlNode *param, uint32_t ptype, const void *range)
{
    for (const xmlNode *body = param->children; body; body = body->next) {
        if (!is_named(body, "BODY")) continue;
        const char *name = get_xmlnode_attr(body, "name");
        if (!name) {
            LOG(LOG_ERR, "enum node missing name attr");
            continue;
        }
        alignas(uint64_t) unsigned char value[value_buffer_size];
        if (convert_ptype_to_value(ptype, value, name, range) != 0)
            LOG(LOG_ERR, "convert ptype '%s' enum node '%s' failed", get_ptype_name(ptype), name);
    }
}

// The attribute "default": of several in different name spaces the first one with a text.
const char *default_text(const xmlNode *param)
{
    if (param->type != XML_ELEMENT_NODE) return nullptr;
    for (const xmlAttr *attr = param->properties; attr; attr = attr->next) {
        if (!attr->name || strcmp(reinterpret_cast<const char *>(attr->name), "default") != 0) continue;
        if (attr->children && attr->children->content) return reinterpret_cast<const char *>(attr->children->content);
    }
    return nullptr;
}

json_object *get_default_value_obj(const xmlNode *param, const struct cmd_param &record)
{
    const char *text = default_text(param);
    if (!text) return nullptr;
    const auto ptype = static_cast<uint32_t>(record.ptype);
    if (convert_ptype_to_value(ptype, nullptr, text, record.range) != 0) {
        LOG(LOG_ERR, "convert param '%s' default value '%s' failed, ptype: %s", record.name, text,
            get_ptype_name(ptype));
        return nullptr;
    }
    json_object *value = nullptr;
    add_json_obj(&value, json_object_new_string(text));
    return value;
}

bool is_list(const xmlNode *param)
{
    uint8_t flags = 0;
    resolve_param_option_attr(get_xmlnode_attr(param, "option"), &flags);
    return (flags & PARAM_OPTION_LIST) != 0;
}

// Returns false when memory is short.
bool fill_param(const xmlNode *param, const char *name, int ptype, struct cmd_param &record)
{
    record.ptype = ptype;
    record.range = convert_ptype_range(static_cast<uint32_t>(ptype), get_xmlnode_attr(param, "min"),
                                       get_xmlnode_attr(param, "max"));
    record.name = strdup(name);
    if (!record.name) return false;
    if (is_list(param)) check_enum_list(param, static_cast<uint32_t>(ptype), record.range);
    record.default_value = get_default_value_obj(param, record);
    return true;
}

bool append_param(struct cmd_node *node, const struct cmd_param &record)
{
    // The count outlives a released array and means nothing without one.
    if (!node->params) node->param_count = 0;
    void *params = node->params;
    const void *added = add_array_member(&params, &node->param_count, sizeof record, &record);
    node->params = static_cast<struct cmd_param *>(params);
    return added != nullptr;
}

// Gives `node` the parameter that the PARAM element describes. False: it was refused, and what is below it too.
bool load_param(const xmlNode *param, struct cmd_node *node)
{
    constexpr char reporter[] = "parse_param";
    const char *name = get_xmlnode_attr(param, "name");
    if (!name) {
        LOG_AS(reporter, LOG_ERR, "PARAM need 'name' attr");
        return false;
    }
    const char *type = get_xmlnode_attr(param, "ptype");
    if (!type) {
        LOG_AS(reporter, LOG_ERR, "PARAM '%s' need 'ptype' attr", name);
        return false;
    }
    const int ptype = get_ptype_by_name(type);
    if (ptype < 0) {
        LOG_AS(reporter, LOG_ERR, "PARAM '%s' not support this type '%s'", name, type);
        return false;
    }
    LOG_AS(reporter, LOG_DEBUG, "param:%s, ptype:%s[%d]", name, type, ptype);

    new_param added;
    if (!fill_param(param, name, ptype, added.record) || !append_param(node, added.record)) {
        LOG_AS(reporter, LOG_ERR, "add param '%s' failed", name);
        return false;
    }
    added.hand_over();
    return true;
}

// Parameters may stand at any depth below a command, also inside other parameters: all land in the node's one list.
void parse_param(const xmlNode *first, struct cmd_node *node)
{
    for (const xmlNode *sibling = first; sibling; sibling = sibling->next) {
        if (is_named(sibling, "PARAM") && !load_param(sibling, node)) continue;
        // Below an entity reference stand the declarations of the document, which may refer to each other in circles.
        if (sibling->type != XML_ENTITY_REF_NODE) parse_param(sibling->children, node);
    }
}

void parse_command(const xmlNode *command, struct cmd_node *node)
{
    const char *repeat = get_xmlnode_attr(command, "repeat");
    if (repeat) node->repeat = parse_leading_int(repeat);
    parse_param(command->children, node);
}

void parse_package(const xmlNode *package, struct cmd_node *node)
{
    for (const xmlNode *child = package->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE) continue;
        const char *type = get_xmlnode_attr(child, "ntype");
        if (!type || is_named(child, "BODY")) {
            LOG(LOG_DEBUG, "skip unuseful node '%s'", name_of(child));
            continue;
        }
        if (is_named(child, "INDEX")) {
            LOG(LOG_INFO, "load package '%s'", name_of(package));
            parse_command(child, node);
            continue;
        }
        struct cmd_node *command = search_child_cmd(node, name_of(child));
        if (!command) {
            LOG(LOG_ERR, "undefine cmd '%s'", name_of(child));
        } else if (strcmp(type, "package") == 0) {
            parse_package(child, command);
        } else {
            LOG(LOG_INFO, "load command '%s'", name_of(child));
            parse_command(child, command);
        }
    }
}

}  // namespace
}  // namespace apconf

int command_tree_parser(void)
{
    const apconf::xml_doc document = apconf::read_schema(__func__, apconf::schema_path);
    if (!document) return -1;
    apconf::parse_package(xmlDocGetRootElement(document.get()), &cmd_tree);
    return 0;
}
