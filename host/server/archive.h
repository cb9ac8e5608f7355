// The files that the server keeps of handled messages, in "old" and in "bad": only the newest ones, because they lie in
// memory.
#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace apconf_host
{

class archive
{
public:
    archive(std::string directory, std::string suffix, size_t limit);

    // Notes that file `number` has been written, and removes the oldest ones beyond the limit.
    void added(int number);
    bool holds(int number) const { return numbers_.contains(number); }
    bool empty() const { return numbers_.empty(); }
    const std::set<int> &numbers() const { return numbers_; }

private:
    void prune();

    std::string directory_;
    std::string suffix_;
    size_t limit_;
    std::set<int> numbers_;
};

}  // namespace apconf_host
