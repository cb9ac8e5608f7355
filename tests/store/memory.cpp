#include "memory.h"

#include <dlfcn.h>
#include <json-c/json.h>
#include <malloc.h>

#include <cstdint>
#include <cstdlib>

namespace
{

size_t failing_size = SIZE_MAX;
int allowed_objects = -1;  // negative: any number
size_t bytes_in_use = 0;

void *counted(void *block)
{
#ifndef __SANITIZE_ADDRESS__  // which is asked for memory before it can tell the size of a block
    bytes_in_use += malloc_usable_size(block);
#endif
    return block;
}

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
    return size >= failing_size ? nullptr : counted(next(size));
}

#ifndef __SANITIZE_ADDRESS__  // which needs these for itself
// The C library's own functions under the names that a replacement calls them by.
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *old, size_t size);
void __libc_free(void *block);

void *calloc(size_t count, size_t size)
{
    return counted(__libc_calloc(count, size));
}

void *realloc(void *old, size_t size)
{
    const size_t before = malloc_usable_size(old);
    void *const block = __libc_realloc(old, size);
    if (block || size == 0) bytes_in_use -= before;
    return counted(block);
}

void free(void *block)
{
    bytes_in_use -= malloc_usable_size(block);
    __libc_free(block);
}
#endif

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

size_t heap_in_use()
{
    return bytes_in_use;
}

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
