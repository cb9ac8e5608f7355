// The listing: the syntax of every command of a command-tree file, one line a form.
#include <libxml/tree.h>

#include <cstring>

#include "apconf/command_tree.h"
#include "apconf/help.h"
#include "apconf/ptype.h"
#include "apconf/util.h"
#include "schema/line_buffer.h"
#include "schema/schema_file.h"
#include "util/log.h"

namespace apconf
{
namespace
{

struct listing {
    line_buffer line;
    bool no_mode = false;  // the "no" form is being listed

    void flush()
    {
        line.flush();
        no_mode = false;
    }
};

void list_params(listing &list, const xmlNode *parent);
void list_param(listing &list, const xmlNode *element);

const struct ptype_info *find_ptype_info(const char *ptype)
{
    for (const struct ptype_info &info : param_ptype_info)
        if (strcmp(info.name, ptype) == 0) return &info;
    return nullptr;
}

// The syntax token of a parameter that is no list. False: it has no type, which drops the line.
bool list_token(listing &list, const xmlNode *param, const char *name)
{
    const char *ptype = get_xmlnode_attr(param, "ptype");
    if (!ptype) {
        list.line.append("ERROR_PARAM[%s]", name);
        list.line.drop();
        return false;
    }
    const struct ptype_info *info = find_ptype_info(ptype);
    if (!info) {
        list.line.append("@%s", ptype);
        return true;
    }
    const char *min = get_xmlnode_attr(param, "min");
    const char *max = get_xmlnode_attr(param, "max");
    list.line.append(info->format, min ? min : info->min, max ? max : info->max);
    return true;
}

void list_choices(listing &list, const xmlNode *param)
{
    bool any = false;
    for (const xmlNode *child = param->children; child; child = child->next) {
        const char *name = get_xmlnode_attr(child, "name");
        const bool is_param = is_named(child, "PARAM");
        if (!name || (!is_param && !is_named(child, "BODY"))) continue;
        list.line.append("%s", any ? "|" : "(");
        any = true;
        if (is_param)
            list_param(list, child);
        else
            list.line.append("%s", name);
        // Kept: a parameter among the choices has listed its children itself, here they stand a second time.
        list_params(list, child);
    }
    if (any) list.line.append(")");
}

void list_param(listing &list, const xmlNode *element)
{
    const char *name = get_xmlnode_attr(element, "name");
    if (!name || list.line.is_full()) return;
    uint8_t flags = 0;
    resolve_param_option_attr(get_xmlnode_attr(element, "option"), &flags);
    if (flags & PARAM_OPTION_HIDDEN) return;
    if (list.no_mode && !(flags & PARAM_OPTION_PINDEX)) return;

    const bool optional = flags & PARAM_OPTION_OPTIONAL;
    list.line.append("%s", optional ? " {" : " ");
    if (is_named(element, "PARAM")) {
        // Kept: the brace before an optional list is never closed.
        if (flags & PARAM_OPTION_LIST) return list_choices(list, element);
        if (!list_token(list, element, name)) return;
    } else if (is_named(element, "BODY")) {
        list.line.append("%s", name);
    }
    list_params(list, element);
    if (optional) list.line.append("}");
}

void list_params(listing &list, const xmlNode *parent)
{
    for (const xmlNode *child = parent->children; child; child = child->next)
        if (is_element(child)) list_param(list, child);
}

void report_skipped(const xmlNode *node)
{
    LOG_AS("list_package", LOG_DEBUG, "skip unuseful node '%s'", name_of(node));
}

void list_command(listing &list, const xmlNode *command, const char *kind, const char *cli_cmd)
{
    if (strcmp(kind, "cmd") == 0) {
        list.no_mode = true;
        list.line.append("no %s", cli_cmd);
        list_params(list, command);
        list.flush();
    }
    list.line.append("%s", cli_cmd);
    list_params(list, command);
    list.flush();
}

void list_package(listing &list, xmlNode *first);

void list_element(listing &list, xmlNode *element)
{
    const char *kind = get_xmlnode_attr(element, "ntype");
    if (!kind) return report_skipped(element);

    const xmlNode *command = element;
    const bool is_package = strcmp(kind, "package") == 0;
    if (is_package) {
        command = search_child_node(element, "INDEX");
        if (!command) {
            LOG_AS("list_package", LOG_ERR, "no index cmd in package '%s'", name_of(element));
            return;
        }
        kind = get_xmlnode_attr(command, "ntype");
        if (!kind) return report_skipped(command);
    }
    const char *cli_cmd = get_xmlnode_attr(command, "cli_cmd");
    if (!cli_cmd) return report_skipped(command);

    list_command(list, command, kind, cli_cmd);
    if (!is_package) return;
    list.line.indent++;
    list_package(list, element->children);
    list.line.indent--;
}

void list_package(listing &list, xmlNode *first)
{
    for (xmlNode *node = first; node; node = node->next)
        if (is_element(node) && !is_named(node, "INDEX") && !is_named(node, "BODY")) list_element(list, node);
}

}  // namespace
}  // namespace apconf

void cli_list(FILE *out, const char *xml_path)
{
    if (!out) return;
    const apconf::xml_doc document = apconf::read_schema(__func__, xml_path);
    if (!document) return;
    apconf::listing list{apconf::line_buffer(out)};
    apconf::list_package(list, xmlDocGetRootElement(document.get())->children);
}
