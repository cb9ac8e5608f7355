// Compares command lines as the tree that their indentation makes: a package's lines only with those of the same
// package.
#include "cli/line_difference.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

namespace apconf_host
{

namespace
{

struct entry {
    std::string real;
    std::string shown;
    std::vector<entry> below;
};

std::vector<entry> as_tree(const compared_lines &lines)
{
    std::istringstream real(lines.real);
    std::istringstream shown(lines.shown);
    std::vector<entry> top;
    for (entry line; std::getline(real, line.real) && std::getline(shown, line.shown);) {
        std::vector<entry> *level = &top;
        for (size_t depth = line.real.find_first_not_of(' '); depth > 0 && !level->empty(); --depth)
            level = &level->back().below;
        level->push_back(line);
    }
    return top;
}

// How long the longest common subsequence is of what follows each pair of places.
class common_lengths
{
public:
    common_lengths(const std::vector<entry> &before, const std::vector<entry> &after)
        : width_(after.size() + 1), lengths_((before.size() + 1) * width_)
    {
        for (size_t i = before.size(); i-- > 0;)
            for (size_t j = after.size(); j-- > 0;)
                lengths_[i * width_ + j] =
                    before[i].real == after[j].real ? at(i + 1, j + 1) + 1 : std::max(at(i + 1, j), at(i, j + 1));
    }
    uint32_t at(size_t i, size_t j) const { return lengths_[i * width_ + j]; }

private:
    size_t width_;
    std::vector<uint32_t> lengths_;
};

void add_whole(const entry &line, char sign, std::vector<changed_line> &changes)
{
    changes.push_back({sign, line.shown});
    for (const entry &below : line.below) add_whole(below, sign, changes);
}

void compare(const std::vector<entry> &before, const std::vector<entry> &after, std::vector<changed_line> &changes)
{
    const common_lengths common(before, after);
    size_t i = 0;
    size_t j = 0;
    while (i < before.size() || j < after.size()) {
        if (i < before.size() && j < after.size() && before[i].real == after[j].real) {
            const size_t heading = changes.size();
            changes.push_back({' ', after[j].shown});
            compare(before[i++].below, after[j++].below, changes);
            if (changes.size() == heading + 1) changes.pop_back();
        } else if (j == after.size() || (i < before.size() && common.at(i + 1, j) >= common.at(i, j + 1))) {
            add_whole(before[i++], '-', changes);
        } else {
            add_whole(after[j++], '+', changes);
        }
    }
}

}  // namespace

std::vector<changed_line> line_difference(const compared_lines &before, const compared_lines &after)
{
    std::vector<changed_line> changes;
    compare(as_tree(before), as_tree(after), changes);
    return changes;
}

}  // namespace apconf_host
