/* SPDX-License-Identifier: MIT
 *
 * What a command-line front end shows: the syntax of every command, the help texts, and the command paths.
 */
#ifndef APCONF_HELP_H
#define APCONF_HELP_H

#include <stdint.h>
#include <stdio.h>
#include <sys/uio.h>

#include "apconf/command_tree.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One help key and its text. */
struct help_entry {
    char *key;       /* heap, owned */
    char *text;      /* heap, owned; null: no text */
    uint8_t printed; /* set once help_dump has printed the key */
};

enum { CMDVEC_COUNT = 64 };

#pragma GCC visibility push(default)

/* The help map: a heap array of `help_count` entries with room for `total_help_count`. Null and 0 while empty. */
extern struct help_entry *help_map;
extern int help_count;
extern int total_help_count;

/* The components of the path that dump_cpath writes: "/" and a name by turns. */
extern struct iovec cmdvec[CMDVEC_COUNT];

/* Prints the syntax of every command of the command-tree file `xml_path` to `out`, one line a form, indented by package
 * depth. Nothing when `out` is null; a file that cannot be read is logged. */
void cli_list(FILE *out, const char *xml_path);

/* Adds the "key = text" lines of a help file to the map. A file that cannot be opened is ignored. */
void load_help_map(const char *path);

/* Releases the map. */
void free_help_map(void);

/* The text of the first entry called `key` that has one, owned by the map; otherwise `key` itself. */
const char *get_help_string(const char *key);

/* Adds "/etc/cmd_tree_help.txt" to the map, prints every help key of the front end and of the command-tree file
 * `xml_path` once, with its text, to `out`, and releases the map. Nothing when `out` is null. */
void help_dump(FILE *out, const char *xml_path);

/* Writes the path of every command below `node`, each with one writev call and nothing between them, to `fd`. Called
 * with the root node and depth 0. A path that does not fit into cmdvec is logged and ends its branch, and so does a
 * failed write. */
void dump_cpath(const struct cmd_node *node, int depth, int fd);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
