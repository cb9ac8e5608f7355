// A store owner commits for years: what a commit leaves behind adds up.
#include <json-c/json.h>

#include "batch.h"
#include "config_server.h"
#include "memory.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

// The commands below `node` that an instance's object lacks.
std::vector<std::string> missing_below(const cmd_node &node, json_object *instance)
{
    std::vector<std::string> missing;
    for (const cmd_node *child = node.children; child && child->name; child++) {
        if (apconf_find_command(child)->variant == APCONF_NEVER_REPORTED) continue;
        json_object *value = nullptr;
        if (!json_object_object_get_ex(instance, child->name, &value)) {
            missing.push_back(child->name);
            continue;
        }
        if (json_object_is_type(value, json_type_array)) value = json_object_array_get_idx(value, 0);
        for (const std::string &each : missing_below(*child, value)) missing.push_back(child->name + ('/' + each));
    }
    return missing;
}

class batch_test : public store_test, public testing::WithParamInterface<batch::extent>
{
};

TEST_P(batch_test, holds_every_command)
{
    batch filled(GetParam());
    filled.fill();
    json_object *const message = walk_tree();
    const cmd_node tree = {"root", 0, nullptr, nullptr, nullptr, nullptr, 0, lib_pkg_root};
    EXPECT_THAT(missing_below(tree, message), testing::IsEmpty());
    json_object_put(message);
}

INSTANTIATE_TEST_SUITE_P(all, batch_test, testing::Values(batch::extent::everything, batch::extent::one_of_each));

#ifndef __SANITIZE_ADDRESS__  // which finds what is lost by itself

constexpr int few = 10;
constexpr int many = 1'000;

// Every command with a value, something of every kind that a commit releases. The queue stays as empty as a server
// leaves it.
void commit_batches(int count)
{
    batch one_of_each(batch::extent::one_of_each);
    for (int i = 0; i < count; i++) {
        one_of_each.fill();
        ASSERT_EQ(apply_cmd_tree_data(), 0);
        one_of_each.release_rest();
        cmq_delete_new_msg(apconf_committed_index(), 0);
    }
}

TEST_F(store_test, a_thousand_commits_need_no_more_memory_than_ten)
{
    config_server server;
    ASSERT_GE(init_cmclient(nullptr, "store"), 0);
    commit_batches(few);
    const size_t early = heap_in_use();
    EXPECT_GT(early, 0U);
    commit_batches(many - few);
    EXPECT_EQ(heap_in_use(), early);
    deinit_cmclient();
    io_sockfd = -1;
}

#endif

}  // namespace
}  // namespace apconf_test
