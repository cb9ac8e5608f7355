/* SPDX-License-Identifier: MIT
 *
 * Setting, removing and reading a configuration command by its path, from a client process.
 *
 * A cpath names the packages and the command below the tree's root, separated by "/". Instances of repeated packages
 * are chosen by index parameters, not in the path. "set" and "no" return when the message is handed over; "get" waits
 * for the answer.
 */
#ifndef APCONF_CPATH_H
#define APCONF_CPATH_H

#include <stdint.h>

#include "apconf/io_sock.h"

struct json_object; /* json-c */

#ifdef __cplusplus
extern "C" {
#endif

/* One argument of send_cpath_cmd. */
struct cpath_arg {
    const char *name;   /* null ends the table */
    uint32_t ptype;     /* see ptype.h */
    const void *values; /* `count` values of the type, back to back; null: the record is skipped */
    int32_t count;
};

#pragma GCC visibility push(default)

/* `action` is "set", "no" or "get". `reply`, unless null, takes the answer of a get, which the caller frees. All return
 * 0, or -1 logged. */

/* `param`: the arguments, or null; the caller keeps its reference. "no" adds ".OPT" to the object. */
int send_cpath_cmd_obj(const char *action, const char *cpath, struct json_object *param, struct io_msg **reply);

/* `param_text`: the arguments as JSON text, or null. The parsed value lives until the next call. */
int send_cpath_cmd_str(const char *action, const char *cpath, const char *param_text, struct io_msg **reply);

/* `args`: the arguments as a table of typed values, or null. */
int send_cpath_cmd(const char *action, const char *cpath, const struct cpath_arg *args, struct io_msg **reply);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
