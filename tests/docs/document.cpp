#include "document.h"

#include <gtest/gtest.h>
#include <regex.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/lines.h"

namespace apconf_test
{
namespace
{

std::string trimmed(std::string text)
{
    std::erase(text, '`');
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> cells_of(const std::string &line)
{
    std::vector<std::string> cells;
    std::istringstream stream(line.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) cells.push_back(trimmed(cell));
    return cells;
}

}  // namespace

std::string source_file(const std::string &path)
{
    std::ifstream file(std::string(APCONF_SOURCE_DIR "/") + path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path << " cannot be read";
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<fenced_block> fenced_blocks(const std::string &document)
{
    std::vector<fenced_block> blocks;
    bool inside = false;
    for (const std::string &line : lines_of(document)) {
        if (line.starts_with("```")) {
            inside = !inside;
            const auto blank = std::min(line.find(' '), line.size());
            if (inside)
                blocks.push_back({line.substr(3, blank - 3), trimmed(line.substr(blank)), ""});
            else if (!blocks.back().text.empty())
                blocks.back().text.pop_back();
        } else if (inside) {
            blocks.back().text += line + "\n";
        }
    }
    EXPECT_FALSE(inside) << "a fence is open at the end";
    return blocks;
}

std::string block(const std::string &document, const std::string &label)
{
    std::vector<std::string> found;
    for (const fenced_block &each : fenced_blocks(document))
        if (each.language + " " + each.name == label) found.push_back(each.text);
    EXPECT_EQ(found.size(), 1U) << "blocks labelled " << label;
    return found.empty() ? "" : found.front();
}

std::string bytes(const std::string &document, const std::string &name)
{
    std::string result;
    for (const std::string &line : lines_of(block(document, "hex " + name))) {
        std::istringstream numbers(line.substr(0, line.find(';')));
        for (std::string number; numbers >> number;) {
            EXPECT_EQ(number.size(), 2U) << number;
            result += static_cast<char>(std::stoi(number, nullptr, 16));
        }
    }
    return result;
}

table table_below(const std::string &document, const std::string &heading)
{
    const auto lines = lines_of(document);
    auto line = std::find(lines.begin(), lines.end(), heading);
    EXPECT_NE(line, lines.end()) << "no heading " << heading;
    while (line != lines.end() && !line->starts_with("|")) ++line;
    table rows;
    for (; line != lines.end() && line->starts_with("|"); ++line) rows.push_back(cells_of(*line));
    EXPECT_GT(rows.size(), 2U) << "no table below " << heading;
    rows.erase(rows.begin(), rows.begin() + std::min<std::ptrdiff_t>(2, std::ssize(rows)));
    return rows;
}

std::vector<std::vector<std::string>> matches(const std::string &text, const std::string &expression)
{
    std::vector<std::vector<std::string>> found;
    regex_t compiled;
    EXPECT_EQ(regcomp(&compiled, expression.c_str(), REG_EXTENDED), 0) << expression;
    std::array<regmatch_t, 5> groups;
    for (const char *rest = text.c_str(); regexec(&compiled, rest, groups.size(), groups.data(), 0) == 0;) {
        found.emplace_back();
        for (size_t i = 0; i <= compiled.re_nsub && i < groups.size(); i++)
            found.back().push_back(groups[i].rm_so < 0 ? ""
                                                       : std::string(rest + groups[i].rm_so, rest + groups[i].rm_eo));
        rest += groups[0].rm_eo;
    }
    regfree(&compiled);
    return found;
}

std::string between(const std::string &text, const std::string &first, const std::string &last)
{
    const auto start = text.find(first);
    const auto end = start == std::string::npos ? start : text.find(last, start + first.size());
    EXPECT_NE(end, std::string::npos) << first << " ... " << last;
    return end == std::string::npos ? "" : text.substr(start + first.size(), end - start - first.size());
}

}  // namespace apconf_test
