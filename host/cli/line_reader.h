// Command lines back into a configuration message: where the reader stands among the packages, and the message that
// the lines read so far make.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/matching.h"

namespace apconf_host
{

// What is wrong with a line.
struct line_problem {
    size_t column = 0;  // in bytes from 0
    std::string text;   // "'fast' is no value of channel; expected is one of 1, 2, ..."
};

class line_reader
{
public:
    explicit line_reader(const vocabulary &vocabulary);

    // Reads one line. Without indentation, as in a session: it belongs to the innermost package that knows its first
    // words, and leaves the packages inside that one. With it, to the package that is so many levels deep. `exit`
    // leaves a package, `end` all. Nothing of a faulty line is taken.
    std::optional<line_problem> read(const std::string &line);
    std::optional<line_problem> read_indented(const std::string &line);

    // Leaves the innermost package; all.
    void exit();
    void end();

    // The package in which the next line is looked up first, and where it stands: "radio 0", "bss 1". Empty at the top.
    const syntax_command &package() const;
    std::vector<std::string> place() const;
    // The same as a path: "config/radio[0]/bss[1]".
    const std::string &path() const { return levels_.back().path; }
    // The packages from the innermost one outwards, for completion.
    std::vector<const syntax_command *> packages() const;

    // {"config": {...}} of all lines read so far; borrowed. take() empties the reader, which keeps its place.
    json_object *message() const { return message_.get(); }
    // Nothing is set, removed or created in it; packages that were only entered do not count.
    bool empty() const;
    // A copy of it without packages that were only entered.
    json_ptr changes() const;
    json_ptr take();

    // The path of the command that the last line was, with its instance: "config/radio[0]/channel_cmd"; empty when the
    // line was empty, a comment, exit or end.
    const std::string &last_path() const { return last_path_; }

private:
    struct level {
        const syntax_command *package;
        json_ptr index;                 // null: none
        json_object *object = nullptr;  // its instance in the message, borrowed; null: not there yet
        std::string label;              // "radio 0"
        std::string path;               // "config/radio[0]"
    };
    std::optional<line_problem> read_words(const split_line &line, size_t innermost, size_t outermost);
    void enter(line_match match);
    void add(line_match match);
    json_object *instance(size_t depth);
    void leave_below(size_t depth);

    std::vector<level> levels_;
    json_ptr message_;
    std::string last_path_;
};

struct read_problem {
    size_t line = 0;    // from 1
    size_t column = 0;  // from 1
    std::string text;
};

struct read_result {
    json_ptr message;                    // {"config": {...}}; null when a line is faulty
    std::vector<read_problem> problems;  // of every faulty line
    std::vector<std::pair<std::string, size_t>>
        sources;  // command paths with their line, to place what is refused later
};

// The first line that a refused command, or something in a refused package, came from; 0 when none did.
size_t line_of(const read_result &read, const std::string &path);

// A whole text. It is read by its indentation when any line has some, else as a session.
read_result read_lines(const vocabulary &vocabulary, const std::string &text);

}  // namespace apconf_host
