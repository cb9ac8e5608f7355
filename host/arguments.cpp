// Reads a command's argument object: every key known, every value converted and within the schema's range, or refused.
#include "arguments.h"

#include <algorithm>
#include <cstring>

#include "expectation.h"
#include "json.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

// The field that picks between rows which share a key, or null.
const apconf_field *selecting_field(const apconf_command &command)
{
    const auto *end = command.fields + command.field_count;
    const bool selects =
        std::any_of(command.fields, end, [](const apconf_field &field) { return field.when != APCONF_WHEN_ALWAYS; });
    const auto *found = std::find_if(command.fields, end, [](const apconf_field &field) {
        return field.ptype == PTYPE_ADDR_TYPE || field.ptype == PTYPE_STRING_FORMAT;
    });
    return selects && found != end ? found : nullptr;
}

// The selecting field with the value that a message gives it, until the end of the check.
class trial
{
public:
    explicit trial(const element &at) : at_(at) {}
    trial(const trial &) = delete;
    trial &operator=(const trial &) = delete;
    ~trial()
    {
        if (field_) memcpy(at_.stored + field_->offset, before_.data(), before_.size());
    }

    void select(const argument &argument)
    {
        field_ = argument.field;
        before_.assign(at_.stored + field_->offset, argument.bytes.size());
        memcpy(at_.stored + field_->offset, argument.bytes.data(), argument.bytes.size());
    }
    bool active() const { return field_ != nullptr; }

private:
    element at_;
    const apconf_field *field_ = nullptr;
    std::string before_;
};

bool converts_back(uint32_t ptype, const char *value)
{
    char text[512];
    return convert_ptype_to_string(ptype, value, text, sizeof text) == 0;
}

std::optional<std::string> convert_text(const cmd_node &node, const apconf_field &field, const std::string &text)
{
    if (check_ptype_string(field.ptype, text.c_str(), range_of(node, field)) != 0) return std::nullopt;
    return text;
}

// The values of a VALUES or LIST field: an array of texts or one text.
std::optional<std::string> convert_values(const cmd_node &node, const apconf_field &field, json_object *value)
{
    std::string bytes;
    size_t count = 0;
    int cursor = 0;
    while (json_object *single = get_json_obj(value, &cursor)) {
        const auto text = scalar_text(single);
        const auto converted = text ? convert_value(node, field, *text) : std::nullopt;
        if (!converted) return std::nullopt;
        bytes += *converted;
        ++count;
    }
    if (field.kind == APCONF_FIELD_VALUES && count > field.count) return std::nullopt;
    return bytes;
}

std::optional<argument> convert(const cmd_node &node, const apconf_field &field, json_object *value)
{
    argument result;
    result.field = &field;
    if (field.kind == APCONF_FIELD_OBJECT) {
        if (!json_object_is_type(value, json_type_object)) return std::nullopt;
        result.object = value;
        return result;
    }
    std::optional<std::string> bytes;
    if (field.kind == APCONF_FIELD_VALUES || field.kind == APCONF_FIELD_LIST) {
        bytes = convert_values(node, field, value);
    } else if (const auto text = scalar_text(value)) {
        bytes = is_heap_text(field) ? convert_text(node, field, *text) : convert_value(node, field, *text);
    }
    if (!bytes) return std::nullopt;
    result.bytes = std::move(*bytes);
    return result;
}

class reader
{
public:
    reader(const reading &reading, outcome &result) : reading_(reading), result_(result), trial_(reading.at) {}

    std::optional<std::vector<argument>> read(json_object *object)
    {
        read_selecting_field(object);
        json_object_object_foreach(object, key, value)
        {
            // JSON null counts as absent.
            if (value && !travels_along(key, value)) read_member(key, value);
        }
        check_what_stays();
        if (refused_) return std::nullopt;
        return std::move(arguments_);
    }

private:
    void read_selecting_field(json_object *object)
    {
        selecting_ = selecting_field(reading_.command);
        json_object *value = selecting_ ? member(object, selecting_->key) : nullptr;
        if (!value) return;
        if (auto argument = convert(reading_.node, *selecting_, value)) {
            trial_.select(*argument);
            arguments_.push_back(std::move(*argument));
        } else {
            refuse(*selecting_, value, accepted_value(reading_.node, *selecting_));
        }
    }

    bool travels_along(const std::string &key, json_object *value)
    {
        if (key == ".OPT") {
            const auto word = scalar_text(value);
            if (word != "no" && word != "noall") refuse_key(key, shown(value), "no or noall");
            return true;
        }
        if (selecting_ && key == selecting_->key) return true;
        return std::find(reading_.index_keys.begin(), reading_.index_keys.end(), key) != reading_.index_keys.end();
    }

    void read_member(const char *key, json_object *value)
    {
        const apconf_field *last = nullptr;
        const apconf_field *out_of_force = nullptr;
        for (unsigned i = 0; i < reading_.command.field_count; ++i) {
            const apconf_field &field = reading_.command.fields[i];
            if (!field.key || strcmp(field.key, key) != 0) continue;
            if (!in_force(field)) {
                out_of_force = &field;
                continue;
            }
            last = &field;
            if (auto argument = convert(reading_.node, field, value)) return accept(std::move(*argument), value);
        }
        if (last) return refuse(*last, value, accepted_value(reading_.node, *last));
        if (out_of_force) return refuse(*out_of_force, value, condition(*out_of_force));
        // The value may be a misspelt secret: it is not shown.
        refuse_key(key, "", accepted_keys(reading_.command));
    }

    void accept(argument argument, json_object *value)
    {
        if (reading_.command.variant != APCONF_COUNTED_ARRAY && looks_unset(argument, reading_.at))
            return refuse(*argument.field, value,
                          accepted_value(reading_.node, *argument.field) + ", but this value, which means \"not set\"");
        arguments_.push_back(std::move(argument));
    }

    bool in_force(const apconf_field &field) const
    {
        if (field.when == APCONF_WHEN_ALWAYS) return true;
        if (!reading_.stored_is_known && !trial_.active()) return true;
        return apconf_field_applies(&reading_.command, &field, reading_.at.stored) != 0;
    }

    // A text that stays must be valid also for the type that the selecting field now gives it.
    void check_what_stays()
    {
        if (!trial_.active() || !reading_.stored_is_known || refused_) return;
        for (unsigned i = 0; i < reading_.command.field_count; ++i) {
            const apconf_field &field = reading_.command.fields[i];
            if (field.when == APCONF_WHEN_ALWAYS || !is_heap_text(field) || !in_force(field) || is_given(field))
                continue;
            const char *text = load_text(field, reading_.at);
            if (text && !convert_text(reading_.node, field, text))
                refuse_key(field.key, field.flags & APCONF_FIELD_SECRET ? masked_secret : text,
                           accepted_value(reading_.node, field));
        }
    }

    bool is_given(const apconf_field &field) const
    {
        return std::any_of(arguments_.begin(), arguments_.end(),
                           [&field](const argument &given) { return given.field == &field; });
    }

    std::string condition(const apconf_field &field) const
    {
        const char *word = field.when == APCONF_WHEN_IP       ? "ip"
                           : field.when == APCONF_WHEN_DOMAIN ? "domain"
                           : field.when == APCONF_WHEN_HEX    ? "hex"
                                                              : "not hex";
        const std::string needed = std::string(selecting_ ? selecting_->key : "its type") + " " + word;
        // A key with two rows is out of force only while there is neither address.
        const auto rows = std::count_if(
            reading_.command.fields, reading_.command.fields + reading_.command.field_count,
            [&field](const apconf_field &other) { return other.key && strcmp(other.key, field.key) == 0; });
        if (rows > 1) return std::string("this key only with ") + selecting_->key + " ip or domain";
        return "this key only with " + needed;
    }

    void refuse(const apconf_field &field, json_object *value, std::string accepted)
    {
        refuse_key(field.key, field.flags & APCONF_FIELD_SECRET ? masked_secret : shown(value), std::move(accepted));
    }

    void refuse_key(std::string key, std::string value, std::string accepted)
    {
        refused_ = true;
        result_.refuse({reading_.path, std::move(key), std::move(value), std::move(accepted)});
    }

    const reading &reading_;
    outcome &result_;
    trial trial_;
    const apconf_field *selecting_ = nullptr;
    std::vector<argument> arguments_;
    bool refused_ = false;
};

}  // namespace

std::optional<std::string> convert_value(const cmd_node &node, const apconf_field &field, const std::string &text)
{
    // Number converters take an empty text for 0; nobody means that.
    if (text.empty()) return std::nullopt;
    alignas(8) char value[16] = {};
    if (convert_ptype_to_value(field.ptype, value, text.c_str(), range_of(node, field)) != 0) return std::nullopt;
    if (field.ptype == PTYPE_IPV4_MASK) {
        // The converter back reads the address in network byte order: stored so, a prefix is reported as it was given.
        ipv4_mask prefix;
        memcpy(&prefix, value, sizeof prefix);
        prefix.address = __builtin_bswap32(prefix.address);
        memcpy(value, &prefix, sizeof prefix);
    }
    if (!converts_back(field.ptype, value)) return std::nullopt;
    return std::string(value, static_cast<size_t>(get_ptype_size(field.ptype)));
}

std::optional<std::vector<argument>> read_arguments(const reading &reading, json_object *object, outcome &result)
{
    if (json_object_is_type(object, json_type_object)) return reader(reading, result).read(object);
    result.refuse({reading.path, "", has_secret(reading.command) ? masked_secret : shown(object),
                   "an object with " + accepted_keys(reading.command)});
    return std::nullopt;
}

void write_arguments(const apconf_command &command, const element &at, const std::vector<argument> &arguments)
{
    for (const argument &argument : arguments) write(at, argument);
    for (unsigned i = 0; i < command.field_count; ++i) {
        const apconf_field &field = command.fields[i];
        if (apconf_field_applies(&command, &field, at.stored)) continue;
        const bool shared = std::any_of(command.fields, command.fields + command.field_count, [&](const auto &other) {
            return other.offset == field.offset && apconf_field_applies(&command, &other, at.stored);
        });
        if (!shared) unset(field, at);
    }
}

std::optional<std::string> read_index(const cmd_node &node, const apconf_field &field, const std::string &path,
                                      json_object *value, outcome &result)
{
    auto text = scalar_text(value);
    if (text && is_heap_text(field)) {
        if (!text->empty() && convert_text(node, field, *text)) return text;
    } else if (text) {
        if (const auto bytes = convert_value(node, field, *text)) {
            uint32_t number = 0;
            memcpy(&number, bytes->data(), std::min(sizeof number, bytes->size()));
            return std::to_string(number);
        }
    }
    result.refuse({path, field.key, shown(value), accepted_value(node, field)});
    return std::nullopt;
}

bool has_secret(const apconf_command &command)
{
    return std::any_of(command.fields, command.fields + command.field_count,
                       [](const apconf_field &field) { return (field.flags & APCONF_FIELD_SECRET) != 0; });
}

}  // namespace apconf_host
