/* Somebody else's program in C, against the installed library: sets a command in the block, reads it as a message. */
#include <apconf/apconf.h>
#include <json-c/json.h>
#include <stdio.h>
#include <string.h>

int main(void)
{
    init_cmd_tree_data();
    register_root_cmd(lib_pkg_root);
    root.config.log_size_cmd.size = 64;

    struct json_object *const request =
        json_tokener_parse("{\"ACTION\": \"get\", \"CPATH\": {\"path\": \"/config/log_size_cmd\"}}");
    struct cmesage_info info;
    struct lookup_ctx place = {0};
    struct json_object *answer = NULL;
    struct json_object *size = NULL;
    const int taken = get_cmesage_info(request, &info) == 0 && cmessage_parser(&info, &answer, 0, &place) == 0 &&
                      json_pointer_get(answer, "/config/log_size_cmd/size", &size) == 0 &&
                      strcmp(json_object_get_string(size), "64") == 0;
    printf("%s\n", json_object_to_json_string(answer));
    json_object_put(answer);
    json_object_put(request);
    return taken ? 0 : 1;
}
