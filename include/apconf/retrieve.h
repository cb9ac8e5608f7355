/* SPDX-License-Identifier: MIT
 *
 * Retrieving the configuration, or a chosen part of it, as a "set" message that can be sent or queued as it stands.
 */
#ifndef APCONF_RETRIEVE_H
#define APCONF_RETRIEVE_H

struct json_object; /* json-c */

#ifdef __cplusplus
extern "C" {
#endif

/* One member of a request. A retrieval table is an array of these, closed by a null name. */
struct rtv_record {
    const char *name;                  /* of a package or command */
    const struct rtv_record *children; /* the members below it, or null */
    const char *value;                 /* JSON text of its initial value, or null: an empty object */
};

#pragma GCC visibility push(default)

/* Adds one member per record of `table` to the object `obj`, filled from `children`; the elements of an array are
 * filled each. A record whose text is no JSON value is logged and left out. Nothing when an argument is null. */
void rtv_gen_json_table(struct json_object *obj, const struct rtv_record *table);

/* Answers the request `*msg` (null: the whole configuration) through the get handlers. Releases the request; `*msg`
 * becomes the message, which the caller releases, or null when the request is no object or memory is short. `instance`
 * is handed to the handlers: the change handlers need a struct lookup_ctx. `module` names the sender; null: "UNKNOWN".
 * Nothing when `msg` is null. */
void retrieve_config(struct json_object **msg, void *instance, const char *module);

/* Removes the members named by `table` that are empty objects or arrays, and those below them along `children`. What
 * becomes empty by that stays. Nothing when an argument is null. */
void rtv_remove_null_obj(struct json_object *obj, const struct rtv_record *table);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
