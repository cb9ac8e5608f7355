/* Sets the SSID of the first BSS and reads it back.
 *
 *     cc -std=c11 client.c -o client $(pkg-config --cflags --libs apconf json-c)
 *     ./client guests
 */
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define SSID_PATH "/config/radio/bss/ssid_cmd"

static const uint32_t radio = 0;
static const uint32_t wlan = 0;

/* The path names the command; the index parameters of the packages on it choose the instance. */
static int set_ssid(const char *ssid)
{
    const struct cpath_arg args[] = {
        {"radio_id", PTYPE_UINT, &radio, 1},
        {"wlan_id", PTYPE_UINT, &wlan, 1},
        {"ssid", PTYPE_STRING, &ssid, 1},
        {NULL, 0, NULL, 0},
    };
    return send_cpath_cmd("set", SSID_PATH, args, NULL);
}

/* The answer repeats the path as nested objects. The caller releases it. */
static struct json_object *get_ssid(void)
{
    const struct cpath_arg args[] = {
        {"radio_id", PTYPE_UINT, &radio, 1},
        {"wlan_id", PTYPE_UINT, &wlan, 1},
        {NULL, 0, NULL, 0},
    };
    struct io_msg *reply = NULL;
    if (send_cpath_cmd("get", SSID_PATH, args, &reply) != 0) return NULL;
    struct json_object *answer = reply->code == 0 ? json_tokener_parse(reply->data) : NULL;
    free(reply);
    return answer;
}

int main(int argc, char **argv)
{
    const char *const ssid = argc > 1 ? argv[1] : "guests";
    if (init_cmclient(NULL, NULL) < 0) {
        fprintf(stderr, "there is no configuration server\n");
        return 1;
    }
    int taken = 0;
    if (set_ssid(ssid) == 0) {
        /* A set has no reply. Whether it took shows a get. */
        struct json_object *const answer = get_ssid();
        struct json_object *value = NULL;
        if (answer) json_pointer_get(answer, SSID_PATH "/ssid", &value);
        const char *const stored = value ? json_object_get_string(value) : "(none)";
        taken = strcmp(stored, ssid) == 0;
        printf("ssid: %s\n", stored);
        json_object_put(answer);
    }
    deinit_cmclient();
    return taken ? 0 : 1;
}
