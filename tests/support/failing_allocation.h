// Makes allocations fail on demand. Include it in one file of a program: it defines malloc and realloc, so that the
// library's calls arrive here too. Sanitizers need these functions for themselves: with them nothing fails.
#pragma once

#include <cstddef>

namespace apconf_test
{

inline bool allocation_fails = false;

#ifdef __SANITIZE_ADDRESS__
constexpr bool can_fail_allocations = false;
#else
constexpr bool can_fail_allocations = true;
#endif

// While it lives, every allocation fails. Keep assertions outside of its life: they allocate.
struct failing_allocation {
    failing_allocation() { allocation_fails = true; }
    ~failing_allocation() { allocation_fails = false; }
    failing_allocation(const failing_allocation &) = delete;
    failing_allocation &operator=(const failing_allocation &) = delete;
};

}  // namespace apconf_test

#ifndef __SANITIZE_ADDRESS__
extern "C" {
// The C library's own functions under the names that a replacement calls them by.
void *__libc_malloc(size_t size);
void *__libc_realloc(void *old, size_t size);

void *malloc(size_t size) noexcept
{
    return apconf_test::allocation_fails ? nullptr : __libc_malloc(size);
}

void *realloc(void *old, size_t size) noexcept
{
    return apconf_test::allocation_fails ? nullptr : __libc_realloc(old, size);
}
}
#endif
