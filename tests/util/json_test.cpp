// Values that are one JSON value or an array, and members by key.
#include <gtest/gtest.h>
#include <json-c/json.h>

#include <climits>
#include <string>

#include "apconf/util.h"
#include "util/owners.h"

namespace
{

using apconf::json_ptr;

json_ptr parse(const char *text)
{
    return json_ptr(json_tokener_parse(text));
}

std::string plain(json_object *value)
{
    return json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN);
}

TEST(GetJsonObj, YieldsASingleValueOnce)
{
    for (const char *text : {"7", "\"text\"", "{\"key\":[1,2]}", "true"}) {
        const json_ptr value = parse(text);
        int index = 0;
        EXPECT_EQ(get_json_obj(value.get(), &index), value.get());
        EXPECT_EQ(index, 1);
        EXPECT_EQ(get_json_obj(value.get(), &index), nullptr);
        EXPECT_EQ(index, 1);
    }
}

TEST(GetJsonObj, WalksAnArrayAndSkipsNullElements)
{
    const json_ptr array = parse("[1,null,2]");
    int index = 0;
    EXPECT_EQ(json_object_get_int(get_json_obj(array.get(), &index)), 1);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(json_object_get_int(get_json_obj(array.get(), &index)), 2);
    EXPECT_EQ(index, 3);
    EXPECT_EQ(get_json_obj(array.get(), &index), nullptr);
    EXPECT_EQ(get_json_obj(array.get(), &index), nullptr);
    EXPECT_EQ(index, 3);
}

TEST(GetJsonObj, EndsAtOnceOnNothing)
{
    int index = 0;
    const json_ptr empty = parse("[]"), nulls = parse("[null,null]");
    EXPECT_EQ(get_json_obj(empty.get(), &index), nullptr);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(get_json_obj(nulls.get(), &index), nullptr);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(get_json_obj(nullptr, &index), nullptr);
    EXPECT_EQ(get_json_obj(empty.get(), nullptr), nullptr);
    EXPECT_EQ(get_json_obj(nullptr, nullptr), nullptr);
}

TEST(GetJsonObj, ACursorOutsideOfTheArrayYieldsNothing)
{
    const json_ptr array = parse("[1]");
    for (int index : {1, 2, INT_MAX, -1, INT_MIN}) EXPECT_EQ(get_json_obj(array.get(), &index), nullptr);
}

TEST(AddJsonObj, CollectsOneValueThenAnArray)
{
    json_ptr slot;
    json_object *first = json_object_new_int(1);
    add_json_obj(slot.out(), first);
    EXPECT_EQ(slot.get(), first);
    json_object *value = slot.release();
    add_json_obj(&value, json_object_new_int(2));
    slot.reset(value);
    EXPECT_EQ(plain(slot.get()), "[1,2]");
    EXPECT_EQ(json_object_array_get_idx(value, 0), first);
    add_json_obj(&value, json_object_new_int(3));
    EXPECT_EQ(value, slot.get());
    EXPECT_EQ(plain(slot.get()), "[1,2,3]");
}

TEST(AddJsonObj, AnArrayInTheSlotTakesTheValueAsItIs)
{
    json_ptr slot = parse("[]");
    json_object *value = slot.get();
    add_json_obj(&value, parse("[1]").release());
    EXPECT_EQ(value, slot.get());
    EXPECT_EQ(plain(slot.get()), "[[1]]");
}

TEST(AddJsonObj, TakesOwnershipOfTheValue)
{
    json_object *value = nullptr;
    json_object *first = json_object_new_int(1), *second = json_object_new_int(2);
    json_object_get(first);
    json_object_get(second);
    add_json_obj(&value, first);
    add_json_obj(&value, second);
    EXPECT_EQ(json_object_put(value), 1);
    EXPECT_EQ(json_object_put(first), 1);
    EXPECT_EQ(json_object_put(second), 1);
}

TEST(AddJsonObj, DoesNothingForNullArguments)
{
    json_ptr kept = parse("1");
    json_object *value = kept.get();
    add_json_obj(&value, nullptr);
    EXPECT_EQ(value, kept.get());
    json_object *empty = nullptr;
    add_json_obj(&empty, nullptr);
    EXPECT_EQ(empty, nullptr);
    add_json_obj(nullptr, kept.get());
    EXPECT_EQ(plain(kept.get()), "1");
    add_json_obj(nullptr, nullptr);
}

TEST(SearchChildObj, FindsAMember)
{
    const json_ptr object = parse("{\"name\":\"lan\",\"id\":7,\"nothing\":null,\"list\":[1, 2]}");
    EXPECT_EQ(plain(search_child_obj(object.get(), "name", nullptr)), "\"lan\"");
    EXPECT_EQ(plain(search_child_obj(object.get(), "id", nullptr)), "7");
    EXPECT_EQ(search_child_obj(object.get(), "absent", nullptr), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "nothing", nullptr), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "Name", nullptr), nullptr);
}

TEST(SearchChildObj, WithAValueOnlyWhenTheTextIsTheSame)
{
    const json_ptr object = parse("{\"name\":\"lan\",\"id\":7,\"nothing\":null}");
    json_object *const name = search_child_obj(object.get(), "name", nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "name", "lan"), name);
    EXPECT_EQ(search_child_obj(object.get(), "name", "wan"), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "name", "LAN"), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "name", ""), nullptr);
    EXPECT_NE(search_child_obj(object.get(), "id", "7"), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "absent", "lan"), nullptr);
    EXPECT_EQ(search_child_obj(object.get(), "nothing", "null"), nullptr);
}

TEST(SearchChildObj, TakesNoReference)
{
    const json_ptr object(json_object_new_object());
    json_object *member = json_object_new_string("lan");
    json_object_object_add(object.get(), "name", json_object_get(member));
    EXPECT_EQ(search_child_obj(object.get(), "name", nullptr), member);
    EXPECT_EQ(search_child_obj(object.get(), "name", "lan"), member);
    json_object_object_del(object.get(), "name");
    EXPECT_EQ(json_object_put(member), 1);
}

TEST(SearchChildObj, WhatIsNoObjectHasNoMembers)
{
    for (const char *text : {"[1]", "\"name\"", "7", "true"}) {
        const json_ptr value = parse(text);
        EXPECT_EQ(search_child_obj(value.get(), "name", nullptr), nullptr);
        EXPECT_EQ(search_child_obj(value.get(), "name", "lan"), nullptr);
    }
    EXPECT_EQ(search_child_obj(nullptr, "name", nullptr), nullptr);
    EXPECT_EQ(search_child_obj(nullptr, "name", "lan"), nullptr);
}

}  // namespace
