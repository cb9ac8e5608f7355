/* SPDX-License-Identifier: MIT
 *
 * Small tools for JSON values, XML elements, growing heap strings and arrays. They hold no state.
 */
#ifndef APCONF_UTIL_H
#define APCONF_UTIL_H

#include <stddef.h>

struct json_object; /* json-c */
struct _xmlNode;    /* libxml2: xmlNode */

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Iterates over a value that is one value or an array of values. `*index` is the caller's cursor and starts at 0. A
 * non-array is yielded once; null elements of an array are skipped. Returns a borrowed value, or null at the end and
 * for null arguments. */
struct json_object *get_json_obj(struct json_object *obj, int *index);

/* Collects values into a slot that holds nothing, one value or an array: an empty slot takes `obj` itself, a second
 * value makes an array of both, later ones are appended. Ownership of `obj` passes to the slot. Does nothing when
 * either is null. */
void add_json_obj(struct json_object **slot, struct json_object *obj);

/* The member `key` of `obj`, borrowed. With a non-null `value` only when the member's text equals it. Null when there
 * is no such member or `obj` is no object. */
struct json_object *search_child_obj(struct json_object *obj, const char *key, const char *value);

/* The first child element called exactly `name`, or null. */
struct _xmlNode *search_child_node(struct _xmlNode *node, const char *name);

/* The text of attribute `name` of an element, owned by the document; null when the attribute is absent or has no text.
 */
const char *get_xmlnode_attr(const struct _xmlNode *node, const char *name);

/* Appends all of `text`, or its first `n` characters at most, to the heap string in `*buffer` (null: empty). Does
 * nothing when `text` is null or memory is short. */
void dynamic_strcat(char **buffer, const char *text);
void dynamic_strcatn(char **buffer, const char *text, unsigned int n);

/* Grows the heap array in `*array` of `*count` elements of `element_size` bytes by one, filled from `init` or zeroed.
 * Returns the new element, or null with nothing changed when memory is short. */
void *add_array_member(void **array, unsigned int *count, size_t element_size, const void *init);

/* 1 when some byte is not zero, 0 when all are zero or `length` is not positive. Kept inverted: callers rely on it. */
int memory_is_zero(const void *bytes, int length);

/* Logs this process's VmSize line with the caller's `tag` and `line`, at error priority. */
void print_mem_size(const char *tag, int line);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
