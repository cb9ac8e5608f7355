// apconf as it ships, run as a process, with or without a running server.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>

namespace apconf_test
{

struct tool_result {
    int status;
    std::string output;
    std::string errors;
};

// Runs the tool through the shell, quotes and all, with `input` as its standard input.
tool_result apconf(const std::string &arguments, const std::string &input = "");

std::string content(const char *file);

// The vocabulary is in its place; there is neither queue nor server.
class tool : public testing::Test
{
protected:
    void SetUp() override;
    static void make_queue();
};

// With a server that was started for the test.
class tool_with_server : public tool
{
protected:
    void SetUp() override;
    void TearDown() override;
    void start_server();
    void stop_server();

private:
    pid_t server_ = -1;
};

}  // namespace apconf_test
