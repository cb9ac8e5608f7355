// An access point under test: a mount namespace whose /tmp and /etc/config are its own, and in it apconfd and apconf as
// they ship. The test reaches its files and its socket from outside.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "host/json.h"

namespace apconf_test
{

// The vocabulary in /etc and in this process: once, before the first machine.
void load_vocabulary();

struct finished_process {
    int status;  // -1: it died of a signal
    std::string output;
    std::string errors;
};

class machine
{
public:
    explicit machine(const std::string &name);
    ~machine();
    machine(const machine &) = delete;
    machine &operator=(const machine &) = delete;

    // As before the first boot: no server, no queue, no start configuration.
    void clear();
    void install_start_configuration(const std::string &text) const;
    void start();  // does not wait; a request does
    void kill();

    // As a client process does it, through the client library. `action` is "set" or "no".
    void send(const std::string &action, const std::string &path, json_object *param);
    std::string running_configuration();  // the server's answer to a get of everything

    // `apconf commit`, as a process.
    finished_process commit(const std::string &batch) const;

    // Waits until the server has applied message `index`. False, after 30 s: it has not.
    bool wait_until_applied(int index) const;
    std::string saved_configuration(int index) const;  // old/N.json
    std::string refusals(int index) const;             // bad/N.txt
    int next_index() const;                            // that the queue gives
    std::string take_logged_refusals();                // those that were logged since the last call

private:
    std::string queue() const { return directory_ + "/tmp/cmessage_queue"; }
    void connect();
    void disconnect();
    pid_t run(std::vector<std::string> command, const std::string &input, const std::string &output,
              const std::string &errors) const;

    std::string directory_;
    int keeper_input_ = -1;  // when it closes, the process that keeps the namespace ends
    pid_t keeper_ = -1;
    pid_t server_ = -1;
    std::streamoff read_of_log_ = 0;
};

}  // namespace apconf_test
