// Texts of peers in log lines.
#include "host/server/log.h"

namespace apconf_host
{

std::string one_line(std::string_view text, size_t limit)
{
    std::string line(text.substr(0, limit));
    for (char &character : line) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7f) character = '?';
    }
    if (text.size() > limit) line += "...";
    return line;
}

}  // namespace apconf_host
