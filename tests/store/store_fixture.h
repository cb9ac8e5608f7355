// What the store's tests share: both blocks unset and an empty queue before every test, and nothing left behind.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apconf/apconf.h"
#include "apconf/description.h"
#include "support/log_capture.h"

struct json_object;

namespace apconf_test
{

class store_test : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    lookup_ctx lookup = {};
};

// Sets both blocks to the unset state, after releasing all that they hold.
void reset_blocks();

// A heap copy, as a set handler stores it.
char *text(const std::string &value);

// A record of a package table, and its description.
cmd_node *node_of(const std::string &package, const std::string &command);
const apconf_command &command_of(const std::string &package, const std::string &command);
const apconf_package &package_of(const std::string &package);

// What a get handler answered. `json` is empty when it left the slot untouched.
struct answer {
    int result;
    std::string json;
};
bool operator==(const answer &one, const answer &other);
std::ostream &operator<<(std::ostream &stream, const answer &shown);

// Calls the command's get handler; `args` is JSON text, empty for none.
answer report(const std::string &package, const std::string &command, lookup_ctx *lookup, const std::string &args = "");

inline answer nothing()
{
    return {0, ""};
}
inline answer reported(const std::string &json)
{
    return {0, json};
}
inline answer failed()
{
    return {-1, ""};
}

// The message of a walk over the whole tree, as a commit collects it. The caller releases it.
json_object *walk_tree();
std::string walk_tree_text();
std::string json_text(json_object *object);

// The texts of the lines with this priority that begin so.
std::vector<std::string> lines_of(const log_capture &log, int priority, const std::string &beginning);

// Fresh lists of `count` records: root's element records unset, the reference block's list left alone.
void make_vlans(int count);
void make_pools(int count);
void make_ip_acls(int count);

}  // namespace apconf_test
