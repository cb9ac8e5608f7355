// An interactive session without its terminal: lines go in, what they answer comes out. Configuration lines are
// collected in a candidate, which `commit` queues as one batch.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/line_reader.h"
#include "shell/access_point.h"
#include "shell/own_commands.h"

namespace apconf_host
{

// What was wrong with a line, and where; no place: with what it asked for.
struct problem {
    std::optional<size_t> column;  // in bytes from 0
    std::string text;              // one or more lines, without the last newline
};

struct reply {
    std::string output;                 // whole lines
    std::optional<problem> wrong = {};  // nothing was changed then
    bool keepable = false;              // may be kept in a file: understood, and without key or password
};

struct completion {
    std::string insertion;                // to be typed at the cursor
    std::vector<std::string> candidates;  // when nothing can be typed because several words can follow
    std::string help;                     // when it takes a value of one's own
};

class session
{
public:
    session(const vocabulary &vocabulary, access_point &access_point);

    reply execute(const std::string &line);

    // Whoever types sees the answers to all lines so far: what follows is not part of the same text.
    void pause();

    // `exit` at the top, or `quit`.
    bool ended() const { return ended_; }
    void stay() { ended_ = false; }
    bool has_changes() const { return !reader_.empty(); }

    // "apconf(radio 0, bss 1)*> "; the star stands for uncommitted changes.
    std::string prompt() const;

    // Of the line as far as the cursor.
    completion complete(const std::string &line) const;
    std::string inline_help(const std::string &line) const;

    // Lines of earlier sessions, for `history`.
    void remember(const std::vector<std::string> &lines);

    // The columns that help is laid out for.
    void set_width(size_t columns) { width_ = columns; }

private:
    reply run(const std::string &line);
    reply run_own(const split_line &split, size_t length);
    std::string output_of(const own_match &match);
    std::string show() const;
    std::string show_json() const;
    std::string show_changes() const;
    std::string commit(int seconds);  // 0: it stays without confirmation
    std::string discard();
    void leave(size_t indentation);

    reply read(const std::string &line, const split_line &split);
    problem explain(const line_problem &problem, const split_line &split) const;
    size_t depth_of(const split_line &split, size_t indentation) const;
    const syntax_command &package_at(size_t depth) const;
    std::vector<offer> offers(const std::vector<word> &words, const std::string &typed) const;

    const vocabulary &vocabulary_;
    access_point &access_point_;
    line_reader reader_;
    std::vector<std::string> history_;
    size_t width_ = 80;
    bool ended_ = false;
    bool faulty_ = false;    // a configuration line since the last pause was refused
    bool indented_ = false;  // the text that is being read shows its levels by indentation
    size_t base_ = 0;        // the depth that such a text counts from: that of the last line without indentation
};

}  // namespace apconf_host
