// Owners of what the C interfaces hand out.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <utility>

#include "host/json.h"

namespace apconf_host
{

struct file_release {
    void operator()(FILE *file) const { fclose(file); }
};
using file_owner = std::unique_ptr<FILE, file_release>;

class fd_owner
{
public:
    fd_owner() = default;
    explicit fd_owner(int fd) : fd_(fd) {}
    fd_owner(fd_owner &&other) noexcept : fd_(other.release()) {}
    fd_owner &operator=(fd_owner &&other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~fd_owner()
    {
        if (fd_ >= 0) close(fd_);
    }

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release() { return std::exchange(fd_, -1); }

private:
    int fd_ = -1;
};

}  // namespace apconf_host
