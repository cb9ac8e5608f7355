// A device with nothing but the start configuration: all of it is taken, and what runs is what it says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/handlers.h"
#include "host/json.h"
#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;
using apconf_host::json_ptr;
using apconf_host::member;

// A copy without the marks that reports put before lists and in place of unset Passpoint settings, without packages in
// which nothing is set, and with lists of one element as that element.
json_ptr plain(json_object *value)
{
    if (json_object_is_type(value, json_type_array)) {
        json_ptr list(json_object_new_array());
        for (size_t i = 0; i < json_object_array_length(value); ++i)
            if (json_ptr element = plain(json_object_array_get_idx(value, i)))
                json_object_array_add(list.get(), element.release());
        if (json_object_array_length(list.get()) == 0) return nullptr;
        if (json_object_array_length(list.get()) > 1) return list;
        return json_ptr(json_object_get(json_object_array_get_idx(list.get(), 0)));
    }
    if (!json_object_is_type(value, json_type_object)) return json_ptr(json_object_get(value));
    json_ptr object(json_object_new_object());
    json_object_object_foreach(value, key, inside)
    {
        // The switches that are on because "no shutdown" was given stay.
        const bool mark = apconf_host::shown(member(inside, ".OPT")) != "null" && std::string(key) != "shutdown_cmd";
        json_ptr kept = mark ? nullptr : plain(inside);
        if (kept) json_object_object_add(object.get(), key, kept.release());
    }
    return json_object_object_length(object.get()) > 0 || json_object_object_length(value) == 0 ? std::move(object)
                                                                                                : nullptr;
}

class StartConfiguration : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        entries();
        apconf_host::install_handlers();
        init_cmd_tree_data();
    }
    void TearDown() override { apconf_host::release_configuration(); }

    static json_ptr start() { return json_ptr(json_object_from_file(start_path)); }

    static unsigned apply(json_object *message)
    {
        apconf_host::outcome outcome;
        EXPECT_TRUE(apconf_host::apply_message(message, outcome));
        for (const auto &refusal : outcome.refusals) ADD_FAILURE() << to_text(refusal);
        return outcome.changes;
    }
};

TEST_F(StartConfiguration, IsTakenWholeAndRuns)
{
    const json_ptr message = start();
    ASSERT_TRUE(message);
    EXPECT_GT(apply(message.get()), 60U);
    const json_ptr running(apconf_host::running_configuration());
    const json_ptr asked = plain(member(message.get(), "config"));
    const json_ptr got = plain(member(running.get(), "config"));
    EXPECT_TRUE(json_object_equal(asked.get(), got.get())) << json_object_to_json_string(asked.get()) << "\n"
                                                           << json_object_to_json_string(got.get());
}

TEST_F(StartConfiguration, AppliedOnceMoreChangesNothing)
{
    const json_ptr message = start();
    apply(message.get());
    EXPECT_EQ(apply(message.get()), 0U);
}

TEST_F(StartConfiguration, ReportReproducesItself)
{
    apply(start().get());
    const json_ptr first(apconf_host::running_configuration());
    json_object_object_add(first.get(), "ACTION", json_object_new_string("set"));
    apconf_host::release_configuration();
    apply(first.get());
    const json_ptr second(apconf_host::running_configuration());
    EXPECT_TRUE(json_object_equal(member(first.get(), "config"), member(second.get(), "config")));
}

TEST_F(StartConfiguration, PutsTwoRadiosOnTheAirProtected)
{
    apply(start().get());
    for (const radio_config &radio : root.config.radio) {
        EXPECT_EQ(radio.shutdown_cmd.state, CONFIG_NEGATED);
        EXPECT_EQ(radio.bss[0].shutdown_cmd.state, CONFIG_NEGATED);
        EXPECT_TRUE(radio.bss[0].ssid_cmd.ssid);
        EXPECT_EQ(radio.bss[0].auth_type_cmd.type, 7U) << "wpa2-wpa3";
        EXPECT_TRUE(radio.bss[0].auth_wpa2_wpa3.wpa_type_cmd.key);
        EXPECT_EQ(radio.bss[0].mfp_mode_cmd.mode, 1U) << "WPA3 needs protected management frames";
    }
    EXPECT_LT(root.config.radio[0].channel_cmd.channel, 14U) << "2.4 GHz";
    EXPECT_GE(root.config.radio[1].channel_cmd.channel, 36U) << "5 GHz";
}

}  // namespace
