// The converter from configuration messages to command lines. The wording comes from a command-tree file, the values
// from the message, which may hold any JSON.
#include "apconf/cli_line.h"

#include <json-c/json.h>
#include <libxml/tree.h>

#include <cstring>

#include "apconf/command_tree.h"
#include "apconf/util.h"
#include "schema/line_buffer.h"
#include "schema/schema_file.h"
#include "util/log.h"

namespace apconf
{
namespace
{

// One command being converted; shared by all commands of a package object.
struct conversion {
    line_buffer &line;
    bool no_mode = false;                // the object's option word is "no"
    bool index_mode = false;             // the element is a package's INDEX
    const char *pending_body = nullptr;  // an optional BODY that waits for a value
    json_object *object = nullptr;       // the values of this command instance
};

void convert_package(line_buffer &line, xmlNode *package, json_object *object);
bool convert_params(conversion &context, const xmlNode *first);

// The text of a value: a string's own, other JSON values as JSON text; null when absent.
const char *value_text(json_object *object, const char *name)
{
    return json_object_get_string(search_child_obj(object, name, nullptr));
}

uint8_t option_flags(const xmlNode *element)
{
    uint8_t flags = 0;
    resolve_param_option_attr(get_xmlnode_attr(element, "option"), &flags);
    return flags;
}

const xmlNode *find_choice(const xmlNode *param, const char *value)
{
    for (const xmlNode *child = param->children; child; child = child->next) {
        const char *name = get_xmlnode_attr(child, "name");
        if (name && strcmp(name, value) == 0) return child;
    }
    return nullptr;
}

void convert_choice(conversion &context, const xmlNode *param, const char *value)
{
    const xmlNode *choice = find_choice(param, value);
    if (!choice) {
        context.line.append(" UNSUPPORTED(%s)", value);
        context.line.drop();
    } else if (is_named(choice, "BODY")) {
        context.line.append(" %s", value);
        convert_params(context, choice->children);
    } else if (is_named(choice, "PARAM")) {
        const char *chosen = value_text(context.object, value);
        if (!chosen) {
            context.line.append(" MISSING(%s)", value);
            return;
        }
        context.line.append(" %s", chosen);
        convert_params(context, choice->children);
    }
}

void convert_body(conversion &context, const xmlNode *body, const char *name, bool optional)
{
    if (!optional) context.line.append(" %s", name);
    context.pending_body = optional ? name : nullptr;
    convert_params(context, body->children);
}

// False: a value that the line needs is missing.
bool convert_param(conversion &context, const xmlNode *param, const char *name, uint8_t flags)
{
    const char *value = value_text(context.object, name);
    if (!value) {
        if (flags & PARAM_OPTION_OPTIONAL) return true;
        context.line.append(" MISSING(%s)", name);
        return false;
    }
    if (context.pending_body) context.line.append(" %s", context.pending_body);
    context.pending_body = nullptr;
    if (flags & PARAM_OPTION_LIST) {
        convert_choice(context, param, value);
    } else {
        context.line.append(" %s", value);
        convert_params(context, param->children);
    }
    return true;
}

// False: the list was left at a missing value. Only this list: the callers go on with theirs.
bool convert_params(conversion &context, const xmlNode *first)
{
    for (const xmlNode *element = first; element; element = element->next) {
        if (!is_element(element)) continue;
        const char *name = get_xmlnode_attr(element, "name");
        if (!name) continue;
        const uint8_t flags = option_flags(element);
        // A "no" line names only what picks the instance.
        if (context.no_mode && !context.index_mode && !(flags & PARAM_OPTION_PINDEX)) continue;
        if (is_named(element, "BODY"))
            convert_body(context, element, name, flags & PARAM_OPTION_OPTIONAL);
        else if (is_named(element, "PARAM") && !convert_param(context, element, name, flags))
            return false;
    }
    return true;
}

void report_skipped(const xmlNode *element)
{
    LOG_AS("convert_command", LOG_DEBUG, "skip unuseful node '%s'", name_of(element));
}

void convert_line(conversion &context, const xmlNode *element, const char *cli_cmd)
{
    context.index_mode = false;
    context.no_mode = search_child_obj(context.object, ".OPT", "no") != nullptr;
    context.line.append(context.no_mode ? "no %s" : "%s", cli_cmd);
    if (context.object) {
        context.index_mode = is_named(element, "INDEX");
        convert_params(context, element->children);
    }
    context.line.flush();
}

int convert_command(conversion &context, xmlNode *element);

int convert_instance(const conversion &context, xmlNode *package)
{
    constexpr char reporter[] = "convert_command";
    if (context.object && !json_object_is_type(context.object, json_type_object)) {
        LOG_AS(reporter, LOG_ERR, "package '%s' value isn't an object but %s", name_of(package),
               json_type_to_name(json_object_get_type(context.object)));
        return -1;
    }
    xmlNode *index = search_child_node(package, "INDEX");
    if (!index) {
        LOG_AS(reporter, LOG_ERR, "no index cmd in package '%s'", name_of(package));
        return -1;
    }
    conversion index_context{.line = context.line, .object = search_child_obj(context.object, "INDEX", nullptr)};
    convert_command(index_context, index);
    context.line.indent++;
    convert_package(context.line, package, context.object);
    context.line.indent--;
    return 0;
}

int convert_command(conversion &context, xmlNode *element)
{
    const char *kind = get_xmlnode_attr(element, "ntype");
    if (kind && strcmp(kind, "package") == 0) return convert_instance(context, element);
    const char *cli_cmd = get_xmlnode_attr(element, "cli_cmd");
    if (!kind || !cli_cmd) {
        report_skipped(element);
        return -1;
    }
    convert_line(context, element, cli_cmd);
    return 0;
}

void convert_array(conversion &context, xmlNode *command, json_object *array)
{
    int cursor = 0;
    while (json_object *element = get_json_obj(array, &cursor)) {
        context.object = element;
        convert_command(context, command);
    }
}

void convert_package(line_buffer &line, xmlNode *package, json_object *object)
{
    if (!object) return;
    // Kept: one context for all commands, so an optional BODY may wait for a later command's value.
    conversion context{.line = line};
    json_object_iter member;
    json_object_object_foreachC(object, member)
    {
        if (strcmp(member.key, "INDEX") == 0) continue;
        xmlNode *command = search_child_node(package, member.key);
        if (!command) continue;
        if (json_object_is_type(member.val, json_type_array)) {
            convert_array(context, command, member.val);
        } else {
            context.object = member.val;
            convert_command(context, command);
        }
    }
}

}  // namespace
}  // namespace apconf

void cli_line_convertor(FILE *out, struct json_object *message, const char *xml_path)
{
    if (!out || !message) return;
    const apconf::xml_doc document = apconf::read_schema(__func__, xml_path);
    if (!document) return;
    if (convert_config(xmlDocGetRootElement(document.get()), message, out) != 0)
        LOG(LOG_ERR, "convert json message to cli line failed");
}

int convert_config(xmlNode *root_element, struct json_object *message, FILE *out)
{
    json_object *config = search_child_obj(message, "config", nullptr);
    xmlNode *package = search_child_node(root_element, "config");
    if (!config || !package || !out) return -1;
    if (!json_object_is_type(config, json_type_object)) {
        LOG(LOG_ERR, "config of the message isn't an object but %s", json_type_to_name(json_object_get_type(config)));
        return 0;
    }
    apconf::line_buffer line(out);
    apconf::convert_package(line, package, config);
    return 0;
}
