/* SPDX-License-Identifier: MIT
 *
 * The local stream socket between the configuration server and its clients, and the io message: the frame on it.
 */
#ifndef APCONF_IO_SOCK_H
#define APCONF_IO_SOCK_H

#include <stddef.h>
#include <stdint.h>
#include <sys/uio.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Default socket path. */
#define IO_SOCK_PATH "/tmp/config_cmd_sock"

/* Message types that the library sends. Hosts number their own from IO_MSG_HOST_FIRST. */
enum {
    IO_MSG_REGISTER = 1,   /* data: module name with its NUL; a reply with code 0 accepts */
    IO_MSG_UNREGISTER = 2, /* no data, no reply */
    IO_MSG_APPLIED = 4,    /* no data, no reply: a configuration was queued */
    IO_MSG_SET = 5,        /* data: cmessage text with its NUL; no reply */
    IO_MSG_GET = 6,        /* data: cmessage text with its NUL; the reply's data is the answer */
    IO_MSG_HOST_FIRST = 64
};

/* C++ compilers know a member without a length as an extension only. */
#ifdef __cplusplus
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#endif

/* The 12-byte header, in host byte order, and what follows it. */
struct io_msg {
    uint8_t reserved0; /* 0 */
    uint8_t type;      /* IO_MSG_*; 0 in a reply */
    uint8_t code;      /* result of a reply, 0: success; 0 in a request */
    uint8_t reserved3; /* 0 */
    uint32_t count;    /* the sender's request counter, from 1; 0 in a reply */
    uint32_t data_len; /* bytes that follow */
    char data[];       /* a received message has one NUL after data_len bytes */
};

#ifdef __cplusplus
#pragma GCC diagnostic pop
#endif

enum { IO_MSG_HEADER_SIZE = 12, IO_MODULE_SIZE = 64 };

#pragma GCC visibility push(default)

/* This process's connection to the server; -1 before the first. */
extern int io_sockfd;

/* This process's module name; empty until it is first needed. */
extern char io_module[IO_MODULE_SIZE];

/* Sends the gather list whole, advancing it in place; `pass_fd` >= 0 goes along as a descriptor. Gives up after 50
 * consecutive attempts without progress. Returns the bytes sent, or -1. */
int writev_data(int fd, struct iovec *iov, int iov_count, int pass_fd);

/* Fills one buffer, advancing it in place. `received_fd`, unless null, takes the descriptor that came with the first
 * read, or -1; the caller owns it whatever the result is, since a read may fail after the descriptor has come. With a
 * null `received_fd` the kernel closes what is sent along. Returns the bytes read; 0 when the socket would block (bytes
 * read so far are lost to the caller); -1 on an error or when the peer has closed, and then `*closed` (may be null)
 * becomes 1; it is never reset here. */
int recv_data(int fd, struct iovec *iov, int *received_fd, int *closed);

/* Send one message with `len` bytes of `data` (null: none). 0, or -1 logged. A request carries `fd` itself along. */
int send_io_request(int fd, int type, const void *data, uint32_t len);
int send_io_reply(int fd, int code, const void *data, uint32_t len);

/* Reads one message. Returns a heap block that the caller frees, or null, logged. `*received_fd` is set in every case,
 * to -1 when no descriptor came; otherwise the caller owns it, also when the result is null. */
struct io_msg *recv_io_msg(int fd, int *received_fd, int *closed);

/* A listening (`server` not 0) or connected socket on `path` (null: IO_SOCK_PATH). The descriptor, or -1 logged. A
 * stale socket file is the caller's to remove. */
int init_io_sock(int server, const char *path);

/* Closes io_sockfd, which keeps its number; the client's next send on it fails and so reconnects. Until init_cmclient
 * opens the connection anew the number counts as somebody else's: the client neither writes to it nor closes it again,
 * even when the process has got it back for something of its own. */
void deinit_io_sock(void);

/* The base name of this process's program, at most `len` bytes with the NUL. 0, or -1. */
int get_process_name(char *dst, size_t len);

/* io_module, filled first when it is empty: with the program's name, or "pid" and the process id. */
const char *get_io_module(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
