/* SPDX-License-Identifier: MIT
 *
 * The configuration client: one registered connection to the configuration server per process.
 */
#ifndef APCONF_CMCLIENT_H
#define APCONF_CMCLIENT_H

#include <stdint.h>

#include "apconf/io_sock.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* Connects io_sockfd to the server at `path` (null: IO_SOCK_PATH) and registers as `module` (null: the program's name;
 * at most 63 characters are kept). The descriptor, or -1 logged. A connection that is still open is not closed here. */
int init_cmclient(const char *path, const char *module);

/* Sends a request and waits for the reply; reconnects once, to the default path, when the send fails. The registration
 * of the new connection is itself such a request; 50 nested reconnections are the limit of one send. The reply's code
 * (0 to 255), or -1 when there was none. `reply`, unless null, takes the whole message, which the caller frees, or
 * null. */
int configure_request(int type, const void *data, uint32_t len, struct io_msg **reply);

/* Sends a message that has no reply; reconnects likewise. 0, or -1. */
int send_io_notify(int type, const void *data, uint32_t len);

/* Tells the server and closes the connection. */
void deinit_cmclient(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
