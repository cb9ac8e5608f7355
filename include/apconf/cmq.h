/* SPDX-License-Identifier: MIT
 *
 * The configuration message queue: numbered JSON files below "/tmp/cmessage_queue" and two index files.
 *
 * Any process appends; one process, the server, fetches. The directories new, old and bad must exist.
 */
#ifndef APCONF_CMQ_H
#define APCONF_CMQ_H

#include <stdio.h>

struct json_object; /* json-c */

#ifdef __cplusplus
extern "C" {
#endif

#define CMQ_DIR "/tmp/cmessage_queue"
#define CMQ_NEW_DIR CMQ_DIR "/new"
#define CMQ_OLD_DIR CMQ_DIR "/old"
#define CMQ_BAD_DIR CMQ_DIR "/bad"
#define CMQ_MAX_INDEX CMQ_NEW_DIR "/.max_index" /* the number that the next message gets */
#define CMQ_CUR_INDEX CMQ_NEW_DIR "/.cur_index" /* the number of the next message to fetch */
#define CMQ_START_CONFIG "/etc/config/start_config.json"

/* How many handled messages cmq_delete_new_msg keeps as backups. */
enum { CMQ_BACKUP_COUNT = 20 };

/* Writes message `index`; negative: failed. */
typedef int cmq_put_fn(void *arg, int index);

#pragma GCC visibility push(default)

/* Sets up or repairs the index files; a fresh queue gets the start configuration as message 1. Returns 0, -1, the
 * repaired index, or the index used for the start configuration. */
int cmq_init(void);

/* Appends one message, written by put(arg, index), under an exclusive lock. Returns the index, also when the writer
 * failed (logged; the number is then given again), or -1, also when the next number cannot be written. */
int cmq_handle_cmessage(cmq_put_fn *put, void *arg);

/* Writers. msg: a json_object, written pretty-printed. file: a file name, moved into place by a shell command, or
 * copied to message 1 whatever the index. 0 or the shell's status; -1 for an index below 1, and, logged, for a name
 * that opens with "-", that would not stand as one word in the command, or with which the command is too long. */
int cmq_put_cmessage(void *msg, int index);
int cmq_put_cmessage_file(void *file, int index);
int cmq_put_cmessage_start_config(void *file, int index);

/* The next pending message, which the caller releases, and its number through `index` unless null. Unreadable ones are
 * skipped for good. Null when nothing is pending or the indexes are damaged, logged. */
struct json_object *cmq_fetch_a_message(int *index);

/* The number of the next message to fetch, or -1. */
int cmq_get_current_index(void);

/* Stores `config` as old/<index>.json, pretty-printed; null: nothing. */
void cmq_save_old_config(int index, struct json_object *config);

/* Opens bad/<index>.txt anew for writing the reasons of a rejection. The caller closes the stream; null on failure. */
FILE *cmq_create_bad_file(int index);

/* Removes new/<index>.json; with `is_backup` the one that was handled 20 backups ago instead. */
void cmq_delete_new_msg(int index, int is_backup);

/* Read (-1: absent or invalid, as 0 and 2147483647 are) and write (returns n, or -1) an index file. */
int get_message_index(const char *path);
int set_message_index(const char *path, int n);

/* The highest message number in "new", 0 when there is none. */
int calc_max_msg_index(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
