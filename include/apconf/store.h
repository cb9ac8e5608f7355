/* SPDX-License-Identifier: MIT
 *
 * The configuration store's life: a batch is written into `root`, committed as one queued message, and forgotten.
 */
#ifndef APCONF_STORE_H
#define APCONF_STORE_H

#include "apconf/config_data.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Sets both blocks to the unset state. Called once, before any command is processed. */
void init_cmd_tree_data(void);

/* Releases the heap members that a batch set in one BSS of `root` and puts the reference's pointers back. Nothing when
 * there is no such BSS. */
void free_vap_cmd_tree_data(uint32_t radio, uint32_t wlan);

/* Commits the batch: queues what differs as one message, releases the batch's heap members, makes `root` equal to
 * `mirror_root` and tells the server. Returns the result of that notification: 0, or the transport's -1. The message
 * is queued in either case. */
int apply_cmd_tree_data(void);

/* The queue index that the last commit of this process was given, or -1 when there was none or it could not be queued.
 */
int apconf_committed_index(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
