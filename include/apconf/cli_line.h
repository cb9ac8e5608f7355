/* SPDX-License-Identifier: MIT
 *
 * Configuration messages as command lines.
 *
 * What could not be said stands in the line: " MISSING(name)" for a value that the message lacks. A choice that the
 * schema does not know drops its line. Values are printed as they are, blanks included.
 */
#ifndef APCONF_CLI_LINE_H
#define APCONF_CLI_LINE_H

#include <stdio.h>

struct json_object; /* json-c */
struct _xmlNode;    /* libxml2: xmlNode */

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Prints the "config" tree of `message` to `out`, one line a command instance, worded by the command-tree file
 * `xml_path`. Nothing when `out` or `message` is null; failures are logged. */
void cli_line_convertor(FILE *out, struct json_object *message, const char *xml_path);

/* The same with the file's root element. 0, or -1 when an argument is null or the message or the root element has no
 * "config". */
int convert_config(struct _xmlNode *root_element, struct json_object *message, FILE *out);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
