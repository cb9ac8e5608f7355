// Growing heap strings and arrays, the look at zero bytes, and the memory size in the log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <syslog.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "apconf/util.h"
#include "support/log_capture.h"
#include "util/owners.h"

namespace
{

using apconf::heap_text;
using apconf_test::log_capture;

std::string appended(const char *start, const char *text, unsigned int n)
{
    char *buffer = start ? strdup(start) : nullptr;
    dynamic_strcatn(&buffer, text, n);
    const heap_text result(buffer);
    return buffer ? buffer : "(null)";
}

TEST(DynamicStrcatn, AppendsAtMostTheGivenNumberOfCharacters)
{
    EXPECT_EQ(appended(nullptr, "abcdef", 3), "abc");
    EXPECT_EQ(appended(nullptr, "abcdef", 6), "abcdef");
    EXPECT_EQ(appended(nullptr, "abcdef", 7), "abcdef");
    EXPECT_EQ(appended("xyz", "abcdef", 100), "xyzabcdef");
    EXPECT_EQ(appended("xyz", "abcdef", UINT_MAX), "xyzabcdef");
    EXPECT_EQ(appended("xyz", "abcdef", 1), "xyza");
    EXPECT_EQ(appended("", "abc", 2), "ab");
}

TEST(DynamicStrcatn, AppendingNothingStillMakesAString)
{
    EXPECT_EQ(appended(nullptr, "abc", 0), "");
    EXPECT_EQ(appended(nullptr, "", 3), "");
    EXPECT_EQ(appended("xyz", "abc", 0), "xyz");
    EXPECT_EQ(appended("xyz", "", 3), "xyz");
}

TEST(DynamicStrcatn, DoesNothingForANullText)
{
    EXPECT_EQ(appended(nullptr, nullptr, 3), "(null)");
    EXPECT_EQ(appended("xyz", nullptr, 3), "xyz");
}

TEST(DynamicStrcatn, LooksAtNoMoreCharactersThanItAppends)
{
    const std::vector<char> unterminated = {'a', 'b', 'c'};
    EXPECT_EQ(appended("x", unterminated.data(), 3), "xabc");
}

TEST(DynamicStrcat, AppendsTheWholeText)
{
    char *buffer = nullptr;
    dynamic_strcat(&buffer, nullptr);
    EXPECT_EQ(buffer, nullptr);
    dynamic_strcat(&buffer, "");
    EXPECT_STREQ(buffer, "");
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        const std::string piece = std::to_string(i) + ",";
        dynamic_strcat(&buffer, piece.c_str());
        expected += piece;
    }
    dynamic_strcat(&buffer, nullptr);
    EXPECT_EQ(buffer, expected);
    free(buffer);
}

struct member {
    uint32_t id;
    char name[12];
};

TEST(AddArrayMember, GrowsByOneFilledOrZeroedMember)
{
    void *array = nullptr;
    unsigned int count = 0;
    const member init = {7, "seven"};
    for (unsigned int i = 0; i < 100; ++i) {
        auto *added = static_cast<member *>(add_array_member(&array, &count, sizeof init, i % 2 ? nullptr : &init));
        ASSERT_NE(added, nullptr);
        ASSERT_EQ(count, i + 1);
        ASSERT_EQ(added, static_cast<member *>(array) + i);
        if (i % 2)
            EXPECT_EQ(memory_is_zero(added, sizeof *added), 0);
        else
            EXPECT_EQ(memcmp(added, &init, sizeof init), 0);
        added->id = i;
    }
    for (unsigned int i = 0; i < count; ++i) EXPECT_EQ(static_cast<member *>(array)[i].id, i);
    free(array);
}

TEST(AddArrayMember, ChangesNothingWhenTheSizeDoesNotFitOrIsZero)
{
    void *array = malloc(4);
    memcpy(array, "abc", 4);
    void *const before = array;
    unsigned int count = 1;
    for (const size_t size : {SIZE_MAX, SIZE_MAX / 2 + 1, size_t{0}}) {
        EXPECT_EQ(add_array_member(&array, &count, size, nullptr), nullptr);
        EXPECT_EQ(array, before);
        EXPECT_EQ(count, 1u);
    }
    EXPECT_STREQ(static_cast<char *>(array), "abc");
    free(array);
}

TEST(MemoryIsZero, GivesOneAsSoonAsAByteIsSet)
{
    unsigned char bytes[8] = {};
    EXPECT_EQ(memory_is_zero(bytes, 8), 0);
    for (int i = 0; i < 8; ++i) {
        for (const uint8_t byte : {uint8_t{1}, uint8_t{0x80}, uint8_t{0xFF}}) {
            bytes[i] = byte;
            EXPECT_EQ(memory_is_zero(bytes, 8), 1) << i;
            EXPECT_EQ(memory_is_zero(bytes, i), 0) << i;
            EXPECT_EQ(memory_is_zero(bytes, i + 1), 1) << i;
        }
        bytes[i] = 0;
    }
    memset(bytes, 0xFF, sizeof bytes);
    EXPECT_EQ(memory_is_zero(bytes, 8), 1);
}

TEST(MemoryIsZero, ScansNothingForALengthThatIsNotPositive)
{
    const char byte = 1;
    EXPECT_EQ(memory_is_zero(&byte, 0), 0);
    EXPECT_EQ(memory_is_zero(&byte, -1), 0);
    EXPECT_EQ(memory_is_zero(&byte, INT_MIN), 0);
    EXPECT_EQ(memory_is_zero(nullptr, 0), 0);
}

TEST(PrintMemSize, LogsTheWholeLineWithTheCallersPlace)
{
    log_capture log;
    print_mem_size("caller", 42);
    ASSERT_EQ(log.lines().size(), 1u);
    const auto &line = log.lines()[0];
    EXPECT_EQ(line.priority, LOG_ERR);
    EXPECT_EQ(line.function, "print_mem_size");
    EXPECT_THAT(line.text, testing::MatchesRegex("\\[caller:42\\]VmSize:[ \t]*[0-9]+ kB\n"));
}

TEST(PrintMemSize, LogsWhenTheStatusCannotBeOpened)
{
    rlimit usual;
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none = {0, usual.rlim_max};
    log_capture log;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    print_mem_size("caller", 42);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_TRUE(log.has(LOG_ERR, "print_mem_size", "open '/proc/" + std::to_string(getpid()) + "/status' failed"));
}

}  // namespace
