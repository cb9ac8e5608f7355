// What the host's tests share: a tree with the default vocabulary and handlers, a clean configuration and queue for
// every test, and short ways to apply messages and read them back.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/handlers.h"
#include "host/json.h"

namespace apconf_test
{

using apconf_host::json_ptr;

// Parses JSON written with single quotes instead of double ones.
json_ptr parse(std::string text);

// Compact text, slashes not escaped.
std::string text_of(json_object *value);

class host_test : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Applies a message written as for parse(); the refusals as lines.
    std::vector<std::string> apply(const std::string &message, apconf_host::role as = apconf_host::role::server);

    // Likewise, a command below "config" as a whole-tree message: `body` is the text of the "config" object.
    std::vector<std::string> configure(const std::string &body, apconf_host::role as = apconf_host::role::server);

    // Likewise, a single-command message.
    std::vector<std::string> set(const std::string &path, const std::string &param,
                                 apconf_host::role as = apconf_host::role::server);

    // What the running configuration says at a place: member names, and positions in arrays, separated by "/".
    std::string running(const std::string &place);
    std::string running();

    unsigned changes = 0;  // of the last message
};

}  // namespace apconf_test
