// What the set handlers of a large batch leave in `root`. For tests and for the benchmarks.
#pragma once

#include <vector>

#include "apconf/description.h"

namespace apconf_test
{

class batch
{
public:
    enum class extent {
        everything,  // all fields of all records and of all elements of their arrays, several elements in each list
        one_of_each  // all fields, but of arrays and lists the first element only
    };
    explicit batch(extent wanted) : extent_(wanted) {}
    batch(const batch &) = delete;
    batch &operator=(const batch &) = delete;

    // Both blocks must be unset.
    void fill();

    // Releases what a commit leaves to the setters. Call it after each commit.
    void release_rest();

private:
    int count_of(int all) const { return extent_ == extent::everything ? all : 1; }
    void fill_command(const apconf_command &command, char *record);
    void fill_record(int scope, void *record);
    template <typename Record>
    void fill_records(int scope, Record *records, int count);
    template <typename List>
    void fill_list(int scope, List &list);

    extent extent_;
    std::vector<char *> rest_;
};

}  // namespace apconf_test
