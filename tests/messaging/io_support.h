// Frames, descriptors and a tiny server for the tests of the transport and the client. The frames are built byte by
// byte here, independently of the library.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace apconf_test
{

// A connected pair of stream sockets.
class socket_pair
{
public:
    socket_pair();
    ~socket_pair();
    int near = -1, far = -1;
    void close_near();
    void close_far();
};

// The frame as it stands on the wire.
std::string frame(int type, int code, uint32_t count, uint32_t data_len, const std::string &data);

// Everything that can be read from `fd` without waiting.
std::string drain(int fd);
void write_all(int fd, const std::string &bytes);
// Sends `bytes` with a control message of `fds`.
void send_with_descriptors(int fd, const std::string &bytes, const std::vector<int> &fds);

int open_descriptors();  // how many this process has
bool is_open(int fd);
ino_t inode_of(int fd);
void make_nonblocking(int fd);

// One whole request as a server sees it; `whole` is false at the end of the stream.
struct request {
    bool whole = false;
    int type = 0, code = 0, reserved0 = 0, reserved3 = 0;
    uint32_t count = 0;
    std::string data;
};
request read_request(int fd);
void send_reply(int fd, int code, const std::string &data = "");

// A server in a process of its own. It listens before the constructor returns. `serve` runs in the child with the
// listening socket; what it prints with `report` is read by the parent, line by line.
class tiny_server
{
public:
    using serve_fn = std::function<void(tiny_server &, int listener)>;
    tiny_server(const std::string &path, serve_fn serve);
    ~tiny_server();
    tiny_server(const tiny_server &) = delete;
    tiny_server &operator=(const tiny_server &) = delete;

    void report(const std::string &line);  // in the child
    std::string next_report();             // in the parent; waits
    void wait_for_end();                   // until the child has returned from `serve`

private:
    std::string path_;
    pid_t child_ = -1;
    int reports_[2] = {-1, -1};
};

// Accepts connections one after another, answers types 1 and 6 with `code` and `answer`, and reports each request as
// "TYPE:DATA" with its NUL shown as "$".
tiny_server::serve_fn answer_everything(int code = 0, const std::string &answer = "");
std::string shown(const request &message);

}  // namespace apconf_test
