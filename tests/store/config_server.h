// A configuration server of the least kind, in a process of its own: it accepts one client, registers it, and keeps
// what else comes.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

namespace apconf_test
{

struct received_message {
    uint8_t type;
    std::string data;
    bool operator==(const received_message &other) const = default;
};

class config_server
{
public:
    config_server();
    ~config_server();
    config_server(const config_server &) = delete;
    config_server &operator=(const config_server &) = delete;

    // Waits until the client has closed its connection; what it sent after its registration.
    std::vector<received_message> finish();

private:
    pid_t process_ = -1;
    int results_ = -1;
};

}  // namespace apconf_test
