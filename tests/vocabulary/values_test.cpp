// What the tree file says of values holds: choices are tokens of their type, limits and defaults are values of theirs,
// and none is the one that the data block keeps for "not set".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "host/expectation.h"
#include "vocabulary/tree_file.h"

namespace
{

using namespace apconf_test;

struct free_range {
    void operator()(void *range) const { free(range); }
};

void for_each_parameter(const std::function<void(const entry &, const xmlNode *, uint32_t)> &check)
{
    for (const entry &entry : described())
        for (const xmlNode *param : parameters(entry.line)) {
            SCOPED_TRACE(entry.path + " " + attribute(param, "name"));
            check(entry, param, static_cast<uint32_t>(get_ptype_by_name(attribute(param, "ptype").c_str())));
        }
}

bool stands_behind_comment(const xmlNode *element)
{
    return element->prev && element->prev->type == XML_COMMENT_NODE;
}

TEST(Values, ChoicesAreAllTokensOfTheirTypeOrACommentSaysWhyNot)
{
    for_each_parameter([](const entry &, const xmlNode *param, uint32_t ptype) {
        if (!has_option(param, PARAM_OPTION_LIST)) return;
        std::vector<std::string> offered;
        for (const xmlNode *choice : elements_below(param)) offered.push_back(attribute(choice, "name"));
        const auto tokens = apconf_host::tokens_of(ptype);
        if (stands_behind_comment(param)) {
            EXPECT_THAT(tokens, testing::IsSupersetOf(offered));
            EXPECT_LT(offered.size(), tokens.size()) << "nothing is left out, but a comment says so";
        } else {
            EXPECT_THAT(offered, testing::UnorderedElementsAreArray(tokens));
        }
    });
}

TEST(Values, Wpa3HasNoTkip)
{
    for (const entry &entry : described()) {
        if (entry.path.find("wpa3") == std::string::npos || entry.is_package()) continue;
        for (const xmlNode *param : parameters(entry.line))
            for (const xmlNode *choice : elements_below(param))
                EXPECT_EQ(attribute(choice, "name").find("tkip"), std::string::npos) << entry.path;
    }
}

bool is_number(uint32_t ptype)
{
    return ptype == PTYPE_SINT || ptype == PTYPE_UINT8 || ptype == PTYPE_UINT16 || ptype == PTYPE_UINT ||
           ptype == PTYPE_UINT64;
}

TEST(Values, NumbersAndTextsHaveBothLimits)
{
    for_each_parameter([](const entry &, const xmlNode *param, uint32_t ptype) {
        const bool limited = is_number(ptype) || ptype == PTYPE_STRING || ptype == PTYPE_HEX_STR;
        EXPECT_EQ(has_attribute(param, "min"), limited);
        EXPECT_EQ(has_attribute(param, "max"), limited);
    });
}

TEST(Values, LimitsAreValuesOfTheirType)
{
    for_each_parameter([](const entry &entry, const xmlNode *param, uint32_t ptype) {
        if (!is_number(ptype)) return;
        for (const char *limit : {"min", "max"}) {
            const std::string text = attribute(param, limit);
            alignas(8) char value[8] = {};
            char back[64] = "";
            ASSERT_EQ(convert_ptype_to_value(ptype, value, text.c_str(), nullptr), 0) << text;
            ASSERT_EQ(convert_ptype_to_string(ptype, value, back, sizeof back), 0);
            EXPECT_EQ(back, text) << "it does not fit";
            const std::string unset(static_cast<size_t>(get_ptype_size(ptype)), '\xFF');
            // The entries of a counted array are told by their number; all values can be stored.
            const bool marks = entry.command->variant != APCONF_COUNTED_ARRAY;
            EXPECT_FALSE(marks && std::string(value, unset.size()) == unset) << text << " means \"not set\"";
        }
        EXPECT_LE(std::stold(attribute(param, "min")), std::stold(attribute(param, "max")));
    });
}

TEST(Values, LengthsOfTextsAreInOrder)
{
    for_each_parameter([](const entry &, const xmlNode *param, uint32_t ptype) {
        if (ptype != PTYPE_STRING && ptype != PTYPE_HEX_STR) return;
        EXPECT_LE(1, std::stoi(attribute(param, "min")));
        EXPECT_LE(std::stoi(attribute(param, "min")), std::stoi(attribute(param, "max")));
    });
}

TEST(Values, DefaultsAreWithinTheirLimits)
{
    for_each_parameter([](const entry &, const xmlNode *param, uint32_t ptype) {
        if (!has_attribute(param, "default")) return;
        const std::string text = attribute(param, "default");
        const std::unique_ptr<void, free_range> range(
            convert_ptype_range(ptype, has_attribute(param, "min") ? attribute(param, "min").c_str() : nullptr,
                                has_attribute(param, "max") ? attribute(param, "max").c_str() : nullptr));
        EXPECT_EQ(convert_ptype_to_value(ptype, nullptr, text.c_str(), range.get()), 0) << text;
        if (!has_option(param, PARAM_OPTION_LIST)) return;
        const auto choices = elements_below(param);
        EXPECT_TRUE(std::any_of(choices.begin(), choices.end(),
                                [&](const xmlNode *choice) { return attribute(choice, "name") == text; }))
            << text << " is not among the choices";
    });
}

TEST(Values, SourcesAreStandards)
{
    const auto is_standard = testing::ContainsRegex(
        "^(IEEE 802\\.[0-9A-Za-z]+-[0-9]{4}, .+|RFC [0-9]+, [0-9.]+.*|ISO [0-9-]+|ITU-T [A-Z]\\.[0-9]+|"
        "Hotspot 2\\.0 Technical Specification, .+|Wi-Fi Peer-to-Peer Technical Specification, .+)$");
    int named = 0;
    const auto check = [&](const xmlNode *element) {
        if (!has_attribute(element, "source")) return;
        ++named;
        EXPECT_THAT(attribute(element, "source"), is_standard);
    };
    for (const entry &entry : described()) check(entry.line);
    for_each_parameter([&](const entry &, const xmlNode *param, uint32_t) { check(param); });
    EXPECT_GT(named, 100);
}

}  // namespace
