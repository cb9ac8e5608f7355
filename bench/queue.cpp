#include "bench/queue.h"

#include <apconf/cmq.h>
#include <json-c/json.h>
#include <sys/stat.h>

#include <filesystem>

namespace apconf_bench
{

void empty_queue()
{
    std::filesystem::remove_all(CMQ_DIR);
    for (const char *path : {CMQ_DIR, CMQ_NEW_DIR}) mkdir(path, 0700);
    set_message_index(CMQ_CUR_INDEX, 1);
    set_message_index(CMQ_MAX_INDEX, 1);
}

std::string message_path(int index)
{
    return CMQ_NEW_DIR "/" + std::to_string(index) + ".json";
}

bool write_message(int index, json_object *message)
{
    return json_object_to_file_ext(message_path(index).c_str(), message, JSON_C_TO_STRING_PRETTY) == 0;
}

}  // namespace apconf_bench
