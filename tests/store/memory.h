// The memory of the code under test: counted, and made short.
#pragma once

#include <cstddef>

namespace apconf_test
{

// Bytes of the heap, without what the allocator keeps for later. Not under a sanitizer, which has an allocator of its
// own.
size_t heap_in_use();

// While one of these lives, every malloc of at least `size` bytes fails.
class large_allocations_fail
{
public:
    explicit large_allocations_fail(size_t size);
    ~large_allocations_fail();
    large_allocations_fail(const large_allocations_fail &) = delete;
    large_allocations_fail &operator=(const large_allocations_fail &) = delete;
};

// While one of these lives, new JSON objects cannot be made once `allowed` have been.
class json_objects_fail
{
public:
    explicit json_objects_fail(int allowed = 0);
    ~json_objects_fail();
    json_objects_fail(const json_objects_fail &) = delete;
    json_objects_fail &operator=(const json_objects_fail &) = delete;
};

}  // namespace apconf_test
