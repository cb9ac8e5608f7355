// A batch's life: the commit queues what differs, releases what the batch held and tells the server.
#include <json-c/json.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "config_server.h"
#include "heap_members.h"
#include "memory.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class lifecycle_test : public store_test
{
protected:
    void TearDown() override
    {
        if (io_sockfd >= 0) deinit_cmclient();
        io_sockfd = -1;
        store_test::TearDown();
    }
};

std::string queued(int index)
{
    json_object *const message = json_object_from_file((CMQ_NEW_DIR "/" + std::to_string(index) + ".json").c_str());
    if (!message) return "";
    std::string shown = json_text(message);
    json_object_put(message);
    return shown;
}

void expect_equal_blocks()
{
    EXPECT_EQ(memcmp(&root, &mirror_root, sizeof root), 0);
}

// ---- the message ----

TEST_F(lifecycle_test, a_commit_with_nothing_changed_still_queues_a_message_and_tells_the_server)
{
    config_server server;
    ASSERT_GE(init_cmclient(nullptr, "store"), 0);
    log_capture log;
    EXPECT_EQ(apply_cmd_tree_data(), 0);
    EXPECT_THAT(lines_of(log, 6, "send config message over"), IsEmpty());
    EXPECT_EQ(queued(1), R"({"MODULE":"store","ACTION":"set"})");
    EXPECT_EQ(apconf_committed_index(), 1);
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 2);
    deinit_cmclient();
    io_sockfd = -1;
    EXPECT_THAT(server.finish(), ElementsAre(received_message{4, ""}, received_message{2, ""}));
}

TEST_F(lifecycle_test, without_a_server_the_message_is_queued_and_the_failure_returned)
{
    std::filesystem::remove(IO_SOCK_PATH);
    root.config.wdt_cmd.status = 1;
    log_capture log;
    EXPECT_EQ(apply_cmd_tree_data(), -1);
    EXPECT_TRUE(log.has(6, "apply_cmd_tree_data", "send config message over, result code = -1"));
    EXPECT_EQ(queued(1), std::string(R"({"config":{"wdt_cmd":{"status":"enable"}},"MODULE":")") + get_io_module() +
                             R"(","ACTION":"set"})");
    expect_equal_blocks();
}

TEST_F(lifecycle_test, the_message_holds_what_differs_below_its_instances)
{
    root.config.radio[1].channel_cmd.channel = 36;
    root.config.radio[1].bss[2].ssid_cmd.ssid = text("office");
    root.config.ethernet[4].mtu_cmd.mtu = 1500;
    make_vlans(1);
    root.config.vlan.list[0].vlan_id = 5;
    root.config.vlan.list[0].dhcp_cmd.type = 1;
    apply_cmd_tree_data();
    const std::string message = queued(1);
    EXPECT_TRUE(message.starts_with(R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"channel_cmd":{"channel":"36"},)"
                                    R"("bss":{"INDEX":{"wlan_id":"2"},"ssid_cmd":{"ssid":"office"},"passpoint_ie":)"))
        << message;
    EXPECT_TRUE(message.find(R"("ethernet":{"INDEX":{"eth_id":"4"},"mtu_cmd":{"mtu":"1500"}},)"
                             R"("vlan":{"INDEX":{"vlan_id":"5"},"dhcp_cmd":{"type":"relay"}}},"MODULE":)") !=
                std::string::npos)
        << message;
}

TEST_F(lifecycle_test, messages_are_numbered_on)
{
    apply_cmd_tree_data();
    root.config.wdt_cmd.status = 0;
    apply_cmd_tree_data();
    EXPECT_EQ(apconf_committed_index(), 2);
    EXPECT_THAT(queued(2), testing::HasSubstr(R"("wdt_cmd":{"status":"disable"})"));
    EXPECT_THAT(queued(1), testing::Not(testing::HasSubstr("wdt_cmd")));
}

TEST_F(lifecycle_test, a_commit_that_cannot_queue_goes_on_and_says_so)
{
    std::filesystem::remove(CMQ_MAX_INDEX);
    root.config.hostname_cmd.hostname = text("ap");
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_EQ(apconf_committed_index(), -1);
    EXPECT_TRUE(log.has(7, "apply_cmd_tree_data", "free root.config.hostname_cmd.hostname"));
    expect_equal_blocks();
}

TEST_F(lifecycle_test, a_message_that_could_not_be_written_has_no_index)
{
    apply_cmd_tree_data();
    ASSERT_EQ(apconf_committed_index(), 1);
    std::filesystem::create_directory(CMQ_NEW_DIR "/2.json");
    apply_cmd_tree_data();
    EXPECT_EQ(apconf_committed_index(), -1);
    EXPECT_EQ(get_message_index(CMQ_MAX_INDEX), 2);
}

// ---- the release ----

// The lines of a full commit, as they must come.
std::vector<std::string> expected_release(int vlans, int pools)
{
    std::vector<std::string> lines;
    auto add = [&](const heap_members &members) {
        for (const heap_member &member : members) lines.push_back("free " + member.path);
    };
    config_data &config = root.config;
    for (auto &radio : config.radio)
        for (auto &bss : radio.bss) add(bss_members(bss));
    for (auto &ethernet : config.ethernet) {
        add(ethernet_members(ethernet));
        lines.push_back("free root.config.ethernet[eid].switchport_cmd.vlanid");
    }
    for (int i = 0; i < vlans; i++) add(vlan_members(config.vlan.list[i]));
    lines.push_back("free root.config.vlan");
    for (int i = 0; i < pools; i++) add(pool_members(config.dhcp_server.pool.list[i]));
    lines.push_back("free root.config.dhcp_server.pool");
    add(dns_members(config));
    lines.push_back("free root.config.ip_acl");
    add(location_members(config));
    for (auto &ftp : config.ftp) add(ftp_members(ftp));
    add(last_members_before_ism(config));
    add(last_members_after_ism(config));
    return lines;
}

void fill(const heap_members &members)
{
    for (const heap_member &member : members) *member.place = text("set");
}

// Sets every heap member there is.
void fill_root(int vlans, int pools)
{
    config_data &config = root.config;
    fill(all_texts(config));
    for (auto &ethernet : config.ethernet) {
        ethernet.switchport_cmd.vlanid.list = static_cast<uint32_t *>(calloc(3, sizeof(uint32_t)));
        ethernet.switchport_cmd.vlanid.count = 3;
    }
    make_vlans(vlans);
    for (int i = 0; i < vlans; i++) {
        config.vlan.list[i].vlan_id = static_cast<uint32_t>(i);
        fill(vlan_members(config.vlan.list[i]));
    }
    make_pools(pools);
    for (int i = 0; i < pools; i++) fill(pool_members(config.dhcp_server.pool.list[i]));
    make_ip_acls(2);
    config.ism_cmd.ism = json_object_new_object();
}

std::vector<std::string> release_lines(const log_capture &log)
{
    std::vector<std::string> lines;
    for (const log_line &line : log.lines())
        if (line.priority == 7 && line.text.starts_with("free ")) {
            lines.push_back(line.text);
            const bool of_bss = line.text.find("bss[wid]") != std::string::npos;
            EXPECT_EQ(line.function, of_bss ? "free_vap_cmd_tree_data" : "apply_cmd_tree_data") << line.text;
        }
    return lines;
}

TEST_F(lifecycle_test, a_commit_releases_every_heap_member_in_order)
{
    fill_root(3, 2);
    const auto expected = expected_release(3, 2);
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_EQ(release_lines(log), expected);
    expect_equal_blocks();
    for (const heap_member &member : all_texts(root.config)) EXPECT_EQ(*member.place, nullptr) << member.path;
}

TEST_F(lifecycle_test, a_released_batch_leaves_nothing_to_release)
{
    fill_root(1, 1);
    apply_cmd_tree_data();
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), IsEmpty());
}

TEST_F(lifecycle_test, the_lists_are_empty_in_both_blocks_after_a_commit)
{
    fill_root(2, 2);
    apply_cmd_tree_data();
    for (const config_block *block : {&root, &mirror_root}) {
        EXPECT_EQ(block->config.vlan.list, nullptr);
        EXPECT_EQ(block->config.vlan.count, 0);
        EXPECT_EQ(block->config.dhcp_server.pool.list, nullptr);
        EXPECT_EQ(block->config.dhcp_server.pool.count, 0);
        EXPECT_EQ(block->config.ip_acl.list, nullptr);
        EXPECT_EQ(block->config.ip_acl.count, 0);
        for (const auto &ethernet : block->config.ethernet) {
            EXPECT_EQ(ethernet.switchport_cmd.vlanid.list, nullptr);
            EXPECT_EQ(ethernet.switchport_cmd.vlanid.count, 0);
        }
    }
}

// The walk hands the object over; only when there was no walk is it still here.
TEST_F(lifecycle_test, an_object_that_was_not_handed_over_is_released_between_its_neighbours)
{
    root.config.password_cmd.password = text("secret");
    root.config.iwg_server_cmd.server_addr = text("192.0.2.1");
    root.config.ism_cmd.ism = json_object_new_object();
    json_object *const held = json_object_get(root.config.ism_cmd.ism);
    log_capture log;
    {
        const json_objects_fail short_of_memory;
        apply_cmd_tree_data();
    }
    EXPECT_THAT(release_lines(log),
                ElementsAre("free root.config.password_cmd.password", "free obj root.config.ism_cmd.ism",
                            "free root.config.iwg_server_cmd.server_addr"));
    EXPECT_EQ(json_object_put(held), 1) << "the block's reference was not dropped";
    EXPECT_EQ(apconf_committed_index(), -1);
    expect_equal_blocks();
}

TEST_F(lifecycle_test, a_member_that_the_reference_shares_is_left_alone)
{
    char *const shared = text("shared");
    root.config.hostname_cmd.hostname = mirror_root.config.hostname_cmd.hostname = shared;
    root.config.radio[0].bss[0].ssid_cmd.ssid = mirror_root.config.radio[0].bss[0].ssid_cmd.ssid = text("shared too");
    root.config.radio[0].bss[0].state = 5;
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), IsEmpty());
    EXPECT_EQ(root.config.hostname_cmd.hostname, shared);
    EXPECT_STREQ(shared, "shared");
    EXPECT_STREQ(root.config.radio[0].bss[0].ssid_cmd.ssid, "shared too");
}

TEST_F(lifecycle_test, a_released_member_takes_over_the_pointer_of_the_reference)
{
    char *const kept = text("kept");
    mirror_root.config.radio[1].bss[3].ssid_cmd.ssid = kept;
    root.config.radio[1].bss[3].ssid_cmd.ssid = text("new");
    log_capture log;
    free_vap_cmd_tree_data(1, 3);
    EXPECT_THAT(release_lines(log), ElementsAre("free root.config.radio[rid].bss[wid].ssid_cmd.ssid"));
    EXPECT_EQ(root.config.radio[1].bss[3].ssid_cmd.ssid, kept);
}

TEST_F(lifecycle_test, a_null_in_root_is_not_released_whatever_the_reference_holds)
{
    mirror_root.config.hostname_cmd.hostname = text("kept");
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), IsEmpty());
    EXPECT_STREQ(root.config.hostname_cmd.hostname, "kept");
}

TEST_F(lifecycle_test, only_the_pointer_held_at_the_commit_is_released)
{
    char *const replaced = root.config.hostname_cmd.hostname = text("first");
    root.config.hostname_cmd.hostname = text("second");
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), ElementsAre("free root.config.hostname_cmd.hostname"));
    EXPECT_STREQ(replaced, "first");
    free(replaced);
}

TEST_F(lifecycle_test, texts_that_are_their_setters_are_not_released)
{
    bss_config &bss = root.config.radio[0].bss[9];
    fill(unreleased_members(bss));
    std::vector<char *> kept;
    for (const heap_member &member : unreleased_members(bss)) kept.push_back(*member.place);
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), IsEmpty());
    for (char *each : kept) {
        EXPECT_STREQ(each, "set");
        free(each);
    }
    expect_equal_blocks();
}

bool is_text(const apconf_field &field)
{
    return field.kind == APCONF_FIELD_TEXT || field.kind == APCONF_FIELD_TYPED;
}

// What a commit does with a text in the first element of a command, in the first instance. Flagged texts are freed.
std::vector<std::string> lines_of_release(const apconf_command &command, const apconf_field &field)
{
    reset_blocks();
    make_vlans(1);
    make_pools(1);
    lookup_ctx first = {};
    auto *const record =
        static_cast<char *>(apconf_scope_record(static_cast<apconf_scope>(command.scope), &root, &first));
    char *const set = text("set");
    memcpy(record + field.offset, &set, sizeof set);
    log_capture log;
    apply_cmd_tree_data();
    if (field.flags & APCONF_FIELD_UNRELEASED) free(set);
    return release_lines(log);
}

TEST_F(lifecycle_test, every_described_text_is_released_or_flagged_as_its_setters)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                if (!is_text(field)) continue;
                const std::string line =
                    std::string("free ") + apconf_scope_prefix(static_cast<apconf_scope>(command.scope)) + field.member;
                const auto lines = lines_of_release(command, field);
                EXPECT_EQ(std::count(lines.begin(), lines.end(), line), field.flags & APCONF_FIELD_UNRELEASED ? 0 : 1)
                    << line;
            }
        }
    }
}

TEST_F(lifecycle_test, one_bss_is_released_without_the_others)
{
    root.config.radio[0].bss[1].ssid_cmd.ssid = text("one");
    char *const other = root.config.radio[1].bss[1].ssid_cmd.ssid = text("other");
    free_vap_cmd_tree_data(0, 1);
    EXPECT_EQ(root.config.radio[0].bss[1].ssid_cmd.ssid, nullptr);
    EXPECT_EQ(root.config.radio[1].bss[1].ssid_cmd.ssid, other);
}

TEST_F(lifecycle_test, a_bss_that_is_not_there_is_not_released)
{
    log_capture log;
    free_vap_cmd_tree_data(2, 0);
    free_vap_cmd_tree_data(0, 16);
    free_vap_cmd_tree_data(0xFFFFFFFFu, 0xFFFFFFFFu);
    EXPECT_THAT(log.lines(), IsEmpty());
    expect_equal_blocks();
}

// A reference list that is shorter counts as null beyond its end.
TEST_F(lifecycle_test, elements_beyond_the_reference_list_are_released)
{
    const json_objects_fail no_walk;  // it would rebuild the reference list
    make_vlans(2);
    char *const shared = text("shared");
    root.config.vlan.list[0].dhcp_cmd.pool_name = shared;
    root.config.vlan.list[1].dhcp_cmd.relay_name = text("own");
    mirror_root.config.vlan.list = static_cast<vlan_config *>(malloc(sizeof(vlan_config)));
    mirror_root.config.vlan.count = 1;
    init_vlan_config(0);
    mirror_root.config.vlan.list[0].dhcp_cmd.pool_name = shared;
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log),
                ElementsAre("free root.config.vlan[vid].dhcp_cmd.relay_name", "free root.config.vlan"));
    EXPECT_STREQ(shared, "shared");
    free(shared);
    expect_equal_blocks();
}

// A list in both blocks is released once.
TEST_F(lifecycle_test, a_list_that_both_blocks_share_is_released_once)
{
    const json_objects_fail no_walk;
    make_vlans(1);
    make_pools(1);
    mirror_root.config.vlan.list = root.config.vlan.list;
    mirror_root.config.vlan.count = root.config.vlan.count;
    mirror_root.config.dhcp_server.pool.list = root.config.dhcp_server.pool.list;
    mirror_root.config.dhcp_server.pool.count = root.config.dhcp_server.pool.count;
    auto *const ids = static_cast<uint32_t *>(calloc(1, sizeof(uint32_t)));
    for (config_block *block : {&root, &mirror_root}) {
        block->config.ethernet[2].switchport_cmd.vlanid.list = ids;
        block->config.ethernet[2].switchport_cmd.vlanid.count = 1;
    }
    log_capture log;
    apply_cmd_tree_data();
    EXPECT_THAT(release_lines(log), IsEmpty());
    EXPECT_EQ(mirror_root.config.vlan.list, nullptr);
    EXPECT_EQ(mirror_root.config.dhcp_server.pool.list, nullptr);
    EXPECT_EQ(mirror_root.config.ethernet[2].switchport_cmd.vlanid.list, nullptr);
    expect_equal_blocks();
}

// What a consumer has put there goes with the commit too.
TEST_F(lifecycle_test, the_lists_of_the_reference_are_released)
{
    const json_objects_fail no_walk;  // it would replace them
    auto &ids = mirror_root.config.ethernet[1].switchport_cmd.vlanid;
    ids.list = static_cast<uint32_t *>(calloc(2, sizeof(uint32_t)));
    ids.count = 2;
    auto &vlans = mirror_root.config.vlan;
    vlans.list = static_cast<vlan_config *>(calloc(1, sizeof(vlan_config)));
    vlans.count = 1;
    auto &pools = mirror_root.config.dhcp_server.pool;
    pools.list = static_cast<pool_config *>(calloc(1, sizeof(pool_config)));
    pools.count = 1;
    apply_cmd_tree_data();
    EXPECT_EQ(ids.list, nullptr);
    EXPECT_EQ(ids.count, 0);
    EXPECT_EQ(vlans.list, nullptr);
    EXPECT_EQ(vlans.count, 0);
    EXPECT_EQ(pools.list, nullptr);
    EXPECT_EQ(pools.count, 0);
    expect_equal_blocks();
}

// Kept: the reference's list of access lists is dropped without being released, since it is never the library's.
TEST_F(lifecycle_test, an_ip_acl_list_of_the_reference_is_forgotten)
{
    auto *const kept = static_cast<ip_acl_config *>(calloc(1, sizeof(ip_acl_config)));
    mirror_root.config.ip_acl.list = kept;
    mirror_root.config.ip_acl.count = 1;
    apply_cmd_tree_data();
    EXPECT_EQ(mirror_root.config.ip_acl.list, nullptr);
    EXPECT_EQ(mirror_root.config.ip_acl.count, 0);
    free(kept);
}

TEST_F(lifecycle_test, every_byte_of_root_returns_to_the_reference)
{
    memset(&root.config.radio[1], 0, offsetof(radio_config, bss));
    mirror_root.config.wdt_cmd.status = 1;
    apply_cmd_tree_data();
    expect_equal_blocks();
    EXPECT_EQ(root.config.wdt_cmd.status, 1u);
}

}  // namespace
}  // namespace apconf_test
