#include "messaging/io_support.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

namespace apconf_test
{
namespace
{

bool read_exactly(int fd, void *to, size_t length)
{
    char *at = static_cast<char *>(to);
    while (length > 0) {
        const ssize_t n = read(fd, at, length);
        if (n <= 0) return false;
        at += n;
        length -= static_cast<size_t>(n);
    }
    return true;
}

void append_u32(std::string &to, uint32_t value)
{
    to.append(reinterpret_cast<const char *>(&value), sizeof value);
}

int listening_socket(const std::string &path)
{
    unlink(path.c_str());
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path.data(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(fd, 128) != 0) abort();
    return fd;
}

}  // namespace

socket_pair::socket_pair()
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) abort();
    near = ends[0];
    far = ends[1];
}

socket_pair::~socket_pair()
{
    close_near();
    close_far();
}

void socket_pair::close_near()
{
    if (near >= 0) close(near);
    near = -1;
}

void socket_pair::close_far()
{
    if (far >= 0) close(far);
    far = -1;
}

std::string frame(int type, int code, uint32_t count, uint32_t data_len, const std::string &data)
{
    std::string bytes = {0, static_cast<char>(type), static_cast<char>(code), 0};
    append_u32(bytes, count);
    append_u32(bytes, data_len);
    return bytes + data;
}

std::string drain(int fd)
{
    std::string bytes;
    char buffer[4096];
    ssize_t n;
    while ((n = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT)) > 0) bytes.append(buffer, static_cast<size_t>(n));
    return bytes;
}

void write_all(int fd, const std::string &bytes)
{
    ASSERT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

void send_with_descriptors(int fd, const std::string &bytes, const std::vector<int> &fds)
{
    std::string copy = bytes;
    iovec part = {copy.data(), copy.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(16 * sizeof(int))] = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = CMSG_LEN(fds.size() * sizeof(int));
    cmsghdr *header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(fds.size() * sizeof(int));
    memcpy(CMSG_DATA(header), fds.data(), fds.size() * sizeof(int));
    ASSERT_EQ(sendmsg(fd, &message, 0), static_cast<ssize_t>(bytes.size()));
}

int open_descriptors()
{
    DIR *directory = opendir("/proc/self/fd");
    if (!directory) abort();
    int count = 0;
    while (readdir(directory)) ++count;
    closedir(directory);
    return count - 3;  // ".", ".." and the directory itself
}

bool is_open(int fd)
{
    return fcntl(fd, F_GETFD) >= 0;
}

ino_t inode_of(int fd)
{
    struct stat status = {};
    if (fstat(fd, &status) != 0) abort();
    return status.st_ino;
}

void make_nonblocking(int fd)
{
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
}

request read_request(int fd)
{
    request result;
    unsigned char header[12];
    if (!read_exactly(fd, header, sizeof header)) return result;
    uint32_t length;
    memcpy(&result.count, header + 4, 4);
    memcpy(&length, header + 8, 4);
    result.reserved0 = header[0];
    result.type = header[1];
    result.code = header[2];
    result.reserved3 = header[3];
    result.data.resize(length);
    result.whole = read_exactly(fd, result.data.data(), length);
    return result;
}

void send_reply(int fd, int code, const std::string &data)
{
    const std::string bytes = frame(0, code, 0, static_cast<uint32_t>(data.size()), data);
    if (write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) _exit(3);
}

tiny_server::tiny_server(const std::string &path, serve_fn serve) : path_(path)
{
    if (pipe2(reports_, O_CLOEXEC) != 0) abort();
    const int listener = listening_socket(path);
    child_ = fork();
    if (child_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test program that crashes leaves no server behind
        signal(SIGPIPE, SIG_IGN);
        close(reports_[0]);
        serve(*this, listener);
        _exit(0);
    }
    close(listener);
    close(reports_[1]);
    reports_[1] = -1;
}

tiny_server::~tiny_server()
{
    if (child_ > 0) {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    close(reports_[0]);
    unlink(path_.c_str());
}

void tiny_server::report(const std::string &line)
{
    const std::string text = line + "\n";
    if (write(reports_[1], text.data(), text.size()) < 0) _exit(4);
}

std::string tiny_server::next_report()
{
    std::string line;
    char c;
    while (read(reports_[0], &c, 1) == 1) {
        if (c == '\n') return line;
        line += c;
    }
    return "(end)";
}

void tiny_server::wait_for_end()
{
    waitpid(child_, nullptr, 0);
    child_ = -1;
}

std::string shown(const request &message)
{
    std::string text = std::to_string(message.type) + ":";
    for (const char c : message.data) text += c == '\0' ? '$' : c;
    return text;
}

tiny_server::serve_fn answer_everything(int code, const std::string &answer)
{
    return [=](tiny_server &server, int listener) {
        for (;;) {
            const int connection = accept(listener, nullptr, nullptr);
            for (;;) {
                const request message = read_request(connection);
                if (!message.whole) break;
                server.report(shown(message));
                if (message.type == 1) send_reply(connection, code);
                if (message.type == 6) send_reply(connection, code, answer);
            }
            close(connection);
        }
    };
}

}  // namespace apconf_test
