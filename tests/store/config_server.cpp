#include "config_server.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

#include "apconf/io_sock.h"

namespace apconf_test
{
namespace
{

bool read_all(int fd, void *data, size_t size)
{
    auto *at = static_cast<char *>(data);
    while (size > 0) {
        const ssize_t got = read(fd, at, size);
        if (got <= 0) return false;
        at += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

void write_all(int fd, const void *data, size_t size)
{
    if (write(fd, data, size) != static_cast<ssize_t>(size)) _exit(1);
}

// One type byte and one length byte stand before the data of each message.
[[noreturn]] void serve(int listening, int results)
{
    const int client = accept(listening, nullptr, nullptr);
    io_msg header;
    while (read_all(client, &header, IO_MSG_HEADER_SIZE)) {
        char data[256];
        if (header.data_len > sizeof data || !read_all(client, data, header.data_len)) break;
        if (header.type == IO_MSG_REGISTER) {
            const io_msg accepted = {};
            write_all(client, &accepted, IO_MSG_HEADER_SIZE);
            continue;
        }
        const uint8_t type_and_length[] = {header.type, static_cast<uint8_t>(header.data_len)};
        write_all(results, type_and_length, sizeof type_and_length);
        write_all(results, data, header.data_len);
    }
    _exit(0);
}

}  // namespace

config_server::config_server()
{
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, IO_SOCK_PATH);
    unlink(IO_SOCK_PATH);
    int ends[2];
    if (bind(listening, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(listening, 1) != 0 ||
        pipe(ends) != 0) {
        ADD_FAILURE() << "no server";
        return;
    }
    results_ = ends[0];
    process_ = fork();
    if (process_ == 0) {
        close(ends[0]);
        serve(listening, ends[1]);
    }
    close(ends[1]);
    close(listening);
}

config_server::~config_server()
{
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(results_);
    unlink(IO_SOCK_PATH);
}

std::vector<received_message> config_server::finish()
{
    std::vector<received_message> received;
    uint8_t type_and_length[2];
    while (read_all(results_, type_and_length, sizeof type_and_length)) {
        received_message message = {type_and_length[0], std::string(type_and_length[1], '\0')};
        read_all(results_, message.data.data(), message.data.size());
        received.push_back(message);
    }
    waitpid(process_, nullptr, 0);
    process_ = -1;
    return received;
}

}  // namespace apconf_test
