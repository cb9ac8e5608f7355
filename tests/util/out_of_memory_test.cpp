// What the tools leave behind when an allocation fails: everything as it was.
#include <gtest/gtest.h>
#include <json-c/json.h>

#include "apconf/util.h"
#include "support/failing_allocation.h"
#include "util/owners.h"

namespace
{

using apconf_test::failing_allocation;

class OutOfMemory : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!apconf_test::can_fail_allocations) GTEST_SKIP() << "a sanitizer owns the allocator";
    }
};

TEST_F(OutOfMemory, AStringStaysAsItWas)
{
    apconf::heap_text kept(strdup("kept"));
    char *buffer = kept.get(), *empty = nullptr;
    {
        const failing_allocation failing;
        dynamic_strcat(&buffer, "more");
        dynamic_strcatn(&buffer, "more", 2);
        dynamic_strcat(&empty, "more");
    }
    EXPECT_EQ(buffer, kept.get());
    EXPECT_STREQ(buffer, "kept");
    EXPECT_EQ(empty, nullptr);
}

TEST_F(OutOfMemory, AnArrayStaysAsItWas)
{
    void *array = nullptr;
    unsigned int count = 0;
    const int init = 7;
    ASSERT_NE(add_array_member(&array, &count, sizeof init, &init), nullptr);
    void *const before = array;
    void *added;
    {
        const failing_allocation failing;
        added = add_array_member(&array, &count, sizeof init, &init);
    }
    EXPECT_EQ(added, nullptr);
    EXPECT_EQ(array, before);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(*static_cast<int *>(array), 7);
    free(array);
}

TEST_F(OutOfMemory, ASlotKeepsItsValueAndTheNewOneIsReleased)
{
    const apconf::json_ptr kept(json_object_new_int(1));
    json_object *value = kept.get();
    json_object *added = json_object_new_int(2);
    json_object_get(added);
    {
        const failing_allocation failing;
        add_json_obj(&value, added);
    }
    EXPECT_EQ(value, kept.get());
    EXPECT_EQ(json_object_put(added), 1);
}

}  // namespace
