// Owners of what the C libraries hand out, so that every early return releases it.
#pragma once

#include <json-c/json.h>
#include <libxml/tree.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace apconf
{

// Owns one handle and releases it with `Release`; `empty` is the handle that owns nothing.
template <typename Handle, auto Release, Handle empty = Handle{}>
class owner
{
public:
    owner() = default;
    explicit owner(Handle handle) : handle_(handle) {}
    owner(owner &&other) noexcept : handle_(other.release()) {}
    owner &operator=(owner &&other) noexcept
    {
        reset(other.release());
        return *this;
    }
    owner(const owner &) = delete;
    owner &operator=(const owner &) = delete;
    ~owner() { reset(); }

    Handle get() const { return handle_; }
    explicit operator bool() const { return handle_ != empty; }
    Handle release() { return std::exchange(handle_, empty); }
    void reset(Handle handle = empty)
    {
        if (handle_ != empty) Release(handle_);
        handle_ = handle;
    }
    // Where a C function stores a new handle; what was owned before is released.
    Handle *out()
    {
        reset();
        return &handle_;
    }

private:
    Handle handle_ = empty;
};

using json_ptr = owner<json_object *, [](json_object *object) { json_object_put(object); }>;
using xml_doc = owner<xmlDoc *, xmlFreeDoc>;
using heap_text = owner<char *, [](char *text) { free(text); }>;
using unique_file = owner<FILE *, [](FILE *file) { fclose(file); }>;
using unique_fd = owner<int, [](int fd) { close(fd); }, -1>;

}  // namespace apconf
