/* The smallest configuration server: one command, /config/radio/bss/ssid_cmd, one client at a time, no queue.
 *
 *     cc -std=c11 server.c -o server $(pkg-config --cflags --libs apconf json-c)
 */
#define _POSIX_C_SOURCE 200809L
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

/* Handlers of packages choose the instance that the handlers below them work on. */
static int choose(uint32_t *slot, uint32_t count, const char *key, struct json_object *args, struct cpath_ctx *ctx)
{
    uint32_t index;
    if (!fetch_arg_value(args, key, PTYPE_UINT, &index, ctx) || index >= count) return -1;
    *slot = index;
    return 0;
}

static int set_radio(struct json_object *args, struct cpath_ctx *ctx)
{
    struct lookup_ctx *const lookup = ctx->instance;
    return choose(&lookup->radio, RADIO_COUNT, "radio_id", args, ctx);
}

static int set_bss(struct json_object *args, struct cpath_ctx *ctx)
{
    struct lookup_ctx *const lookup = ctx->instance;
    return choose(&lookup->wlan, BSS_COUNT, "wlan_id", args, ctx);
}

/* The schema's range of a parameter of the command that is being handled; NULL: it has none. */
static const void *range_of(const struct cpath_ctx *ctx, const char *name)
{
    const struct cmd_node *const node = ctx->stack[ctx->depth].node;
    for (uint32_t i = 0; node->params && i < node->param_count; i++)
        if (strcmp(node->params[i].name, name) == 0) return node->params[i].range;
    return NULL;
}

static char **chosen_ssid(struct config_block *block, const struct cpath_ctx *ctx)
{
    const struct lookup_ctx *const lookup = ctx->instance;
    return &block->config.radio[lookup->radio].bss[lookup->wlan].ssid_cmd.ssid;
}

/* Puts `text`, which becomes the block's, in the place of the SSID. What the reference block holds is not ours. */
static void replace_ssid(char *text, const struct cpath_ctx *ctx)
{
    char **const place = chosen_ssid(&root, ctx);
    if (*place != *chosen_ssid(&mirror_root, ctx)) free(*place);
    *place = text;
}

static int set_ssid(struct json_object *args, struct cpath_ctx *ctx)
{
    const char *const text = fetch_arg_value(args, "ssid", PTYPE_STRING, NULL, ctx);
    if (!text || check_ptype_string(PTYPE_STRING, text, range_of(ctx, "ssid")) != 0) return -1;
    const char *const stored = *chosen_ssid(&root, ctx);
    if (stored && strcmp(stored, text) == 0) return 1;
    char *const copy = strdup(text);
    if (!copy) return -1;
    replace_ssid(copy, ctx);
    return 0;
}

static int no_ssid(struct json_object *args, struct cpath_ctx *ctx)
{
    (void)args;
    if (!*chosen_ssid(&root, ctx)) return 1;
    replace_ssid(NULL, ctx);
    return 0;
}

/* The tables are the library's; a host fills in the handlers that it has. */
static int load_commands(void)
{
    struct cmd_node *const tree = register_root_cmd(lib_pkg_root);
    struct cmd_node *const radio = search_child_cmd(search_child_cmd(tree, "config"), "radio");
    struct cmd_node *const bss = search_child_cmd(radio, "bss");
    struct cmd_node *const ssid = search_child_cmd(bss, "ssid_cmd");
    if (!ssid) return -1;
    radio->set = set_radio;
    bss->set = set_bss;
    ssid->set = set_ssid;
    ssid->no = no_ssid;
    if (command_tree_parser() != 0) return -1;
    init_cmd_tree_data();
    return 0;
}

/* The answer of a get, which the caller releases. Null: the text is no message, or a set. */
static struct json_object *dispatch(const char *text)
{
    struct json_object *const message = json_tokener_parse(text);
    struct json_object *answer = NULL;
    struct lookup_ctx lookup = {0};
    struct cmesage_info info;
    if (get_cmesage_info(message, &info) == 0) cmessage_parser(&info, &answer, 0, &lookup);
    json_object_put(message);
    return answer;
}

static void answer_get(int client, const char *text)
{
    struct json_object *const answer = dispatch(text);
    const char *const data = answer ? json_object_to_json_string_ext(answer, JSON_C_TO_STRING_PLAIN) : NULL;
    send_io_reply(client, data ? 0 : 1, data, data ? (uint32_t)strlen(data) + 1 : 0);
    json_object_put(answer);
}

static void serve(int client)
{
    int closed = 0;
    struct io_msg *message;
    while (!closed && (message = recv_io_msg(client, NULL, &closed))) {
        if (message->type == IO_MSG_REGISTER) send_io_reply(client, 0, NULL, 0);
        if (message->type == IO_MSG_SET) json_object_put(dispatch(message->data));
        if (message->type == IO_MSG_GET) answer_get(client, message->data);
        free(message);
    }
    close(client);
}

int main(void)
{
    unlink(IO_SOCK_PATH);
    const int listener = init_io_sock(1, NULL);
    if (listener < 0 || load_commands() != 0) {
        fprintf(stderr, "cannot start; the system log says why\n");
        return 1;
    }
    for (;;) {
        struct pollfd readable = {listener, POLLIN, 0};
        poll(&readable, 1, -1);
        const int client = accept(listener, NULL, NULL);
        if (client >= 0) serve(client);
    }
}
