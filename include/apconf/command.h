/* SPDX-License-Identifier: MIT
 *
 * Command arguments: JSON objects that map parameter names to texts, built from and read back into typed values.
 *
 * An argument is a JSON string in its ptype's text form, or an array of such strings. A slot is a caller-held
 * `struct json_object *`, null at first, that grows as add_json_obj (util.h) describes.
 */
#ifndef APCONF_COMMAND_H
#define APCONF_COMMAND_H

#include <stdint.h>

#include "apconf/command_tree.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* The text of argument `name` (of an array: of its first element), owned by `args`; null, logged, when it is absent. */
const char *fetch_arg_string(struct json_object *args, const char *name);

/* Converts argument `name` (of an array: its first element) into `value_out`, or only checks it when that is null.
 * Returns the text, owned by `args`; null, logged, when it is absent or does not convert. `ctx` names the command in
 * the log; fetch_arg_value_inner takes that name directly. */
const char *fetch_arg_value(struct json_object *args, const char *name, uint32_t ptype, void *value_out,
                            const struct cpath_ctx *ctx);
const char *fetch_arg_value_inner(struct json_object *args, const char *name, uint32_t ptype, void *value_out,
                                  const char *const *command_name);

/* Logs that the argument has no default value and returns 0; writes nothing. Kept: defaults of the tree are not used.
 */
int fetch_arg_default_value(const char *name, uint32_t ptype, void *value_out, const struct cpath_ctx *ctx);

/* Converts `text` without a range. 0, or -1 logged. */
int string2ptype_value(uint32_t ptype, void *value_out, const char *text);

/* A new JSON string of the value, or of the text when it is valid for the type; else null. The caller owns it. */
struct json_object *convert_ptype_value_to_obj(uint32_t ptype, const void *value);
struct json_object *convert_ptype_string_to_obj(uint32_t ptype, const char *text);

/* Adds a new empty argument object to the slot and returns it, owned by the slot. A null slot stops the process. */
struct json_object *create_argv_obj(struct json_object **new_argv_obj);

/* Add a value to the slot (a failed add leaves it as it was), or replace the slot's value (a failed replace leaves it
 * null). 0, or -1 logged. A null slot stops the process. */
int add_arg_value(struct json_object **value_obj, uint32_t ptype, const void *value);
int add_arg_string(struct json_object **value_obj, uint32_t ptype, const char *text);
int arg_value2obj(struct json_object **value_obj, uint32_t ptype, const void *value);
int arg_string2obj(struct json_object **value_obj, uint32_t ptype, const char *text);

/* Sets args[name] to the value's text and returns that text, owned by `args`; null, logged, on failure. */
const char *put_arg_value(struct json_object *args, uint32_t ptype, const char *name, const void *value);

/* Sets args[name] to `text` when it is valid for the type: 0, else -1 without a message. */
int put_arg_value_string(struct json_object *args, uint32_t ptype, const char *name, const char *text);

/* Sets args[name] to `text` unchecked. */
void put_arg_string(struct json_object *args, const char *name, const char *text);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
