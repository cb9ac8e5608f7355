// What is set, committed, queued and applied arrives whole: the server reports exactly what the batch said, and what a
// server reports makes another server report the same.
#include <algorithm>

#include "host/host_test.h"
#include "host/missing.h"
#include "host/random_message.h"

namespace
{

using apconf_host::json_ptr;
using apconf_host::outcome;
using apconf_host::role;
using apconf_test::missing;
using apconf_test::text_of;

std::vector<std::string> lines(const outcome &outcome)
{
    std::vector<std::string> result;
    for (const auto &refusal : outcome.refusals) result.push_back(to_text(refusal));
    return result;
}

outcome applied(json_object *message, role as)
{
    outcome outcome;
    outcome.as = as;
    EXPECT_TRUE(apconf_host::apply_message(message, outcome));
    EXPECT_THAT(lines(outcome), testing::IsEmpty());
    return outcome;
}

class law : public apconf_test::host_test, public testing::WithParamInterface<unsigned>
{
protected:
    // Commits what is in `root` and takes the message off the queue, without its header.
    json_ptr committed()
    {
        apconf_host::commit_batch();
        EXPECT_EQ(memcmp(&root, &mirror_root, sizeof root), 0);
        int index = 0;
        json_ptr message(cmq_fetch_a_message(&index));
        EXPECT_TRUE(message);
        EXPECT_EQ(index, apconf_committed_index());
        return message;
    }

    static void strip_header(json_object *message)
    {
        json_object_object_del(message, "MODULE");
        json_object_object_del(message, "ACTION");
    }

    void check(json_object *asked)
    {
        applied(asked, role::batch);
        const json_ptr message = committed();
        applied(message.get(), role::server);
        strip_header(message.get());
        const std::string said = text_of(message.get());
        ASSERT_EQ(running(), said);

        apconf_host::release_configuration();
        applied(message.get(), role::server);
        ASSERT_EQ(running(), said) << "a server's report does not reproduce itself";
        // Applying it once more changes nothing either.
        applied(message.get(), role::server);
        ASSERT_EQ(running(), said) << "a report applied twice is not the report";
    }
};

TEST_P(law, batch_and_server_and_a_second_server_report_the_same)
{
    apconf_test::random_message random(GetParam(), 15 + GetParam() * 13 % 70);
    const json_ptr asked = random.make();
    check(asked.get());
}

INSTANTIATE_TEST_SUITE_P(seeds, law, testing::Range(1U, 41U));

TEST_F(law, every_command_with_every_key_arrives)
{
    std::set<const cmd_node *> made;
    for (unsigned seed = 100; seed < 110; ++seed) {
        apconf_test::random_message random(seed, 100);
        const json_ptr asked = random.make();
        check(asked.get());
        json_object_object_del(asked.get(), "ACTION");
        const json_ptr report(apconf_host::running_configuration());
        ASSERT_EQ(missing(report.get(), asked.get()), "") << "seed " << seed;
        apconf_host::release_configuration();
        made.insert(random.made().begin(), random.made().end());
    }
    // All but the packages and the one command that never reports.
    EXPECT_EQ(made.size(), APCONF_RECORD_COUNT - 36U - 1U);
}

TEST_F(law, start_configuration_is_accepted_whole)
{
    const json_ptr start(json_object_from_file(APCONF_SOURCE_DIR "/etc/start_config.json"));
    ASSERT_TRUE(start);
    check(start.get());
    strip_header(start.get());
    const json_ptr report(apconf_host::running_configuration());
    EXPECT_EQ(missing(report.get(), start.get()), "");
}

TEST_F(law, nothing_set_is_an_empty_report)
{
    EXPECT_EQ(running(), "{}");
    const json_ptr message = committed();
    applied(message.get(), role::server);
    EXPECT_EQ(running(), "{}");
}

}  // namespace
