#include "samples.h"

#include <json-c/json.h>

#include <cstdlib>
#include <cstring>

namespace apconf_test
{
namespace
{

const char *first_token(uint32_t ptype)
{
    switch (ptype) {
#define FIRST_TOKEN(number, NAME, count) \
    case number:                         \
        return NAME##_pairs[0].token;
        APCONF_ENUM_PTYPES(FIRST_TOKEN)
#undef FIRST_TOKEN
        default:
            abort();
    }
}

}  // namespace

sample sample_of(uint32_t ptype)
{
    switch (ptype) {
        case PTYPE_SINT:
            return {"-70", "-70"};
        case PTYPE_UINT8:
            return {"0x21", "33"};
        case PTYPE_UINT16:
            return {"0x1234", "4660"};
        case PTYPE_UINT:
            return {"4000000001", "4000000001"};
        case PTYPE_UINT64:
            return {"18446744073709551610", "18446744073709551610"};
        case PTYPE_STRING:
            return {"a text", "a text"};
        case PTYPE_HEX_STR:
            return {"0aF9", "0aF9"};
        case PTYPE_IPV4:
            return {"192.0.2.7", "192.0.2.7"};
        case PTYPE_IPV4_MASK:
            return {"10.1.2.3/8", "3.2.1.10/8"};
        case PTYPE_MAC_ADDR:
            return {"a:b:c:d:e:f", "0A:0B:0C:0D:0E:0F"};
        case PTYPE_TIME_HHMMSS:
            return {"01:02:03", "1:2:3"};
        default:
            return {first_token(ptype), first_token(ptype)};
    }
}

void set_word(char *place, uint32_t value)
{
    memcpy(place, &value, sizeof value);
}

void set_sample(const apconf_field &field, char *place)
{
    const std::string given = field.kind == APCONF_FIELD_OBJECT ? "" : sample_of(field.ptype).given;
    const auto size = static_cast<size_t>(param_types[field.ptype].size);
    switch (field.kind) {
        case APCONF_FIELD_VALUE:
        case APCONF_FIELD_VALUES:
            for (uint32_t i = 0; i < field.count; i++)
                if (convert_ptype_to_value(field.ptype, place + i * size, given.c_str(), nullptr) != 0) abort();
            break;
        case APCONF_FIELD_TEXT:
        case APCONF_FIELD_TYPED: {
            char *const copy = strdup(given.c_str());
            memcpy(place, &copy, sizeof copy);
            break;
        }
        case APCONF_FIELD_LIST: {
            auto *const list = static_cast<char *>(malloc(2 * size));
            for (uint32_t i = 0; i < 2; i++)
                if (convert_ptype_to_value(field.ptype, list + i * size, given.c_str(), nullptr) != 0) abort();
            memcpy(place, &list, sizeof list);
            set_word(place + sizeof list, 2);
            break;
        }
        default: {
            json_object *const object = json_tokener_parse(R"({"any":["json"]})");
            memcpy(place, &object, sizeof object);
        }
    }
}

std::string shown_sample(const apconf_field &field)
{
    if (field.kind == APCONF_FIELD_OBJECT) return R"({"any":["json"]})";
    const std::string quoted = '"' + sample_of(field.ptype).shown + '"';
    if (field.kind != APCONF_FIELD_VALUES && field.kind != APCONF_FIELD_LIST) return quoted;
    const int count = field.kind == APCONF_FIELD_LIST ? 2 : field.count;
    std::string array = "[" + quoted;
    for (int i = 1; i < count; i++) array += "," + quoted;
    return array + "]";
}

void select_alternative(const apconf_command &command, char *record, bool first)
{
    bool has_alternatives = false;
    for (uint32_t f = 0; f < command.field_count; f++)
        if (command.fields[f].when != APCONF_WHEN_ALWAYS) has_alternatives = true;
    if (!has_alternatives) return;
    for (uint32_t f = 0; f < command.field_count; f++) {
        const apconf_field &field = command.fields[f];
        if (field.ptype == PTYPE_ADDR_TYPE) set_word(record + field.offset, first ? 1 : 2);      // ip, domain
        if (field.ptype == PTYPE_STRING_FORMAT) set_word(record + field.offset, first ? 1 : 2);  // hex, ascii
    }
}

bool is_alternative(const apconf_field &field, bool first)
{
    switch (field.when) {
        case APCONF_WHEN_IP:
        case APCONF_WHEN_HEX:
            return first;
        case APCONF_WHEN_DOMAIN:
        case APCONF_WHEN_PLAIN:
            return !first;
        default:
            return true;
    }
}

}  // namespace apconf_test
