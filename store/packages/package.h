// The form in which a package describes its commands. A package file reads:
//
//     PACKAGE(wmm, BSS)                                        the package and the record its paths start from
//
//     COMMAND(status_cmd, group(),                             a record of lib_pkg_wmm: its name, how it is reported,
//             FIELD("status", wmm.status_cmd.status, STATUS))  and per field the key, the place and the ptype
//
//     END_PACKAGE(wmm)                                         lib_pkg_wmm and the description of the package
//
// The place is written once: it is the path in the log lines, the offset in the block, and checked against the ptype.
// Records stand in table order. Each COMMAND makes its change handler, get_<command>, a function of its own.
#pragma once

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "apconf/description.h"
#include "store/change_handlers.h"
#include "store/scope.h"

namespace apconf
{

// The type that a ptype's value has in the block.
template <int ptype>
struct value_type;
// clang-format off
#define SCALAR_VALUE(number, NAME, type) template <> struct value_type<number> { using in_block = type; };
#define ENUM_VALUE(number, NAME, pairs) template <> struct value_type<number> { using in_block = uint32_t; };
APCONF_SCALAR_PTYPES(SCALAR_VALUE)
APCONF_ENUM_PTYPES(ENUM_VALUE)
#undef SCALAR_VALUE
#undef ENUM_VALUE
// clang-format on

// One row of a command, checked when it is compiled: the member has the type of the ptype's value.
template <int ptype, typename Member>
consteval apconf_field field_row(const char *key, const char *member, size_t offset, uint8_t flags = 0,
                                 apconf_field_when when = APCONF_WHEN_ALWAYS)
{
    using value = typename value_type<ptype>::in_block;
    static_assert(std::is_same_v<Member, value>, "the member has not the type of the ptype's value");
    const bool text = std::is_same_v<value, char *>;
    return {key,
            member,
            static_cast<uint32_t>(offset),
            1,
            ptype,
            static_cast<uint8_t>(text ? APCONF_FIELD_TYPED : APCONF_FIELD_VALUE),
            static_cast<uint8_t>(when),
            flags};
}

template <typename Member>
consteval apconf_field text_row(const char *key, const char *member, size_t offset, uint8_t flags = 0,
                                apconf_field_when when = APCONF_WHEN_ALWAYS)
{
    static_assert(std::is_same_v<Member, char *>, "a text is a char pointer in the block");
    return {key,  member, static_cast<uint32_t>(offset), 1, PTYPE_STRING, APCONF_FIELD_TEXT, static_cast<uint8_t>(when),
            flags};
}

template <int ptype, typename Member>
consteval apconf_field values_row(const char *key, const char *member, size_t offset)
{
    using value = typename value_type<ptype>::in_block;
    if constexpr (std::is_array_v<Member>) {
        static_assert(std::is_same_v<std::remove_extent_t<Member>, value>, "the array is not of the ptype's values");
        return {key, member, static_cast<uint32_t>(offset), std::extent_v<Member>, ptype, APCONF_FIELD_VALUES, 0, 0};
    } else {
        static_assert(std::is_same_v<decltype(Member::list), value *>, "the list is not of the ptype's values");
        return {key, member, static_cast<uint32_t>(offset), 1, ptype, APCONF_FIELD_LIST, 0, 0};
    }
}

// How a command is reported, with the places that the manner needs.
struct manner {
    apconf_variant variant;
    apconf_array array = {0, 0, 0};
    uint32_t option = APCONF_NO_OPTION;
    cmd_node *children = nullptr;
    int scope = -1;  // of the instances of an iterating node
    bool zero_unset = false;

    // For arrays whose unset state is zero bytes.
    consteval manner zero_when_unset() const
    {
        manner zeroed = *this;
        zeroed.zero_unset = true;
        return zeroed;
    }
};

consteval manner group()
{
    return {APCONF_GROUP};
}
consteval manner negatable_group()
{
    return {APCONF_NEGATABLE_GROUP};
}
consteval manner unset_means_no()
{
    return {APCONF_UNSET_MEANS_NO};
}
consteval manner never_reported()
{
    return {APCONF_NEVER_REPORTED};
}
consteval manner flag(uint32_t state)
{
    return {APCONF_FLAG, {0, 0, 0}, state};
}
consteval manner fixed_array(apconf_array array)
{
    return {APCONF_FIXED_ARRAY, array};
}
consteval manner always_reset(apconf_array array)
{
    return {APCONF_ALWAYS_RESET, array};
}
consteval manner selected_entry(apconf_array array)
{
    return {APCONF_SELECTED_ENTRY, array};
}
consteval manner reset_on_change(apconf_array array, uint32_t option)
{
    return {APCONF_RESET_ON_CHANGE, array, option};
}
consteval manner reset_on_difference(apconf_array array, uint32_t option)
{
    return {APCONF_RESET_ON_DIFFERENCE, array, option};
}
consteval manner only_when_replaced(apconf_array array, uint32_t option)
{
    return {APCONF_ONLY_WHEN_REPLACED, array, option};
}
consteval manner packed_list(apconf_array array, uint32_t option)
{
    return {APCONF_PACKED_LIST, array, option};
}
consteval manner counted_array(apconf_array array, uint32_t count)
{
    return {APCONF_COUNTED_ARRAY, array, count};
}
consteval manner package_node(cmd_node *children, apconf_array area)
{
    return {APCONF_PACKAGE_NODE, area, APCONF_NO_OPTION, children};
}
consteval manner unconditional_node(cmd_node *children)
{
    return {APCONF_UNCONDITIONAL_NODE, {0, 0, 0}, APCONF_NO_OPTION, children};
}
consteval manner record_node(cmd_node *children, apconf_scope scope, apconf_array array,
                             uint32_t state = APCONF_NO_OPTION)
{
    return {APCONF_RECORD_NODE, array, state, children, scope};
}
consteval manner list_node(cmd_node *children, apconf_scope scope, uint32_t list)
{
    return {APCONF_LIST_NODE, {list, 0, 0}, APCONF_NO_OPTION, children, scope};
}

template <size_t size>
consteval apconf_command command_row(const char *name, const std::array<apconf_field, size> &fields,
                                     const manner &manner, int scope)
{
    static_assert(size < 256);
    return {name,
            size ? fields.data() : nullptr,
            manner.option,
            manner.array,
            static_cast<uint8_t>(manner.variant),
            static_cast<uint8_t>(manner.scope < 0 ? scope : manner.scope),
            static_cast<uint8_t>(size),
            manner.zero_unset};
}

template <typename... Rows>
consteval std::array<apconf_field, sizeof...(Rows)> rows(const Rows &...row)
{
    return {row...};
}

// The records of a package as one object, whose layout is that of the array it is exported as.
template <template <int> typename Entry, int... number>
constexpr auto build_table(std::integer_sequence<int, number...>)
{
    return std::array<cmd_node, sizeof...(number) + 1>{Entry<number>::node()..., cmd_node{}};
}

template <template <int> typename Entry, int... number>
constexpr auto build_commands(std::integer_sequence<int, number...>)
{
    return std::array<apconf_command, sizeof...(number)>{Entry<number>::command...};
}

}  // namespace apconf

// clang-format off

#define PACKAGE(name, scope)                                                            \
    namespace apconf {                                                                  \
    namespace {                                                                         \
    constexpr int package_scope = APCONF_SCOPE_##scope;                                 \
    using record = scope_description<package_scope>::record;                                \
    template <int number> struct entry;                                                 \
    const apconf_command &described(int number);                                        \
    constexpr int first_entry = __COUNTER__ + 1;

#define COMMAND(command_name, how, ...) COMMAND_AT(__COUNTER__, command_name, how __VA_OPT__(,) __VA_ARGS__)
#define COMMAND_AT(counter, command_name, how, ...)                                     \
    template <> struct entry<counter - first_entry> {                                   \
        static constexpr auto fields = rows(__VA_ARGS__);                               \
        static constexpr manner how_reported = how;                                     \
        static constexpr apconf_command command =                                       \
            command_row(#command_name, fields, how_reported, package_scope);            \
        static int get_##command_name(json_object *args, json_object **result, cpath_ctx *ctx) \
        {                                                                               \
            return report_changes(described(counter - first_entry), __func__, args, result, ctx); \
        }                                                                               \
        static constexpr cmd_node node()                                                \
        {                                                                               \
            return {#command_name, 0, nullptr, nullptr, get_##command_name, nullptr, 0, how_reported.children}; \
        }                                                                               \
    };

// The table is built as one object and exported under the array's name. All that leads to a table goes by that name: a
// program that names the array may have it copied into itself, and then the copy is the table.
#define END_PACKAGE(name)                                                               \
    using numbers = std::make_integer_sequence<int, __COUNTER__ - first_entry>;         \
    constexpr auto commands = build_commands<entry>(numbers{});                         \
    inline const apconf_command &described(int number) { return commands[static_cast<size_t>(number)]; } \
    }                                                                                   \
    extern "C" {                                                                        \
    constinit auto apconf_table_##name = build_table<entry>(numbers{});                 \
    }                                                                                   \
    }                                                                                   \
    extern "C" cmd_node lib_pkg_##name[apconf::commands.size() + 1] __attribute__((alias("apconf_table_" #name))); \
    namespace apconf {                                                                  \
    extern const apconf_package package_##name;                                         \
    constinit const apconf_package package_##name = {#name, lib_pkg_##name, commands.data(), commands.size()}; \
    }

// A place in the package's record. In the path of an array's element the index is written i: element 0 stands for all.
#define OFFSET(place) ([]() consteval -> size_t { [[maybe_unused]] constexpr size_t i = 0; return offsetof(record, place); }())
#define AT(place) ([]() consteval -> uint32_t { return static_cast<uint32_t>(offsetof(record, place)); }())
#define MEMBER(place) decltype([]() { [[maybe_unused]] constexpr size_t i = 0; return std::type_identity<decltype(std::declval<record &>().place)>{}; }())::type
#define ARRAY(place)                                                                    \
    apconf_array{AT(place), static_cast<uint32_t>(sizeof(MEMBER(place)) / std::extent_v<MEMBER(place)>), \
                 static_cast<uint16_t>(std::extent_v<MEMBER(place)>)}
#define AREA(place) apconf_array{AT(place), static_cast<uint32_t>(sizeof(MEMBER(place))), 1}

// A value of a ptype; of a text ptype, a heap text that is reported through it.
#define FIELD(key, place, ptype, ...) field_row<PTYPE_##ptype, MEMBER(place)>(key, #place, OFFSET(place) __VA_OPT__(,) __VA_ARGS__)
// A heap text that is reported as it stands.
#define TEXT(key, place, ...) text_row<MEMBER(place)>(key, #place, OFFSET(place) __VA_OPT__(,) __VA_ARGS__)
// The key that names an element of a variable list: a member of the list's records.
#define ELEMENT_FIELD(key, element, member, ptype)                                      \
    field_row<PTYPE_##ptype, decltype(element::member)>(key, #member, offsetof(element, member), index_key)
#define ELEMENT_TEXT(key, element, member)                                              \
    text_row<decltype(element::member)>(key, #member, offsetof(element, member), index_key)
// Several values that travel as one JSON array: an array in the block, or a {list, count}.
#define VALUES(key, place, ptype) values_row<PTYPE_##ptype, MEMBER(place)>(key, #place, OFFSET(place))
// A JSON object that reporting hands over.
#define OBJECT(key, place)                                                              \
    apconf_field{key, #place, static_cast<uint32_t>(OFFSET(place)), 1, PTYPE_RAW_JSON, APCONF_FIELD_OBJECT, 0, 0}
// The index argument of an iterating package whose instances are numbered, not named by a member.
#define INSTANCE(key) apconf_field{key, nullptr, 0, 1, PTYPE_UINT, APCONF_FIELD_VALUE, 0, APCONF_FIELD_INDEX}

// clang-format on

namespace apconf
{
constexpr uint8_t secret = APCONF_FIELD_SECRET;
constexpr uint8_t index_key = APCONF_FIELD_INDEX;
constexpr uint8_t unreleased = APCONF_FIELD_UNRELEASED;
}  // namespace apconf
