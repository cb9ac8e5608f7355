// The subcommands of apconf. Each returns its exit status or throws what problem.h declares.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

struct get_options {
    std::string path;
    std::vector<std::string> assignments;
    bool json = false;     // the raw answer on one line
    bool secrets = false;  // show them
};

struct change_options {
    std::string path;
    std::vector<std::string> assignments;
};

struct commit_options {
    std::string file;  // "-": standard input
};

struct queue_options {
    int number = 0;
    bool secrets = false;
};

int get_command(const get_options &options);
int set_command(const change_options &options);
int no_command(const change_options &options);
int commit_command(const commit_options &options);
int list_queue(const queue_options &options);
int show_queued(const queue_options &options);

}  // namespace apconf_host
