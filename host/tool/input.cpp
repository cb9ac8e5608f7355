// What the subcommands read: whole files or standard input, as text or as one JSON message.
#include "tool/input.h"

#include <fstream>
#include <iostream>
#include <iterator>

#include "tool/problem.h"

namespace apconf_host
{

namespace
{

// Where the text stops being JSON, for people: a line number from 1.
size_t line_of(const std::string &text, size_t position)
{
    size_t line = 1;
    for (size_t i = 0; i < position && i < text.size(); ++i) line += text[i] == '\n';
    return line;
}

struct tokener_release {
    void operator()(json_tokener *tokener) const { json_tokener_free(tokener); }
};

}  // namespace

std::string read_input(const std::string &file)
{
    if (file == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
    std::ifstream stream(file);
    if (!stream) throw failure(file + ": cannot be read");
    return {std::istreambuf_iterator<char>(stream), {}};
}

json_ptr parse_message(const std::string &text, const std::string &file)
{
    const std::unique_ptr<json_tokener, tokener_release> tokener(json_tokener_new());
    // The text is handed over with its NUL: it says that nothing follows.
    json_ptr message(json_tokener_parse_ex(tokener.get(), text.c_str(), static_cast<int>(text.size() + 1)));
    const auto error = json_tokener_get_error(tokener.get());
    if (error != json_tokener_success)
        throw failure(file + ", line " + std::to_string(line_of(text, json_tokener_get_parse_end(tokener.get()))) +
                      ": " + json_tokener_error_desc(error));
    const size_t end = json_tokener_get_parse_end(tokener.get());
    if (text.find_first_not_of(" \t\r\n", end) != std::string::npos)
        throw failure(file + ", line " + std::to_string(line_of(text, end)) + ": something follows the message");
    if (!json_object_is_type(message.get(), json_type_object)) throw failure(file + ": a message is a JSON object");
    return message;
}

}  // namespace apconf_host
