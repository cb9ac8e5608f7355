// The lines that were typed in earlier sessions, in a file that only its owner can read.
#pragma once

#include <string>
#include <vector>

namespace apconf_host
{

class history_file
{
public:
    static constexpr size_t most_lines = 1000;

    // An empty path: nothing is kept.
    explicit history_file(std::string path) : path_(std::move(path)) {}

    // ~/.apconf_history
    static history_file of_user();

    // The last lines; the file is cut down to them. A file that cannot be read holds none.
    std::vector<std::string> load() const;

    // Adds a line at once, so that several sessions can share the file and none is lost. A history that cannot be
    // written is no reason to stop.
    void append(const std::string &line) const;

private:
    std::string path_;
};

}  // namespace apconf_host
