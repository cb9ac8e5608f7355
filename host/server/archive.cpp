// Keeps the newest numbered files of a directory.
#include "host/server/archive.h"

#include <unistd.h>

#include <utility>

#include "host/server/files.h"

namespace apconf_host
{

archive::archive(std::string directory, std::string suffix, size_t limit)
    : directory_(std::move(directory)), suffix_(std::move(suffix)), limit_(limit)
{
    for (const int number : numbers_in(directory_, suffix_)) numbers_.insert(number);
    prune();
}

void archive::added(int number)
{
    numbers_.insert(number);
    prune();
}

void archive::prune()
{
    while (numbers_.size() > limit_) {
        unlink(numbered_file(directory_, *numbers_.begin(), suffix_).c_str());
        numbers_.erase(numbers_.begin());
    }
}

}  // namespace apconf_host
