// apconfd, the configuration server: owns the socket, keeps the running configuration, applies the queued messages.
#include <apconf/apconf.h>
#include <event2/event.h>
#include <signal.h>
#include <sys/stat.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "host/handlers.h"
#include "host/server/background.h"
#include "host/server/credentials.h"
#include "host/server/directories.h"
#include "host/server/limits.h"
#include "host/server/listener.h"
#include "host/server/log.h"
#include "host/server/queue_drain.h"
#include "host/server/running_state.h"
#include "host/server/server_socket.h"
#include "host/server/service.h"
#include "host/server/watchers.h"

namespace apconf_host
{
namespace
{

struct options {
    bool foreground = false;
    int verbosity = 0;
    std::string group;
    size_t archive_limit = limits::archived_files;
    size_t connections = limits::connections;
};

struct base_release {
    void operator()(event_base *base) const { event_base_free(base); }
};
struct event_release {
    void operator()(event *owned) const { event_free(owned); }
};
using event_owner = std::unique_ptr<event, event_release>;

void describe_options(CLI::App &app, options &options)
{
    app.set_version_flag("--version", std::string("apconfd ") + APCONF_VERSION);
    app.add_flag("--foreground", options.foreground, "Stay in the foreground");
    app.add_flag("--verbose", options.verbosity, "Log to standard error too; twice: with debug lines");
    app.add_option("--group", options.group, "Members of this group may configure, besides root and the server's user");
    app.add_option("--archive-limit", options.archive_limit,
                   "Files to keep of handled messages, in old and in bad each")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    app.add_option("--connections", options.connections, "Clients at a time")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
}

void open_log(const options &options)
{
    openlog("apconfd", LOG_PID | (options.verbosity > 0 ? LOG_PERROR : 0), LOG_DAEMON);
    setlogmask(LOG_UPTO(options.verbosity > 1 ? LOG_DEBUG : LOG_INFO));
}

void settle_process()
{
    umask(077);
    signal(SIGPIPE, SIG_IGN);
    signal(SIGHUP, SIG_IGN);
#ifdef __GLIBC__
    // Large messages come and go; their memory goes back to the system at once.
    mallopt(M_MMAP_THRESHOLD, 128 << 10);
    mallopt(M_TRIM_THRESHOLD, 128 << 10);
#endif
}

void load_command_tree()
{
    register_root_cmd(lib_pkg_root);
    install_handlers();
    if (command_tree_parser() != 0) throw std::runtime_error("'/etc/config_cmd_tree.xml' cannot be loaded");
    init_cmd_tree_data();
}

event_owner end_on(event_base *base, int signal_number)
{
    event_owner ending(evsignal_new(
        base, signal_number,
        [](evutil_socket_t, short, void *loop) { event_base_loopexit(static_cast<event_base *>(loop), nullptr); },
        base));
    if (!ending || evsignal_add(ending.get(), nullptr) < 0) throw std::bad_alloc();
    return ending;
}

void serve(const options &options, background &background)
{
    access_rule rule = {geteuid(), std::nullopt};
    if (!options.group.empty()) rule.group = group_number(options.group);

    make_queue_directories();
    const server_lock lock;
    const size_t clients = raise_descriptor_limit(options.connections);
    load_command_tree();

    const std::unique_ptr<event_base, base_release> base(event_base_new());
    if (!base) throw std::bad_alloc();
    const event_owner terminate = end_on(base.get(), SIGTERM);
    const event_owner interrupt = end_on(base.get(), SIGINT);

    running_state state(base.get());
    watchers watchers;
    queue_drain queue(base.get(), state, watchers, options.archive_limit);
    queue.start();
    service requests(state, queue, watchers);
    const server_socket socket(rule.group);
    const listener clients_door(base.get(), socket.get(), rule, requests, clients);

    background.ready();
    SERVER_LOG(LOG_INFO, "serving");
    event_base_dispatch(base.get());
    state.flush();
    SERVER_LOG(LOG_INFO, "ending");
}

int run(int argc, char **argv)
{
    CLI::App app("Configuration server of the access point.");
    options options;
    describe_options(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    open_log(options);
    background background;  // outlives the error's message: a waiting parent leaves after it
    try {
        settle_process();
        if (!options.foreground) background.enter();
        serve(options, background);
    } catch (const std::exception &error) {
        SERVER_LOG(LOG_ERR, "%s", error.what());
        if (options.verbosity == 0) fprintf(stderr, "apconfd: %s\n", error.what());
        return 1;
    }
    // The command tree ends with the process: free_cmd_tree would only lose track of most of it.
    release_configuration();
    return 0;
}

}  // namespace
}  // namespace apconf_host

int main(int argc, char **argv)
{
    try {
        return apconf_host::run(argc, argv);
    } catch (const std::exception &error) {
        fprintf(stderr, "apconfd: %s\n", error.what());
        return 1;
    }
}
