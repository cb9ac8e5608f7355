// Starting, watching and ending apconfd, and talking to it byte by byte.
#include "daemon/server_process.h"

#include <apconf/apconf.h>
#include <fcntl.h>
#include <json-c/json.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include "support/private_namespace.h"

namespace apconf_test
{
namespace
{

constexpr const char *log_path = "/tmp/apconfd.log";

pid_t start_apconfd(const std::vector<std::string> &arguments, const char *output_path)
{
    // Behind an emulator's words, when the program is for another machine.
    std::istringstream command(APCONFD);
    std::vector<std::string> words(std::istream_iterator<std::string>(command), {});
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    const pid_t pid = fork();
    if (pid != 0) return pid;
    const int output = open(output_path, O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(output, 1);
    dup2(output, 2);
    execvp(argv[0], argv.data());
    _exit(127);
}

int status_of(int wait_status)
{
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
}

}  // namespace

std::string read_file(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

void write_file(const std::string &path, const std::string &text)
{
    std::ofstream(path) << text;
}

bool exists(const std::string &path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

void make_fresh_machine()
{
    if (!in_private_namespace()) abort();
    namespace fs = std::filesystem;
    for (const char *path : {CMQ_DIR, IO_SOCK_PATH, log_path, "/etc/config"}) fs::remove_all(path);
    const std::string etc = std::string(APCONF_SOURCE_DIR) + "/etc/";
    for (const char *name : {"config_cmd_tree.xml", "cmd_tree_help.txt"})
        fs::copy_file(etc + name, std::string("/etc/") + name, fs::copy_options::overwrite_existing);
}

void install_start_configuration()
{
    std::filesystem::create_directories("/etc/config");
    std::filesystem::copy_file(std::string(APCONF_SOURCE_DIR) + "/etc/start_config.json", CMQ_START_CONFIG,
                               std::filesystem::copy_options::overwrite_existing);
}

server_process::server_process(const std::vector<std::string> &arguments)
{
    std::vector<std::string> all = {"--foreground", "--verbose"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    pid_ = start_apconfd(all, log_path);
}

server_process::~server_process()
{
    kill();
}

bool server_process::wait_until_serving(std::chrono::milliseconds limit)
{
    return eventually([] { return raw_client().connected(); }, limit);
}

void server_process::kill()
{
    if (pid_ < 0) return;
    ::kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

int server_process::terminate(int signal_number)
{
    ::kill(pid_, signal_number);
    return exit_status().value_or(-1);
}

std::optional<int> server_process::exit_status()
{
    int status = 0;
    if (!eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; })) return std::nullopt;
    pid_ = -1;
    return status_of(status);
}

std::string server_process::log() const
{
    return read_file(log_path);
}

bool server_process::wait_for_log(const std::string &text, std::chrono::milliseconds limit) const
{
    return eventually([&] { return log().find(text) != std::string::npos; }, limit);
}

size_t server_process::descriptors() const
{
    size_t count = 0;
    for ([[maybe_unused]] const auto &entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(pid_) + "/fd"))
        ++count;
    return count;
}

size_t server_process::resident_kilobytes() const
{
    for (const std::string &line : lines_of(read_file("/proc/" + std::to_string(pid_) + "/status")))
        if (line.starts_with("VmRSS:")) return std::stoul(line.substr(6));
    return 0;
}

int run_to_end(const std::vector<std::string> &arguments, std::string *output)
{
    constexpr const char *path = "/tmp/apconfd.output";
    unlink(path);
    int status = 0;
    waitpid(start_apconfd(arguments, path), &status, 0);
    if (output) *output = read_file(path);
    return status_of(status);
}

raw_client::raw_client()
{
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, IO_SOCK_PATH);
    if (connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        fd_ = fd;
    else
        close(fd);
}

raw_client::~raw_client()
{
    if (fd_ >= 0) close(fd_);
}

raw_client::raw_client(raw_client &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

bool raw_client::send_bytes(const std::string &bytes) const
{
    for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count < 0) return false;
        sent += static_cast<size_t>(count);
    }
    return true;
}

bool raw_client::send_message(uint8_t type, const std::string &data) const
{
    return send_bytes(frame(type, static_cast<uint32_t>(data.size()), data));
}

std::optional<received_reply> raw_client::receive(std::chrono::milliseconds limit) const
{
    const auto end = std::chrono::steady_clock::now() + limit;
    const auto take = [&](char *target, size_t size) {
        while (size > 0) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
            pollfd readable = {fd_, POLLIN, 0};
            if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) != 1) return false;
            const ssize_t count = recv(fd_, target, size, 0);
            if (count <= 0) return false;
            target += count;
            size -= static_cast<size_t>(count);
        }
        return true;
    };
    io_msg header;
    if (!take(reinterpret_cast<char *>(&header), IO_MSG_HEADER_SIZE)) return std::nullopt;
    received_reply reply = {header.code, std::string(header.data_len, '\0')};
    if (!take(reply.data.data(), reply.data.size())) return std::nullopt;
    return reply;
}

std::optional<received_reply> raw_client::request(uint8_t type, const std::string &data) const
{
    if (!send_message(type, data)) return std::nullopt;
    return receive();
}

bool raw_client::is_closed_by_server(std::chrono::milliseconds limit) const
{
    return eventually(
        [this] {
            char bytes[4096];
            const ssize_t count = recv(fd_, bytes, sizeof bytes, MSG_DONTWAIT);
            return count == 0 || (count < 0 && errno != EAGAIN);
        },
        limit);
}

void raw_client::finish_sending() const
{
    shutdown(fd_, SHUT_WR);
}

std::string with_nul(const std::string &text)
{
    return std::string(text.c_str(), text.size() + 1);
}

std::string frame(uint8_t type, uint32_t data_len, const std::string &data)
{
    io_msg header = {};
    header.type = type;
    header.count = 1;
    header.data_len = data_len;
    return std::string(reinterpret_cast<const char *>(&header), IO_MSG_HEADER_SIZE) + data;
}

std::string get_message(const std::string &path)
{
    return with_nul(R"({"MODULE":"tester","ACTION":"get","CPATH":{"path":")" + path + R"("}})");
}

std::string set_message(const std::string &path, const std::string &param)
{
    return with_nul(R"({"MODULE":"tester","ACTION":"set","CPATH":{"path":")" + path + R"(","param":)" + param + "}}");
}

std::string set_hostname_message(const std::string &hostname)
{
    return set_message("/config/hostname_cmd", R"({"hostname":")" + hostname + R"("})");
}

std::string queued_hostname_message(const std::string &hostname, const std::string &module)
{
    return R"({"MODULE":")" + module + R"(","ACTION":"set","config":{"hostname_cmd":{"hostname":")" + hostname +
           R"("}}})";
}

namespace
{

std::string hostname_in_text(const std::string &text)
{
    json_object *const answer = json_tokener_parse(text.c_str());
    json_object *const config = search_child_obj(answer, "config", nullptr);
    json_object *const command = search_child_obj(config, "hostname_cmd", nullptr);
    json_object *const value = search_child_obj(command, "hostname", nullptr);
    const std::string hostname = value ? json_object_get_string(value) : "";
    json_object_put(answer);
    return hostname;
}

}  // namespace

std::string hostname_of_server()
{
    const raw_client client;
    if (!client.connected()) return "";
    const auto reply = client.request(IO_MSG_GET, get_message("/config/hostname_cmd"));
    return reply && reply->code == 0 ? hostname_in_text(reply->data) : "";
}

std::string configuration_of_server()
{
    const raw_client client;
    const auto reply = client.request(IO_MSG_GET, get_message("/"));
    return reply && reply->code == 0 ? reply->data : "";
}

std::string hostname_in(const std::string &path)
{
    return hostname_in_text(read_file(path));
}

int append(const std::string &message)
{
    json_object *const object = json_tokener_parse(message.c_str());
    const int index = cmq_handle_cmessage(cmq_put_cmessage, object);
    json_object_put(object);
    return index;
}

void pause_for(std::chrono::milliseconds duration)
{
    usleep(static_cast<useconds_t>(duration.count() * 1000));
}

}  // namespace apconf_test
