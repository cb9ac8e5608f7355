// Text to value: integers against strtoul over the same texts, enumerated types against strcasecmp over the same pairs.
#include <apconf/ptype.h>
#include <strings.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/pair.h"

namespace
{

using apconf_bench::add_pair;
using texts = std::vector<std::string>;

constexpr double goal = 1.3;

// Room for a value of every type.
union any_value {
    uint8_t octet;
    uint64_t number;
};

void convert_all(benchmark::State &state, uint32_t ptype, const texts &from)
{
    for (auto _ : state) {
        for (const auto &text : from) {
            any_value value;
            if (convert_ptype_to_value(ptype, &value, text.c_str(), nullptr) != 0)
                state.SkipWithError(("does not convert: " + text).c_str());
            benchmark::DoNotOptimize(value);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(from.size()));
}

void strtoul_all(benchmark::State &state, const texts &from)
{
    for (auto _ : state)
        for (const auto &text : from) benchmark::DoNotOptimize(strtoul(text.c_str(), nullptr, 0));
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(from.size()));
}

void strcasecmp_all(benchmark::State &state, const std::vector<enum_pair> &pairs)
{
    for (auto _ : state) {
        for (const auto &sought : pairs) {
            auto found = pairs.begin();
            while (found != pairs.end() && strcasecmp(found->token, sought.token) != 0) ++found;
            benchmark::DoNotOptimize(found->id);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pairs.size()));
}

std::string hexadecimal(long long value)
{
    char text[32];
    snprintf(text, sizeof text, "%s0x%llX", value < 0 ? "-" : "", value < 0 ? -value : value);
    return text;
}

void add_integer(const std::string &name, uint32_t ptype, const std::vector<long long> &values)
{
    texts decimals, hexadecimals;
    for (const long long value : values) {
        decimals.push_back(std::to_string(value));
        hexadecimals.push_back(hexadecimal(value));
    }
    const auto add = [&](const char *form, const texts &from) {
        add_pair(
            "convert " + name + ", " + form, goal,
            [ptype, from](benchmark::State &state) { convert_all(state, ptype, from); },
            [from](benchmark::State &state) { strtoul_all(state, from); });
    };
    add("decimal", decimals);
    add("hexadecimal", hexadecimals);
}

void add_enumeration(const std::string &name, uint32_t ptype, const std::vector<enum_pair> &pairs)
{
    texts tokens;
    for (const auto &pair : pairs) tokens.push_back(pair.token);
    add_pair(
        "convert " + name + ", all " + std::to_string(pairs.size()) + " tokens", goal,
        [ptype, tokens](benchmark::State &state) { convert_all(state, ptype, tokens); },
        [pairs](benchmark::State &state) { strcasecmp_all(state, pairs); });
}

}  // namespace

int main(int argc, char **argv)
{
    add_integer("UINT8", PTYPE_UINT8, {0, 7, 42, 100, 255});
    add_integer("UINT16", PTYPE_UINT16, {0, 80, 1812, 8080, 65535});
    add_integer("UINT", PTYPE_UINT, {0, 100, 86400, 16777216, 4294967295});
    add_integer("SINT", PTYPE_SINT, {-2147483648, -70, 0, 20, 2147483647});
    add_enumeration("STATUS", PTYPE_STATUS, {std::begin(STATUS_pairs), std::end(STATUS_pairs)});
    add_enumeration("CHANNEL", PTYPE_CHANNEL, {std::begin(CHANNEL_pairs), std::end(CHANNEL_pairs)});

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
