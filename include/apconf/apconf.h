/* SPDX-License-Identifier: MIT
 *
 * All public headers of libapconf, the configuration commands of a wireless access point.
 *
 * Conventions, unless a function says otherwise:
 *  1. Results: 0 for success, -1 for failure; look-ups return a pointer or null, or -1 for a number. Handlers answer
 *     negative: failed, 0: done, positive: no change.
 *  2. Ownership: an argument stays the caller's; a returned pointer is borrowed from what it was found in. Where
 *     something changes hands, the function says so.
 *  3. Null: allowed only where a function says so. Null slots stop the process.
 *  4. Strings: NUL-terminated, in the encoding of the peer; argument values are always texts.
 *  5. Threads: none. A process uses the library from one thread; all globals are unguarded. Across processes, only
 *     the append to the queue is serialised.
 *  6. Log: every diagnostic is one syslog call, "[function:line] text". Nothing is written to standard output.
 *  7. Numbers in host byte order; the peers of a socket or queue are processes of one machine.
 */
#ifndef APCONF_APCONF_H
#define APCONF_APCONF_H

#include "apconf/cli_line.h"
#include "apconf/cmclient.h"
#include "apconf/cmessage.h"
#include "apconf/cmq.h"
#include "apconf/command.h"
#include "apconf/command_tree.h"
#include "apconf/config_data.h"
#include "apconf/cpath.h"
#include "apconf/description.h"
#include "apconf/help.h"
#include "apconf/io_sock.h"
#include "apconf/packages.h"
#include "apconf/ptype.h"
#include "apconf/retrieve.h"
#include "apconf/store.h"
#include "apconf/util.h"

#endif
