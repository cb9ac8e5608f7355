// What a parameter accepts, told in words and from the loaded schema.
#include "expectation.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "text.h"

namespace apconf_host
{

namespace
{

bool is_text(uint32_t ptype)
{
    return ptype == PTYPE_STRING || ptype == PTYPE_HEX_STR;
}

const cmd_param *parameter_of(const cmd_node &node, const apconf_field &field)
{
    if (!node.params || !field.key) return nullptr;
    const cmd_param *of_other_text = nullptr;
    for (uint32_t i = 0; i < node.param_count; ++i) {
        const cmd_param &param = node.params[i];
        if (!param.name || strcmp(param.name, field.key) != 0) continue;
        if (static_cast<uint32_t>(param.ptype) == field.ptype) return &param;
        // The schema writes a text once, also where the block holds it as one of two text types.
        if (is_text(field.ptype) && is_text(static_cast<uint32_t>(param.ptype))) of_other_text = &param;
    }
    return of_other_text;
}

template <typename Range, typename Number>
std::string from_to(const void *range, Number least, Number most)
{
    if (range) {
        least = static_cast<const Range *>(range)->min;
        most = static_cast<const Range *>(range)->max;
    }
    return " from " + std::to_string(least) + " to " + std::to_string(most);
}

template <typename Range>
std::string number(const char *name, const void *range)
{
    using value = decltype(Range::min);
    return name + from_to<Range>(range, std::numeric_limits<value>::min(), std::numeric_limits<value>::max());
}

std::string length(const void *range, const char *unit)
{
    if (!range) return "";
    const auto &limits = *static_cast<const length_range *>(range);
    if (limits.min == limits.max) return " of " + std::to_string(limits.min) + " " + unit;
    return " of " + std::to_string(limits.min) + " to " + std::to_string(limits.max) + " " + unit;
}

// Letters added, dropped or changed from one word to the other.
size_t distance(const std::string &one, const std::string &other)
{
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j < row.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= one.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j < row.size(); ++j) {
            const size_t change = diagonal + (one[i - 1] == other[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({change, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string accepted_by(uint32_t ptype, const void *range)
{
    switch (ptype) {
        case PTYPE_RAW_JSON:
            return "a JSON object";
        case PTYPE_SINT:
            return number<sint_range>("a SINT", range);
        case PTYPE_UINT8:
            return number<uint8_range>("a UINT8", range);
        case PTYPE_UINT16:
            return number<uint16_range>("a UINT16", range);
        case PTYPE_UINT:
            return number<uint_range>("a UINT", range);
        case PTYPE_UINT64:
            return number<uint64_range>("a UINT64", range);
        case PTYPE_FLOAT:
            return "a FLOAT" + (range ? from_to<float_range>(range, 0.0F, 0.0F) : "");
        case PTYPE_STRING:
            return "a text" + length(range, "characters");
        case PTYPE_HEX_STR:
            return "a text" + length(range, "hexadecimal digits");
        case PTYPE_BINARY:
            return "a text of the digits 0 and 1";
        case PTYPE_IPV4:
            return "an IPv4 address A.B.C.D";
        case PTYPE_IPV4_MASK:
            return "an IPv4 prefix A.B.C.D/LENGTH with a length from 0 to 32";
        case PTYPE_MAC_ADDR:
            return "a MAC address XX:XX:XX:XX:XX:XX";
        case PTYPE_TIME_HHMMSS:
            return "a time HH:MM:SS";
        case PTYPE_TXPOWER_TYPE:
            return "the word percents";
        default:
            return "one of " + joined(tokens_of(ptype));
    }
}

const void *range_of(const cmd_node &node, const apconf_field &field)
{
    const cmd_param *param = parameter_of(node, field);
    return param ? param->range : nullptr;
}

std::string accepted_value(const cmd_node &node, const apconf_field &field)
{
    std::string single = accepted_by(field.ptype, range_of(node, field));
    switch (field.kind) {
        case APCONF_FIELD_VALUES:
            return "up to " + std::to_string(field.count) + " values, each " + single;
        case APCONF_FIELD_LIST:
            return "a list of values, each " + single;
        default:
            return single;
    }
}

std::string accepted_keys(const apconf_command &command)
{
    std::vector<std::string> keys;
    for (unsigned i = 0; i < command.field_count; ++i) {
        const char *key = command.fields[i].key;
        if (key && std::find(keys.begin(), keys.end(), key) == keys.end()) keys.push_back(key);
    }
    if (keys.empty()) return "no key";
    return (keys.size() == 1 ? "the key " : "one of the keys ") + joined(keys);
}

std::vector<std::string> tokens_of(uint32_t ptype)
{
    std::vector<std::string> tokens;
    const auto add_all = [&tokens](const enum_pair *pairs, int count) {
        for (int i = 0; i < count; ++i) tokens.push_back(pairs[i].token);
    };
    switch (ptype) {
#define TOKENS(number, NAME, count)   \
    case number:                      \
        add_all(NAME##_pairs, count); \
        break;
        APCONF_ENUM_PTYPES(TOKENS)
#undef TOKENS
        default:
            break;
    }
    return tokens;
}

std::string nearest(const std::string &word, const std::vector<std::string> &candidates)
{
    constexpr size_t longest = 64;  // no name is longer, and the search takes the product of both lengths
    if (word.empty() || word.size() > longest) return "";
    std::string best;
    size_t least = std::max<size_t>(2, word.size() / 3) + 1;
    for (const auto &candidate : candidates) {
        // What was typed may be the beginning, or the name without its "_cmd".
        const size_t here = candidate.starts_with(word) ? 1 : distance(word, candidate);
        if (here < least) {
            least = here;
            best = candidate;
        }
    }
    return best;
}

std::vector<std::string> names_below(const cmd_node &node)
{
    std::vector<std::string> names;
    for (const cmd_node *child = node.children; child && child->name; ++child) names.push_back(child->name);
    return names;
}

std::string accepted_command(const cmd_node &parent, const std::string &below, const std::string &name)
{
    const auto names = names_below(parent);
    const std::string like = nearest(name, names);
    const std::string accepted = below.empty() ? "the first word of a path" : "a command of " + below;
    if (!like.empty()) return accepted + ", perhaps " + like;
    return names.size() <= 12 ? accepted + ": " + joined(names) : accepted + ", such as " + names.front();
}

}  // namespace apconf_host
