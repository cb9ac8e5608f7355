// Nothing in the data block is nobody's: every byte belongs to one described place or to declared padding, and every
// place, when a batch changes it, is reported by one command under one key.
#include <json-c/json.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "samples.h"
#include "store_fixture.h"

namespace apconf_test
{
namespace
{

// ---- bytes ----

// Who owns each byte of a record.
class byte_map
{
public:
    byte_map(const char *record_name, size_t size) : name_(record_name), owners_(size) {}

    void claim(size_t offset, size_t size, const std::string &owner)
    {
        ASSERT_LE(offset + size, owners_.size()) << name_ << ": " << owner;
        for (size_t i = offset; i < offset + size; i++) {
            EXPECT_EQ(owners_[i], "") << name_ << " byte " << i << " belongs also to " << owner;
            owners_[i] = owner;
        }
    }
    void expect_complete() const
    {
        for (size_t i = 0; i < owners_.size(); i++)
            ASSERT_NE(owners_[i], "") << name_ << ": byte " << i << ", after " << (i ? owners_[i - 1] : "nothing")
                                      << ", belongs to nobody";
    }

private:
    std::string name_;
    std::vector<std::string> owners_;
};

bool is_iterating(const apconf_command &command)
{
    return command.variant == APCONF_RECORD_NODE || command.variant == APCONF_LIST_NODE;
}

bool is_package(const apconf_command &command)
{
    return is_iterating(command) || command.variant == APCONF_PACKAGE_NODE ||
           command.variant == APCONF_UNCONDITIONAL_NODE;
}

uint32_t elements_of(const apconf_command &command)
{
    return command.array.count ? command.array.count : 1;
}

void claim_fields(byte_map &bytes, const apconf_command &command)
{
    for (uint32_t i = 0; i < elements_of(command); i++) {
        std::set<uint32_t> places;  // two rows can share a place, each in force at its time
        for (uint32_t f = 0; f < command.field_count; f++) {
            const apconf_field &field = command.fields[f];
            if (!places.insert(field.offset).second) continue;
            bytes.claim(field.offset + size_t{i} * command.array.step, apconf_field_size(&field), field.member);
        }
    }
}

// What the descriptions know of a record.
byte_map described(const char *name, apconf_scope scope)
{
    byte_map bytes(name, apconf_scope_size(scope));
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            const auto of = static_cast<apconf_scope>(command.scope);
            if (is_iterating(command) && apconf_enclosing_scope(of) == scope) {
                const size_t size = command.array.step ? size_t{command.array.step} * command.array.count
                                                       : sizeof(void *) + sizeof(int32_t);
                bytes.claim(command.array.offset, size, command.name);
            }
            if (of != scope || command.variant == APCONF_RECORD_NODE) continue;
            claim_fields(bytes, command);
            if (!is_package(command) && command.option != APCONF_NO_OPTION)
                bytes.claim(command.option, sizeof(uint32_t), std::string(command.name) + "_opt");
        }
    }
    return bytes;
}

// Claims members of a record that no description names.
template <typename Record>
class undescribed
{
public:
    undescribed(byte_map &bytes) : record(new Record), bytes_(bytes) {}

    template <typename Member>
    void operator()(const Member &member, const char *what = "reserved")
    {
        const auto offset = reinterpret_cast<const char *>(&member) - reinterpret_cast<const char *>(record.get());
        bytes_.claim(static_cast<size_t>(offset), sizeof member, what);
    }

    const std::unique_ptr<Record> record;

private:
    byte_map &bytes_;
};

// Padding that only 64-bit, or only 32-bit, machines have.
#if UINTPTR_MAX > 0xFFFFFFFFu
#define ON_64(...) __VA_ARGS__
#define ON_32(...)
#else
#define ON_64(...)
#define ON_32(...) __VA_ARGS__
#endif

TEST(coverage, every_byte_of_a_bss_is_described_or_padding)
{
    byte_map bytes = described("bss", APCONF_SCOPE_BSS);
    undescribed<bss_config> reserve(bytes);
    const bss_config &bss = *reserve.record;
    reserve(bss.state, "state");
    reserve(bss.reserved);
    ON_64(reserve(bss.reserved2); reserve(bss.reserved3); reserve(bss.macauth_server_cmd.reserved);
          reserve(bss.auth_shared_wep.reserved); reserve(bss.auth_open_wep.reserved);
          reserve(bss.auth_open_wpa.reserved); reserve(bss.auth_open_wpa.wpa_type_cmd.reserved);
          reserve(bss.auth_open_wpa2.reserved); reserve(bss.auth_wpa_wpa2.reserved);
          reserve(bss.auth_wpa3_sae.reserved); reserve(bss.auth_wpa3_sae.wpa_type_cmd.reserved);
          reserve(bss.auth_wpa2_wpa3.wpa_type_cmd.reserved); reserve(bss.access_list.reserved);
          for (const auto &each
               : bss.access_list.domain_acl_cmd) reserve(each.reserved);
          reserve(bss.webauth_parameter.reserved); for (const auto &each
                                                        : bss.webauth_parameter.portal_dmi_cmd) reserve(each.reserved);
          reserve(bss.passpoint_ie.reserved); for (const auto &each
                                                   : bss.passpoint_anqp.network_auth_cmd) reserve(each.reserved);)
    reserve(bss.auth_open_wpa2.wpa_type_cmd.reserved);
    reserve(bss.auth_wpa_wpa2.wpa_type_cmd.reserved);
    reserve(bss.webauth_parameter.http_login_cmd.reserved);
    reserve(bss.webauth_parameter.http_logout_cmd.reserved);
    reserve(bss.ssid_encode_identify_cmd.reserved);
    reserve(bss.session_id_cmd.reserved);
    reserve(bss.dot11k_cfg.reserved);
    reserve(bss.passpoint_ie.reserved2);
    reserve(bss.passpoint_anqp.wan_metrics_cmd.reserved);
    reserve(bss.passpoint_anqp.wan_metrics_cmd.reserved2);
    ON_32(reserve(bss.passpoint_anqp.reserved); reserve(bss.reserved4);)
    reserve(bss.ppsk.reserved);
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_a_radio_is_described_or_padding)
{
    byte_map bytes = described("radio", APCONF_SCOPE_RADIO);
    undescribed<radio_config> reserve(bytes);
    reserve(reserve.record->reserved);
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_an_ethernet_port_is_described_or_padding)
{
    byte_map bytes = described("ethernet", APCONF_SCOPE_ETHERNET);
    undescribed<ethernet_config> reserve(bytes);
    ON_64(reserve(reserve.record->reserved); reserve(reserve.record->reserved2);
          reserve(reserve.record->switchport_cmd.reserved); reserve(reserve.record->switchport_cmd.vlanid.reserved);)
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_an_ftp_service_is_described_or_padding)
{
    byte_map bytes = described("ftp", APCONF_SCOPE_FTP);
    undescribed<ftp_config> reserve(bytes);
    ON_64(reserve(reserve.record->reserved); reserve(reserve.record->service_cmd.reserved);)
    reserve(reserve.record->timer_cmd.reserved);
    reserve(reserve.record->timer_cmd.reserved2);
    reserve(reserve.record->reserved2);
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_a_vlan_is_described_or_padding)
{
    byte_map bytes = described("vlan", APCONF_SCOPE_VLAN);
    undescribed<vlan_config> reserve(bytes);
    ON_64(reserve(reserve.record->dhcp_cmd.reserved);)
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_a_pool_is_described_or_padding)
{
    byte_map bytes = described("pool", APCONF_SCOPE_POOL);
    undescribed<pool_config> reserve(bytes);
    reserve(reserve.record->reserved);
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_an_ip_access_list_is_described_or_padding)
{
    byte_map bytes = described("ip_acl", APCONF_SCOPE_IP_ACL);
    undescribed<ip_acl_config> reserve(bytes);
    for (const ace_config &ace : reserve.record->ace) {
        reserve(ace.reserved);
        reserve(ace.reserved2);
    }
    bytes.expect_complete();
}

TEST(coverage, every_byte_of_the_global_section_is_described_or_padding)
{
    byte_map bytes = described("config", APCONF_SCOPE_GLOBAL);
    undescribed<config_data> reserve(bytes);
    const config_data &config = *reserve.record;
    ON_64(reserve(config.reserved); reserve(config.reserved2); reserve(config.reserved3);
          reserve(config.dhcp_server.pool.reserved); reserve(config.dpi.logging_audit_cmd.reserved);
          reserve(config.dpi.report_server_cmd.reserved); reserve(config.dns.reserved);
          for (const auto &each
               : config.dns.fake_response_cmd) reserve(each.reserved);
          reserve(config.capwap.reserved); reserve(config.location.server_cmd.reserved);
          reserve(config.speed_test_cmd.reserved2); reserve(config.trace_ap_cmd.reserved2); reserve(config.reserved6);
          reserve(config.vlan.reserved); reserve(config.ip_acl.reserved); reserve(config.iwg_server_cmd.reserved);)
    reserve(config.location.reserved);
    for (const auto &each : config.log_level_cmd) reserve(each.reserved);
    for (const auto &each : config.log_server_cmd) reserve(each.reserved);
    reserve(config.reserved4);
    reserve(config.reserved5);
    reserve(config.speed_test_cmd.reserved);
    reserve(config.trace_ap_cmd.reserved);
    reserve(config.disturb_test_cmd.reserved);
    ON_32(reserve(config.disturb_test_cmd.reserved2);)
    reserve(config.lan_igmp_snoop_cmd.status, "lan_igmp_snoop_cmd.status");
    reserve(config.reserved7);
    bytes.expect_complete();
}

// ---- changes ----

// Every value of a message by its place: config/radio{1}/bss{7}/wmm/status_cmd/status.
using leaves = std::multiset<std::pair<std::string, std::string>>;

std::string label_of(json_object *instance)
{
    json_object *index = nullptr;
    if (!json_object_object_get_ex(instance, "INDEX", &index)) return "";
    std::string label;
    json_object_object_foreach(index, key, value)
    {
        label += std::string(label.empty() ? "" : ",") + key + '=' + json_object_get_string(value);
    }
    return '{' + label + '}';
}

void gather(const cmd_node *node, json_object *instance, const std::string &path, leaves &found);

void gather_element(const cmd_node *child, json_object *element, const std::string &path, leaves &found)
{
    if (child->children) return gather(child, element, path + label_of(element), found);
    if (json_object_object_length(element) == 0) found.emplace(path, "{}");
    json_object_object_foreach(element, key, value)
    {
        found.emplace(path + '/' + key, json_text(value));
    }
}

void gather(const cmd_node *node, json_object *instance, const std::string &path, leaves &found)
{
    json_object_object_foreach(instance, name, value)
    {
        if (strcmp(name, "INDEX") == 0) continue;
        const cmd_node *child = search_child_cmd(const_cast<cmd_node *>(node), name);
        ASSERT_TRUE(child) << path << '/' << name;
        const std::string below = path.empty() ? name : path + '/' + name;
        if (!json_object_is_type(value, json_type_array)) {
            gather_element(child, value, below, found);
            continue;
        }
        for (size_t i = 0; i < json_object_array_length(value); i++)
            gather_element(child, json_object_array_get_idx(value, i), below, found);
    }
}

// What a commit would send, and the lines in which the command's handler tells what it put.
struct observation {
    leaves message;
    std::multiset<std::string> puts;
};

observation observe(const std::string &command)
{
    observation seen;
    log_capture log;
    json_object *const message = walk_tree();
    const cmd_node tree = {"root", 0, nullptr, nullptr, nullptr, nullptr, 0, lib_pkg_root};
    gather(&tree, message, "", seen.message);
    json_object_put(message);
    for (const log_line &line : log.lines())
        if (line.priority == 7 && line.function == "get_" + command && line.text.starts_with("put "))
            seen.puts.insert(line.text);
    return seen;
}

template <typename Set>
std::vector<typename Set::value_type> missing_from(const Set &smaller, const Set &larger)
{
    std::vector<typename Set::value_type> more;
    std::set_difference(larger.begin(), larger.end(), smaller.begin(), smaller.end(), std::back_inserter(more));
    return more;
}

// The place in a message of what a package's table holds, for the instances that `at` chooses.
std::string path_of(const apconf_package &package, const lookup_ctx &at)
{
    if (strcmp(package.name, "root") == 0) return "";
    for (const apconf_package *parent : apconf_packages) {
        for (const cmd_node *node = parent->table; node->name; node++) {
            if (node->children != package.table) continue;
            const std::map<std::string, std::string> instances = {
                {"radio", "radio_id=" + std::to_string(at.radio)},
                {"bss", "wlan_id=" + std::to_string(at.wlan)},
                {"ethernet", "eth_id=" + std::to_string(at.ethernet)},
                {"ftp", "ftp_id=" + std::to_string(at.ftp)},
                {"vlan", "vlan_id=" + std::to_string(11 + at.vlan)},
                {"pool", "pool_name=pool " + std::to_string(at.pool)},
                {"ip_acl", "identify=" + std::to_string(31 + at.ip_acl)}};
            const auto instance = instances.find(node->name);
            const std::string index = instance == instances.end() ? "" : '{' + instance->second + '}';
            return path_of(*parent, at) + node->name + index + '/';
        }
    }
    abort();
}

class changes_test : public store_test
{
protected:
    // Blocks in which the instances that these tests use are entered but hold nothing.
    void start()
    {
        reset_blocks();
        lookup = at;
        root.config.radio[at.radio].bss[at.wlan].state = 5;
        root.config.ethernet[at.ethernet].shutdown_cmd.state = 5;
        auto &ftp = root.config.ftp[at.ftp];
        memset(ftp.timer_cmd.reserved, 0, sizeof ftp.timer_cmd.reserved);
        make_vlans(3);
        make_pools(3);
        make_ip_acls(3);
        for (uint32_t i = 0; i < 3; i++) {
            root.config.vlan.list[i].vlan_id = 11 + i;
            root.config.dhcp_server.pool.list[i].pool_name = text("pool " + std::to_string(i));
            root.config.ip_acl.list[i].identify = 31 + i;
        }
    }

    char *record_of(const apconf_command &command)
    {
        return static_cast<char *>(apconf_scope_record(static_cast<apconf_scope>(command.scope), &root, &lookup));
    }

    lookup_ctx at = {1, 7, 3, 1, 1, 1, 9};
};

// The same of the first instances, of some in the middle and of the last.
class every_instance : public changes_test, public testing::WithParamInterface<lookup_ctx>
{
protected:
    void SetUp() override
    {
        changes_test::SetUp();
        at = GetParam();
    }
};

INSTANTIATE_TEST_SUITE_P(, every_instance,
                         testing::Values(lookup_ctx{0, 0, 0, 0, 0, 0, 0}, lookup_ctx{1, 7, 3, 1, 1, 1, 9},
                                         lookup_ctx{1, 15, 4, 2, 2, 2, 15}));

// What must hold for a field to be reported at all.
void put_in_force(const apconf_command &command, char *record, const apconf_field &field, uint32_t element)
{
    if (field.when != APCONF_WHEN_ALWAYS) select_alternative(command, record, is_alternative(field, true));
    switch (command.variant) {
        case APCONF_ONLY_WHEN_REPLACED:
            set_word(record + command.option, LIST_REPLACED);
            break;
        case APCONF_RESET_ON_DIFFERENCE:
            set_word(record + command.option, CONFIG_NEGATED);
            break;
        case APCONF_COUNTED_ARRAY:
            set_word(record + command.option, element + 1);
            break;
        case APCONF_PACKED_LIST:
            for (uint32_t i = 0; i < element; i++)
                set_sample(field, record + field.offset + size_t{i} * command.array.step);
            break;
        case APCONF_UNSET_MEANS_NO:
            if (&field != command.fields) set_sample(command.fields[0], record + command.fields[0].offset);
            break;
        default:
            break;
    }
}

std::multiset<std::string> expected_puts(const apconf_command &command, const apconf_field &field)
{
    const std::string path = std::string(apconf_scope_prefix(static_cast<apconf_scope>(command.scope))) + field.member;
    switch (field.kind) {
        case APCONF_FIELD_TEXT:
            return {"put string " + path};
        case APCONF_FIELD_OBJECT:
            return {"put object " + path};
        case APCONF_FIELD_VALUES:
        case APCONF_FIELD_LIST: {
            int32_t value = 0;
            convert_ptype_to_value(field.ptype, &value, sample_of(field.ptype).given.c_str(), nullptr);
            const std::string line = std::string("put '") + field.key + "' array '" + std::to_string(value) + "'";
            std::multiset<std::string> lines;
            for (int i = 0; i < (field.kind == APCONF_FIELD_LIST ? 2 : field.count); i++) lines.insert(line);
            return lines;
        }
        default:
            return {std::string("put ") + get_ptype_name(field.ptype) + ' ' + path};
    }
}

// Some elements of a long array stand for all of it.
std::set<uint32_t> tried_elements(const apconf_command &command)
{
    const uint32_t count = elements_of(command);
    std::set<uint32_t> tried = {0, 1, count / 2, count - 1};
    if (count <= 8)
        for (uint32_t i = 0; i < count; i++) tried.insert(i);
    tried.erase(tried.lower_bound(count), tried.end());
    return tried;
}

TEST_P(every_instance, every_field_is_reported_by_its_command_under_its_key_alone)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            if (is_package(command)) continue;
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                for (const uint32_t element : tried_elements(command)) {
                    SCOPED_TRACE(testing::Message()
                                 << package->name << ' ' << command.name << ' ' << field.member << ' ' << element);
                    start();
                    put_in_force(command, record_of(command), field, element);
                    const observation before = observe(command.name);
                    set_sample(field, record_of(command) + field.offset + size_t{element} * command.array.step);
                    const observation after = observe(command.name);

                    const std::string place = path_of(*package, at) + command.name;
                    const auto added = missing_from(before.message, after.message);
                    const auto removed = missing_from(after.message, before.message);
                    if (!field.key) {  // relay_name
                        EXPECT_TRUE(added.empty() && removed.empty());
                        continue;
                    }
                    const leaves::value_type expected{place + '/' + field.key, shown_sample(field)};
                    EXPECT_THAT(added, testing::ElementsAre(expected));
                    if (command.variant == APCONF_COUNTED_ARRAY) {
                        ASSERT_EQ(removed.size(), 1u);
                        EXPECT_EQ(removed[0].first, expected.first);
                        EXPECT_EQ(before.puts, after.puts);
                        continue;
                    }
                    const bool was_negated = command.variant == APCONF_UNSET_MEANS_NO && f == 0;
                    if (was_negated)
                        EXPECT_THAT(removed, testing::ElementsAre(leaves::value_type{place + "/.OPT", "\"no\""}));
                    else
                        EXPECT_THAT(removed, testing::IsEmpty());
                    const auto put = missing_from(before.puts, after.puts);
                    EXPECT_EQ(std::multiset<std::string>(put.begin(), put.end()), expected_puts(command, field));
                }
            }
        }
    }
}

// A value differs when any one of its bytes does.
TEST_F(changes_test, every_byte_of_every_value_counts)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            if (is_package(command)) continue;
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                if (field.kind != APCONF_FIELD_VALUE) continue;
                start();
                put_in_force(command, record_of(command), field, 0);
                const answer before = report(package->name, command.name, &lookup);
                char *const value = record_of(command) + field.offset;
                for (uint32_t i = 0; i < apconf_field_size(&field); i++) {
                    SCOPED_TRACE(testing::Message() << package->name << ' ' << field.member << " byte " << i);
                    value[i] = static_cast<char>(~value[i]);
                    EXPECT_FALSE(report(package->name, command.name, &lookup) == before);
                    value[i] = static_cast<char>(~value[i]);
                }
            }
        }
    }
}

TEST_F(changes_test, a_field_whose_alternative_is_in_force_is_not_reported)
{
    int tried = 0;
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            for (uint32_t f = 0; f < command.field_count; f++) {
                const apconf_field &field = command.fields[f];
                if (field.when != APCONF_WHEN_IP && field.when != APCONF_WHEN_DOMAIN) continue;
                tried++;
                for (const uint32_t selected : {0u, field.when == APCONF_WHEN_IP ? 2u : 1u, 0xFFFFFFFFu}) {
                    SCOPED_TRACE(testing::Message() << command.name << ' ' << field.member << ' ' << selected);
                    start();
                    char *const record = record_of(command);
                    for (uint32_t s = 0; s < command.field_count; s++)
                        if (command.fields[s].ptype == PTYPE_ADDR_TYPE)
                            set_word(record + command.fields[s].offset, selected);
                    const observation before = observe(command.name);
                    set_sample(field, record + field.offset);
                    EXPECT_EQ(observe(command.name).message, before.message);
                }
            }
        }
    }
    EXPECT_EQ(tried, 10);  // ip and domain of five commands
}

TEST_P(every_instance, an_option_word_is_reported_by_its_command_alone)
{
    for (const apconf_package *package : apconf_packages) {
        for (uint32_t c = 0; c < package->command_count; c++) {
            const apconf_command &command = package->commands[c];
            if (is_package(command) || command.option == APCONF_NO_OPTION) continue;
            SCOPED_TRACE(testing::Message() << package->name << ' ' << command.name);
            start();
            const observation before = observe(command.name);
            const bool by_negation = command.variant == APCONF_RESET_ON_DIFFERENCE;
            set_word(record_of(command) + command.option, by_negation ? CONFIG_NEGATED : LIST_REPLACED);
            const auto added = missing_from(before.message, observe(command.name).message);
            const std::string place = path_of(*package, at) + command.name;
            if (command.variant == APCONF_FLAG) {
                EXPECT_THAT(added, testing::ElementsAre(leaves::value_type{place, "{}"}));
            } else if (command.variant == APCONF_COUNTED_ARRAY) {
                EXPECT_EQ(added.size(), 9u);
                for (const auto &each : added) EXPECT_TRUE(each.first.starts_with(place + '/')) << each.first;
            } else {
                EXPECT_THAT(added, testing::ElementsAre(leaves::value_type{place + "/.OPT", "\"noall\""}));
            }
        }
    }
}

TEST_F(changes_test, what_has_no_key_is_never_reported)
{
    start();
    const observation before = observe("");
    root.config.lan_igmp_snoop_cmd.status = 1;
    root.config.log_level_cmd[3].reserved = 1;
    root.config.log_server_cmd[19].reserved = 1;
    root.config.vlan.list[1].dhcp_cmd.relay_name = text("relay");
    root.config.radio[1].reserved = 1;
    memset(root.config.radio[1].bss[7].reserved, 1, 3);
    EXPECT_EQ(observe("").message, before.message);
}

TEST_F(changes_test, an_untouched_block_yields_an_empty_message)
{
    EXPECT_EQ(walk_tree_text(), "{}");
}

TEST_F(changes_test, a_bss_that_is_entered_reports_the_unconditional_nodes_only)
{
    root.config.radio[1].bss[7].state = 5;
    const std::string no = R"({".OPT":"no"})", noall = R"({".OPT":"noall"})";
    EXPECT_EQ(walk_tree_text(),
              R"({"config":{"radio":{"INDEX":{"radio_id":"1"},"bss":{"INDEX":{"wlan_id":"7"},"passpoint_ie":{)"
              R"("interworking_cmd":)" +
                  no + R"(,"roaming_consortium_cmd":)" + noall + R"(,"access_network_type_cmd":)" + no +
                  R"(,"internet_cmd":)" + no + R"(,"asra_cmd":)" + no + R"(,"dgaf_block_cmd":)" + no +
                  R"(,"hessid_cmd":)" + no + R"(,"pame_bi_cmd":)" + no + R"(,"p2p_cross_connect_cmd":)" + no +
                  R"(,"p2p_dev_mgmt_cmd":)" + no + R"(,"venue_info_cmd":)" + no +
                  R"(},"passpoint_anqp":{"venue_name_cmd":)" + noall + R"(,"network_auth_cmd":)" + noall +
                  R"(,"ip_address_availability_cmd":)" + no + R"(,"cellular_cmd":)" + noall + R"(,"domain_name_cmd":)" +
                  noall + R"(,"nai_realm_cmd":)" + noall + R"(,"friendly_name_cmd":)" + noall +
                  R"(,"wan_metrics_cmd":)" + no + R"(,"oper_class_cmd":)" + no + "}}}}}");
}

}  // namespace
}  // namespace apconf_test
