/* SPDX-License-Identifier: MIT
 *
 * Configuration messages (cmessages) and their dispatch over the command tree.
 */
#ifndef APCONF_CMESSAGE_H
#define APCONF_CMESSAGE_H

#include <stdint.h>

#include "apconf/command_tree.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What a message asks for. Borrows everything from the message. */
struct cmesage_info {
    uint8_t is_get;            /* "ACTION" is exactly "get" */
    uint8_t is_connect_status; /* the path contains "/wtp_notify/connect_status_cmd" */
    uint8_t is_config;         /* the path contains "/config", or a message without path has a "config" member */
    uint32_t has_cpath;        /* a single-command message */
    const char *module;        /* the sender, or null */
    const char *path;          /* the command path, or null */
    struct json_object *body;  /* the "CPATH" object, or the whole message */
};

#pragma GCC visibility push(default)

/* Reads a message's header. 0, or -1 when an argument is null, and logged when the message is no object or its "CPATH"
 * no object with a "path" string. */
int get_cmesage_info(struct json_object *msg, struct cmesage_info *info);

/* Dispatches a message over cmd_tree. `user` and `instance` are handed to the handlers; the change handlers need
 * `instance` to be a struct lookup_ctx (config_data.h). For a get `*out` receives a new object that the caller
 * releases, and that is left null or as it was when the result is -1. A single command needs `out` for a set too.
 * Returns 0, or -1; what single handlers answered is logged, not returned. "param" that is neither an object nor an
 * array of objects is refused. */
int cmessage_parser(const struct cmesage_info *info, struct json_object **out, uintptr_t user, void *instance);

/* 1 when `obj` carries no content: null, empty, or nothing but "INDEX"; else 0. */
int is_null_package_obj(struct json_object *obj);

/* Adds what the get handlers below `node` report to `obj`, child by child in table order. */
void package_get_all(struct cmd_node *node, struct json_object *obj, struct cpath_ctx *ctx);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
