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

// Functions and not lambdas: a lambda's type differs between the files that include this.
inline void release_json(json_object *object)
{
    json_object_put(object);
}
inline void release_text(char *text)
{
    free(text);
}
inline void release_file(FILE *file)
{
    fclose(file);
}

using json_ptr = owner<json_object *, release_json>;
using xml_doc = owner<xmlDoc *, xmlFreeDoc>;
using heap_text = owner<char *, release_text>;
using unique_file = owner<FILE *, release_file>;
using unique_fd = owner<int, [](int fd) { close(fd); }, -1>;

}  // namespace apconf
