// What code under test prints to a stream, as text, and command-tree files for it to read.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace apconf_test
{

// Calls `print` with a stream and returns what it wrote there.
template <typename Print>
std::string printed(Print print)
{
    char *text = nullptr;
    size_t size = 0;
    FILE *stream = open_memstream(&text, &size);
    print(stream);
    fclose(stream);
    const std::string result(text, size);
    free(text);
    return result;
}

inline std::string write_file(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

// A command-tree file whose root element holds `inner`.
inline std::string write_schema(const std::string &inner)
{
    return write_file("/tmp/schema.xml", "<tree>" + inner + "</tree>");
}

inline std::string repeated(int count, const std::string &text)
{
    std::string result;
    for (int i = 0; i < count; i++) result += text;
    return result;
}

}  // namespace apconf_test
