// Growing heap strings and arrays, and looks at memory.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "apconf/util.h"
#include "util/log.h"
#include "util/owners.h"

void dynamic_strcatn(char **buffer, const char *text, unsigned int n)
{
    if (!text) return;
    const size_t added = strnlen(text, n);
    const size_t length = *buffer ? strlen(*buffer) : 0;
    auto *grown = static_cast<char *>(realloc(*buffer, length + added + 1));
    if (!grown) return;
    *buffer = grown;
    memcpy(grown + length, text, added);
    grown[length + added] = '\0';
}

void dynamic_strcat(char **buffer, const char *text)
{
    dynamic_strcatn(buffer, text, text ? static_cast<unsigned int>(strlen(text)) : 0);
}

void *add_array_member(void **array, unsigned int *count, size_t element_size, const void *init)
{
    // A size of 0 would make realloc release the array while the caller still holds it.
    size_t elements, size;
    if (__builtin_add_overflow(*count, 1u, &elements) || __builtin_mul_overflow(elements, element_size, &size) ||
        size == 0)
        return nullptr;
    auto *grown = static_cast<char *>(realloc(*array, size));
    if (!grown) return nullptr;
    char *member = grown + size - element_size;
    if (init)
        memcpy(member, init, element_size);
    else
        memset(member, 0, element_size);
    *array = grown;
    ++*count;
    return member;
}

int memory_is_zero(const void *bytes, int length)
{
    if (length <= 0) return 0;
    // All bytes are zero when the first one is and each equals the next.
    const auto *first = static_cast<const char *>(bytes);
    return *first != 0 || memcmp(first, first + 1, static_cast<size_t>(length) - 1) != 0;
}

void print_mem_size(const char *tag, int line)
{
    char path[256] = "";
    snprintf(path, sizeof path, "/proc/%d/status", getpid());
    apconf::unique_file file(fopen(path, "r"));
    if (!file) {
        LOG(LOG_ERR, "open '%s' failed", path);
        return;
    }
    char status[256];
    while (fgets(status, sizeof status, file.get())) {
        if (strncmp(status, "VmSize:", 7) != 0) continue;
        LOG(LOG_ERR, "[%s:%d]%s", tag, line, status);
        return;
    }
}
