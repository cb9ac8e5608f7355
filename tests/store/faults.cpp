#include "faults.h"

#include <dlfcn.h>
#include <json-c/json.h>

#include <cstdint>
#include <cstdlib>

namespace
{

size_t failing_size = SIZE_MAX;
int allowed_objects = -1;  // negative: any number

template <typename Function>
Function *next_definition(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

// Stands in front of the C library's own.
void *malloc(size_t size)
{
    static auto *const next = next_definition<void *(size_t)>("malloc");
    return size >= failing_size ? nullptr : next(size);
}

struct json_object *json_object_new_object(void)
{
    static auto *const next = next_definition<json_object *(void)>("json_object_new_object");
    if (allowed_objects == 0) return nullptr;
    if (allowed_objects > 0) allowed_objects--;
    return next();
}
}

namespace apconf_test
{

large_allocations_fail::large_allocations_fail(size_t size)
{
    failing_size = size;
}

large_allocations_fail::~large_allocations_fail()
{
    failing_size = SIZE_MAX;
}

json_objects_fail::json_objects_fail(int allowed)
{
    allowed_objects = allowed;
}

json_objects_fail::~json_objects_fail()
{
    allowed_objects = -1;
}

}  // namespace apconf_test
