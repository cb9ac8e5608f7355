// The enumerated types: every token table, both ways, in any case, and what is logged for what no table holds.
#include <cctype>
#include <map>
#include <set>
#include <sstream>

#include "ptype/converters.h"
#include "ptype/vocabulary.h"

namespace
{

using namespace apconf_test;
using testing::ElementsAre;
using testing::IsEmpty;

struct enum_type {
    int number;
    std::string name;
    const enum_pair *pairs;
    size_t declared_count;
    size_t count;
    ptype_to_value_fn *to_ptype;
    ptype_to_string_fn *to_string;
};

const std::vector<enum_type> &enum_types()
{
    static const std::vector<enum_type> types = {
#define ENUM_TYPE(number, NAME, count) \
    {number, #NAME, NAME##_pairs, count, std::size(NAME##_pairs), NAME##_to_ptype, NAME##_to_string},
        APCONF_ENUM_PTYPES(ENUM_TYPE)
#undef ENUM_TYPE
    };
    return types;
}

std::vector<std::pair<int32_t, std::string>> listed_pairs(const char *pairs)
{
    std::vector<std::pair<int32_t, std::string>> result;
    std::istringstream words(pairs);
    int32_t id;
    std::string token;
    while (words >> id >> token) result.emplace_back(id, token);
    return result;
}

template <typename Change>
std::string changed(std::string text, Change change)
{
    for (char &character : text) character = static_cast<char>(change(static_cast<unsigned char>(character)));
    return text;
}

TEST(Tokens, TablesHoldTheVocabularyInItsOrder)
{
    ASSERT_EQ(enum_types().size(), 68u);
    ASSERT_EQ(std::size(all_tokens), 68u);
    for (size_t i = 0; i < enum_types().size(); ++i) {
        const auto &type = enum_types()[i];
        ASSERT_EQ(type.number, all_tokens[i].number);
        ASSERT_EQ(type.name, all_tokens[i].name);
        const auto expected = listed_pairs(all_tokens[i].pairs);
        ASSERT_EQ(type.count, expected.size()) << type.name;
        ASSERT_EQ(type.count, type.declared_count) << type.name;
        for (size_t k = 0; k < type.count; ++k) {
            EXPECT_EQ(type.pairs[k].id, expected[k].first) << type.name;
            EXPECT_EQ(type.pairs[k].token, expected[k].second) << type.name;
        }
    }
}

TEST(Tokens, NoTableHoldsAnIdOrATokenTwice)
{
    for (const auto &type : enum_types()) {
        std::set<int32_t> ids;
        std::set<std::string> tokens;
        for (size_t k = 0; k < type.count; ++k) {
            EXPECT_TRUE(ids.insert(type.pairs[k].id).second) << type.name << " " << type.pairs[k].id;
            EXPECT_TRUE(tokens.insert(changed(type.pairs[k].token, tolower)).second) << type.name;
            EXPECT_GE(type.pairs[k].id, 0) << type.name;
        }
    }
}

TEST(Tokens, EveryTokenConvertsInAnyCaseAndIsPrintedAsListed)
{
    log_capture log;
    for (const auto &type : enum_types()) {
        for (size_t k = 0; k < type.count; ++k) {
            const auto [id, token] = type.pairs[k];
            for (const auto &text : {std::string(token), changed(token, tolower), changed(token, toupper)})
                EXPECT_EQ(to_value<int32_t>(type.to_ptype, text.c_str()), id) << type.name << " " << text;
            EXPECT_EQ(to_text(type.to_string, id), token) << type.name;
            EXPECT_EQ(type.to_ptype(token, nullptr, nullptr), 0) << type.name;
        }
    }
    EXPECT_THAT(take_lines(log), IsEmpty());
}

TEST(Tokens, UnknownTextsAreLoggedByTheFunctionOfTheType)
{
    log_capture log;
    for (const auto &type : enum_types()) {
        for (const std::string &text :
             {std::string("unheard-of"), std::string(), std::string(type.pairs[0].token) + " ",
              " " + std::string(type.pairs[0].token)}) {
            EXPECT_EQ(to_value<int32_t>(type.to_ptype, text.c_str()), std::nullopt) << type.name;
            EXPECT_THAT(take_lines(log),
                        ElementsAre(error_line(type.name + "_to_ptype", "not support enum value '" + text + "'")));
        }
        EXPECT_EQ(type.to_ptype("unheard-of", nullptr, nullptr), -1);
        EXPECT_EQ(take_lines(log).size(), 1u);
    }
}

TEST(Tokens, UnknownIdsAreLoggedByTheFunctionOfTheType)
{
    log_capture log;
    for (const auto &type : enum_types()) {
        if (type.number == PTYPE_STATUS) continue;
        for (const int32_t id : {-1, 99999, INT32_MIN, INT32_MAX}) {
            const printed output = print(type.to_string, id);
            EXPECT_EQ(output.result, -1) << type.name;
            EXPECT_FALSE(output.written) << type.name;
            EXPECT_THAT(take_lines(log), ElementsAre(error_line(type.name + "_to_string",
                                                                "not support enum id '" + std::to_string(id) + "'")));
        }
    }
}

TEST(Tokens, NoRangeIsLookedAt)
{
    const sint_range nothing_fits = {5, 4};
    const int32_t id = 1;
    EXPECT_EQ(to_value<int32_t>(BOOLEAN_to_ptype, "true", &nothing_fits), 1);
    EXPECT_EQ(print(BOOLEAN_to_string, id, 64, &nothing_fits).text, "true");
}

TEST(Tokens, StatusAloneTakesEveryNonZeroValueForEnable)
{
    log_capture log;
    EXPECT_EQ(to_text(STATUS_to_string, int32_t{0}), "disable");
    for (const int32_t value : {1, 2, 7, -1, INT32_MIN, INT32_MAX})
        EXPECT_EQ(to_text(STATUS_to_string, value), "enable");
    EXPECT_EQ(to_value<int32_t>(STATUS_to_ptype, "Disable"), 0);
    EXPECT_EQ(to_value<int32_t>(STATUS_to_ptype, "ENABLE"), 1);
    EXPECT_THAT(take_lines(log), IsEmpty());
    const int32_t two = 2;
    EXPECT_EQ(print(BOOLEAN_to_string, two).result, -1);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line("BOOLEAN_to_string", "not support enum id '2'")));
}

TEST(Tokens, ChannelFourteenIsNoChannel)
{
    log_capture log;
    EXPECT_EQ(to_value<int32_t>(CHANNEL_to_ptype, "14"), std::nullopt);
    EXPECT_THAT(take_lines(log), ElementsAre(error_line("CHANNEL_to_ptype", "not support enum value '14'")));
    EXPECT_EQ(to_value<int32_t>(CHANNEL_to_ptype, "165"), 165);
}

TEST(Tokens, RatesAndCountriesHaveTheIdsOfTheirConventions)
{
    EXPECT_EQ(to_text(MIN_RATE_to_string, int32_t{32775}), "mcs7");
    EXPECT_EQ(print(MIN_RATE_to_string, int32_t{3}).result, -1);
    EXPECT_EQ(to_value<int32_t>(BEACON_RATE_to_ptype, "5.5"), 5);
    EXPECT_EQ(to_value<int32_t>(MCAST_RATE_to_ptype, "5.5"), 5);
    EXPECT_EQ(to_value<int32_t>(RADIO_RATES_to_ptype, "5"), 5);
    EXPECT_EQ(to_value<int32_t>(RADIO_RATES_to_ptype, "5.5"), std::nullopt);
    EXPECT_EQ(to_value<int32_t>(COUNTRY_CODE_to_ptype, "us"), 840);
    EXPECT_EQ(to_text(COUNTRY_CODE_to_string, int32_t{840}), "US");
    EXPECT_EQ(to_text(LED_COLOR_to_string, *to_value<int32_t>(LED_COLOR_to_ptype, "green")), "Green");
    EXPECT_EQ(std::size(UPIMG_SERVER_TYPE_pairs), 1u);
    EXPECT_EQ(to_value<int32_t>(UPIMG_SERVER_TYPE_to_ptype, "ftp"), 0);
}

TEST(Tokens, ALongTokenIsCutToTheBufferAndTheRestOfABufferIsZero)
{
    const int32_t id = 7;
    const std::string token = "spec-upload-user-url-record";
    for (size_t size = 1; size <= token.size() + 2; ++size) {
        const printed output = print(FTPS_MODE_TYPE_to_string, id, size);
        EXPECT_EQ(output.result, 0);
        EXPECT_EQ(output.text, token.substr(0, size - 1));
    }
    char buffer[12];
    memset(buffer, '#', sizeof buffer);
    const int32_t on = 1;
    ASSERT_EQ(BOOLEAN_to_string(&on, buffer, 10, nullptr), 0);
    EXPECT_EQ(std::string(buffer, 12), std::string("true\0\0\0\0\0\0##", 12));
}

TEST(Tokens, ABufferWithoutRoomIsNotTouched)
{
    const int32_t id = 1;
    for (const auto &type : enum_types()) {
        const int32_t known = type.pairs[0].id;
        const printed output = print(type.to_string, known, 0);
        EXPECT_EQ(output.result, 0) << type.name;
        EXPECT_EQ(type.to_string(&known, nullptr, 16, nullptr), 0) << type.name;
    }
    EXPECT_EQ(STATUS_to_string(&id, nullptr, 0, nullptr), 0);
}

TEST(Tokens, LookupsStopAtTheGivenCountAndTakeTheFirstMatch)
{
    const enum_pair pairs[] = {{3, "three"}, {4, "Four"}, {3, "other"}, {5, "THREE"}};
    EXPECT_EQ(get_enum_id(pairs, 4, "three"), 3);
    EXPECT_EQ(get_enum_id(pairs, 4, "THREE"), 3);
    EXPECT_EQ(get_enum_id(pairs, 4, "fOUR"), 4);
    EXPECT_EQ(get_enum_id(pairs, 2, "other"), -1);
    EXPECT_EQ(get_enum_id(pairs, 0, "three"), -1);
    EXPECT_EQ(get_enum_id(pairs, 4, "thre"), -1);
    EXPECT_STREQ(get_enum_name(pairs, 4, 3), "three");
    EXPECT_STREQ(get_enum_name(pairs, 4, 4), "Four");
    EXPECT_EQ(get_enum_name(pairs, 3, 5), nullptr);
    EXPECT_EQ(get_enum_name(pairs, 0, 3), nullptr);
    EXPECT_EQ(get_enum_name(pairs, 4, -1), nullptr);
}

}  // namespace
