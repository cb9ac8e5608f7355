/* SPDX-License-Identifier: MIT
 *
 * The command tree: packages and commands with their handlers, and the loader that gives them their parameters.
 */
#ifndef APCONF_COMMAND_TREE_H
#define APCONF_COMMAND_TREE_H

#include <stdint.h>

struct json_object; /* json-c */

#ifdef __cplusplus
extern "C" {
#endif

struct cmd_node;
struct cpath_ctx;

/* Handler of "no" and "set". `args` is the argument object, borrowed, or null. Returns negative: failed, 0: done,
 * positive: no change. */
typedef int cmd_set_fn(struct json_object *args, struct cpath_ctx *ctx);

/* Handler of "get". `args` is the argument object, borrowed, or null to enumerate. `*result` is null on entry; what the
 * handler puts there belongs to the caller. Returns 0 (with `*result` null: no value), anything else: failed. */
typedef int cmd_get_fn(struct json_object *args, struct json_object **result, struct cpath_ctx *ctx);

/* One parameter of a command, filled by the loader. */
struct cmd_param {
    char *name;                        /* heap, owned */
    int32_t ptype;                     /* see ptype.h */
    int32_t reserved;                  /* always 0 */
    void *range;                       /* the ptype's range record, heap, owned; or null */
    struct json_object *default_value; /* JSON string, owned; or null */
};

/* A package or a command. A package table is an array of these in writable storage, closed by a null name. */
struct cmd_node {
    const char *name;          /* constant */
    int32_t repeat;            /* from the schema; 0: not given */
    cmd_set_fn *no;            /* null in the tables of this library; hosts install theirs */
    cmd_set_fn *set;           /* likewise */
    cmd_get_fn *get;           /* the change handler */
    struct cmd_param *params;  /* heap array of param_count records, from the schema; or null */
    uint32_t param_count;      /* meaningless while params is null */
    struct cmd_node *children; /* the sub-package's table; null: a command */
};

enum { CPATH_STACK_DEPTH = 32 };

/* Where a dispatch stands at one depth. */
struct cpath_stack_entry {
    struct json_object *args; /* borrowed; set by a whole-tree set only */
    struct cmd_node *node;
};

/* The dispatch context, last argument of every handler. */
struct cpath_ctx {
    struct cpath_stack_entry stack[CPATH_STACK_DEPTH];
    int32_t depth; /* current entry of `stack` */
    uint8_t is_get;
    void *instance;             /* the caller's; the change handlers read a struct lookup_ctx there */
    uintptr_t user;             /* the caller's, not looked at */
    const char *module;         /* the sender's module name, or "UNKNOWN" */
    struct json_object *result; /* used by retrieval */
};

/* Bits of a PARAM's "option" attribute. */
enum { PARAM_OPTION_HIDDEN = 1, PARAM_OPTION_OPTIONAL = 2, PARAM_OPTION_LIST = 4, PARAM_OPTION_PINDEX = 8 };

#pragma GCC visibility push(default)

/* The root node. Zero until register_root_cmd. */
extern struct cmd_node cmd_tree;

/* Hangs `table` (normally lib_pkg_root) under the root, names the root "root" and returns its address. */
struct cmd_node *register_root_cmd(struct cmd_node *table);

/* Reads "/etc/config_cmd_tree.xml" and gives the registered nodes their parameters and repeat counts. Returns 0, or -1
 * when the file cannot be parsed or is empty; every lesser fault is logged and skipped. Loading twice appends every
 * parameter a second time. */
int command_tree_parser(void);

/* The address of cmd_tree. */
struct cmd_node *get_cmd_tree(void);

/* The first child of `node` called exactly `name`, or null. */
struct cmd_node *search_child_cmd(struct cmd_node *node, const char *name);

/* Releases what the loader gave the tree; it can be loaded anew afterwards. Of every node only the first parameter's
 * contents are released. Kept: a process frees its tree once, when it ends. */
void free_cmd_tree(void);
void free_command(struct cmd_node *node);

/* Releases a parameter's name, default and range, not the record itself. */
void free_param(struct cmd_param *param);

/* ORs the bits of the comma-separated words of `text` into `*flags`. */
void resolve_param_option_attr(const char *text, uint8_t *flags);

/* Always null: no range. Called for every argument that is converted. */
const void *get_value_range(const char *arg_name, uint32_t ptype, const char *const *command_name);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
