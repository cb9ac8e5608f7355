// The law of the round trip, with the programs as they ship: what a client sets through the socket of one server, what
// a store owner commits and another server applies, and what a third server finds when it starts from what the second
// has saved is the same configuration, byte for byte.
//
// Everything is drawn at random. A failure prints the seed; APCONF_LAW_SEED=N draws the same again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <set>

#include "host/missing.h"
#include "law/machine.h"
#include "law/scenario.h"

namespace
{

using namespace apconf_test;
using apconf_host::json_ptr;
using testing::HasSubstr;

uint64_t seed_of_this_run()
{
    static const uint64_t seed = [] {
        const char *given = getenv("APCONF_LAW_SEED");
        return given ? strtoull(given, nullptr, 10) : std::random_device()();
    }();
    return seed;
}

std::string text_of(const json_ptr &value)
{
    return json_object_to_json_string_ext(value.get(), JSON_C_TO_STRING_PLAIN);
}

std::string list_of(const change_list &changes)
{
    std::string text;
    for (const change &change : changes) text += "\n  " + to_text(change);
    return text;
}

class law : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        load_vocabulary();
        direct = std::make_unique<machine>("direct");
        queued = std::make_unique<machine>("queued");
        saved = std::make_unique<machine>("saved");
        direct->start();
        queued->start();
    }
    static void TearDownTestSuite()
    {
        direct.reset();
        queued.reset();
        saved.reset();
    }

    // Nothing is set: on the running servers by one removal, or, where that leaves a mark, on new ones.
    static void empty(const std::string &child)
    {
        for (machine *each : {direct.get(), queued.get()}) {
            if (!child.empty()) each->send("no", "/config/" + child, nullptr);
            if (!child.empty() && each->running_configuration() == "{}") continue;
            each->clear();
            each->start();
            ASSERT_EQ(each->running_configuration(), "{}");
        }
        direct->take_logged_refusals();
        queued->take_logged_refusals();
    }

    // By a client, one change after the other.
    static void set_directly(const change_list &changes)
    {
        for (const change &change : changes) direct->send(change.action(), change.path(), change.param().get());
        direct->running_configuration();  // its answer comes when all is done
        const std::string refusals = direct->take_logged_refusals();
        ASSERT_EQ(refusals, "");
    }

    // Likewise, and each change shows at once.
    static void set_and_see(const change_list &changes)
    {
        json_ptr before(json_tokener_parse(direct->running_configuration().c_str()));
        for (const change &change : changes) {
            direct->send(change.action(), change.path(), change.param().get());
            json_ptr after(json_tokener_parse(direct->running_configuration().c_str()));
            json_object *const config = apconf_host::member(after.get(), "config");
            if (change.what == deed::set)
                ASSERT_EQ(missing(config, change.in_a_tree().get()), "") << "after " << to_text(change) << "\n"
                                                                         << direct->take_logged_refusals();
            else if (change.arguments)
                ASSERT_EQ(elements_in(config, change.way),
                          elements_in(apconf_host::member(before.get(), "config"), change.way, change.arguments.get()))
                    << "after " << to_text(change);
            else
                ASSERT_TRUE(is_unset(place_in(config, change.way))) << "still there after " << to_text(change);
            before = std::move(after);
        }
        const std::string refusals = direct->take_logged_refusals();
        ASSERT_EQ(refusals, "");
    }

    // The elements of a list, but those that hold all that `removed` says.
    static std::vector<std::string> elements_in(json_object *config, const route &way, json_object *removed = nullptr)
    {
        std::vector<std::string> elements;
        int cursor = 0;
        while (json_object *element = get_json_obj(place_in(config, way), &cursor))
            if (!apconf_host::member(element, ".OPT") && (!removed || !missing(element, removed).empty()))
                elements.push_back(json_object_to_json_string(element));
        return elements;
    }

    // By a store owner, as one batch.
    static void commit(const json_ptr &batch, int &ret_index)
    {
        const finished_process commit = queued->commit(text_of(batch));
        ASSERT_EQ(commit.status, 0) << commit.errors;
        ret_index = atoi(commit.output.c_str());
        ASSERT_TRUE(queued->wait_until_applied(ret_index)) << "message " << ret_index << " is not applied";
        ASSERT_EQ(queued->refusals(ret_index), "");
    }

    // What the first server has been told is what a batch tells the second. A third starts from what the second saves;
    // the test goes on meanwhile.
    static void check(const json_ptr &batch)
    {
        const std::string configuration = direct->running_configuration();
        int index = 0;
        ASSERT_NO_FATAL_FAILURE(commit(batch, index));
        ASSERT_EQ(queued->running_configuration(), configuration) << "the batch is not what was set";
        saved->clear();
        saved->install_start_configuration(queued->saved_configuration(index));
        saved->start();
        to_be_restored = configuration;
    }

    static void check_restored()
    {
        ASSERT_TRUE(saved->wait_until_applied(1));
        EXPECT_EQ(saved->refusals(1), "");
        EXPECT_EQ(saved->running_configuration(), to_be_restored) << "what was saved is not what was running";
    }

    // Of the BSS that `way` passes through, the commands that a report of it resets.
    static std::vector<route> reset_with_bss(const route &way)
    {
        const auto bss =
            std::find_if(way.begin(), way.end(), [](const stop &stop) { return stop.node->children == lib_pkg_bss; });
        if (bss == way.end() || bss->index.empty()) return {};
        std::vector<route> resets;
        for (const cmd_node *package = lib_pkg_bss; package->name; ++package)
            for (const cmd_node *node = package->children; node && node->name; ++node) {
                if (!is_reset_with_its_bss(*apconf_find_command(node))) continue;
                resets.emplace_back(way.begin(), bss + 1);
                resets.back().push_back({package, ""});
                resets.back().push_back({node, ""});
            }
        return resets;
    }

    // A batch carries some lists in full, and with a BSS it resets what it does not set of Passpoint.
    static void make_room_for(const change_list &changes)
    {
        std::set<std::string> kept;
        for (const change &change : changes)
            if (!is_list(*apconf_find_command(change.way.back().node))) kept.insert(to_text(change.way));
        const auto clear = [&kept](const route &way) {
            if (!kept.insert(to_text(way)).second) return;
            const change all{way, deed::noall, nullptr};
            direct->send(all.action(), all.path(), all.param().get());
        };
        for (const change &change : changes) {
            if (is_replaced_whole(*apconf_find_command(change.way.back().node))) clear(change.way);
            for (const route &way : reset_with_bss(change.way)) clear(way);
        }
    }

    // Likewise where something is set already.
    static void check_on_top(const json_ptr &batch)
    {
        const std::string configuration = direct->running_configuration();
        int index = 0;
        ASSERT_NO_FATAL_FAILURE(commit(batch, index));
        ASSERT_EQ(queued->running_configuration(), configuration) << "the second batch is not what was set";
    }

    static void check_coming_back()
    {
        const std::string configuration = queued->running_configuration();
        queued->kill();
        queued->start();
        ASSERT_EQ(queued->running_configuration(), configuration);
    }

    static std::unique_ptr<machine> direct;  // clients set
    static std::unique_ptr<machine> queued;  // applies what a store owner commits
    static std::unique_ptr<machine> saved;   // starts from what `queued` has saved
    static std::string to_be_restored;       // by `saved`
};

std::unique_ptr<machine> law::direct;
std::unique_ptr<machine> law::queued;
std::unique_ptr<machine> law::saved;
std::string law::to_be_restored;

class one_command : public law, public testing::WithParamInterface<const cmd_node *>
{
};

std::vector<const cmd_node *> all_records()
{
    std::vector<const cmd_node *> records;
    for (const apconf_package *package : apconf_packages)
        for (const cmd_node *node = package->table; node->name; ++node)
            if (apconf_find_command(node)->variant != APCONF_NEVER_REPORTED) records.push_back(node);
    return records;
}

// Under an emulator, where each process takes its time, a run tries every fourth record; the seed says which.
std::vector<const cmd_node *> records_of_this_run()
{
    std::vector<const cmd_node *> records = all_records();
#ifdef APCONF_EMULATED
    std::erase_if(records, [number = seed_of_this_run()](const cmd_node *) mutable { return ++number % 4 != 0; });
#endif
    return records;
}

TEST_P(one_command, is_the_same_set_committed_and_restored)
{
    const cmd_node &node = *GetParam();
    const route way = route_to(node);
    const uint64_t seed = seed_of_this_run();
    SCOPED_TRACE("APCONF_LAW_SEED=" + std::to_string(seed));
    scenario scenario(node, seed ^ std::hash<std::string>()(to_text(way)));
    ASSERT_NO_FATAL_FAILURE(empty(way.size() > 1 ? way[1].node->name : ""));
    {
        const change_list changes = scenario.from_nothing();
        SCOPED_TRACE(list_of(changes));
        ASSERT_NO_FATAL_FAILURE(set_and_see(changes));
        ASSERT_NO_FATAL_FAILURE(check(batch_of(changes)));
    }
    if (const change_list changes = scenario.on_top(); !changes.empty()) {
        SCOPED_TRACE("on top of it" + list_of(changes));
        make_room_for(changes);
        ASSERT_NO_FATAL_FAILURE(set_and_see(changes));
        ASSERT_NO_FATAL_FAILURE(check_on_top(batch_of(changes)));
    }
    check_restored();
    if (scenario.chance(25)) check_coming_back();
    // What no batch can say can be said to the server itself.
    const change_list removals = scenario.that_no_batch_carries();
    SCOPED_TRACE(list_of(removals));
    set_and_see(removals);
}

std::string name_of(const testing::TestParamInfo<const cmd_node *> &info)
{
    std::string name;
    for (const char c : to_text(route_to(*info.param))) name += c == '/' ? '_' : c;
    return name;
}

INSTANTIATE_TEST_SUITE_P(, one_command, testing::ValuesIn(records_of_this_run()), name_of);

class everything : public law, public testing::WithParamInterface<int>
{
};

TEST_P(everything, is_the_same_set_committed_and_restored)
{
    const uint64_t seed = seed_of_this_run() + static_cast<uint64_t>(GetParam());
    SCOPED_TRACE("APCONF_LAW_SEED=" + std::to_string(seed) + " --gtest_filter=*everything*/0");
    ASSERT_NO_FATAL_FAILURE(empty(""));
    random_message all(seed, 100);
    const json_ptr asked = all.make();
    const route config = {{&lib_pkg_root[0], ""}};
    ASSERT_NO_FATAL_FAILURE(set_directly(changes_of(apconf_host::member(asked.get(), "config"), config)));
    const json_ptr report(json_tokener_parse(direct->running_configuration().c_str()));
    EXPECT_EQ(missing(apconf_host::member(report.get(), "config"), apconf_host::member(asked.get(), "config")), "");
    ASSERT_NO_FATAL_FAILURE(check(asked));

    random_message some(seed, 40);
    const change_list changes = that_surely_fit(changes_of(apconf_host::member(some.make().get(), "config"), config));
    make_room_for(changes);
    ASSERT_NO_FATAL_FAILURE(set_directly(changes));
    ASSERT_NO_FATAL_FAILURE(check_on_top(batch_of(changes)));
    check_restored();
    check_coming_back();
}

INSTANTIATE_TEST_SUITE_P(, everything, testing::Range(0, 3));

TEST_F(law, the_start_configuration_is_the_same_set_committed_and_restored)
{
    ASSERT_NO_FATAL_FAILURE(empty(""));
    const json_ptr start(json_object_from_file(APCONF_SOURCE_DIR "/etc/start_config.json"));
    json_object *const config = apconf_host::member(start.get(), "config");
    ASSERT_NO_FATAL_FAILURE(set_directly(changes_of(config, {{&lib_pkg_root[0], ""}})));
    const json_ptr report(json_tokener_parse(direct->running_configuration().c_str()));
    EXPECT_EQ(missing(apconf_host::member(report.get(), "config"), config), "");
    ASSERT_NO_FATAL_FAILURE(check(start));
    check_restored();
}

// Alone it stands in no answer; it is there all the same.
TEST_F(law, a_single_element_in_which_nothing_is_set_survives_the_server)
{
    ASSERT_NO_FATAL_FAILURE(empty(""));
    direct->send("set", "/config/vlan", json_ptr(json_tokener_parse(R"({"vlan_id":"7"})")).get());
    EXPECT_EQ(direct->running_configuration(), "{}");
    direct->kill();
    direct->start();
    direct->send("set", "/config/vlan/dhcp_cmd",
                 json_ptr(json_tokener_parse(R"({"vlan_id":"8","type":"relay"})")).get());
    EXPECT_EQ(
        direct->running_configuration(),
        R"({"config":{"vlan":[{"INDEX":{"vlan_id":"7"}},{"INDEX":{"vlan_id":"8"},"dhcp_cmd":{"type":"relay"}}]}})");
}

TEST_F(law, what_no_batch_can_say_is_refused_command_by_command)
{
    json_ptr batch(json_object_new_object());
    change_list all;
    std::vector<testing::Matcher<std::string>> lines;
    for (const cmd_node *node : all_records()) {
        scenario scenario(*node, seed_of_this_run());
        change_list removals = scenario.that_no_batch_carries();
        for (change &each : removals) {
            if (node->children) each.way.back().index = "";
            lines.push_back(HasSubstr(to_text(each.way) + ": 'no' refused: "));
            all.push_back(std::move(each));
        }
    }
    const int next = queued->next_index();
    const finished_process refused = queued->commit(text_of(batch_of(all)));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(queued->next_index(), next);
    std::istringstream errors(refused.errors);
    std::vector<std::string> said;
    for (std::string line; std::getline(errors, line);) said.push_back(line);
    EXPECT_THAT(said, testing::ElementsAreArray(lines));
}

TEST_F(law, a_command_that_is_never_reported_is_the_same_everywhere)
{
    ASSERT_NO_FATAL_FAILURE(empty(""));
    direct->send("set", "/config/lan_igmp_snoop_cmd", nullptr);
    EXPECT_EQ(direct->running_configuration(), "{}");
    const finished_process commit = queued->commit(R"({"config":{"lan_igmp_snoop_cmd":{}}})");
    EXPECT_EQ(commit.status, 1);
    EXPECT_EQ(commit.errors, "apconf: -: the batch changes nothing\n");
}

}  // namespace
