// Texts of peers in log lines, and how much is logged.
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

quiet_log::quiet_log(int least) : mask_(setlogmask(0))  // 0 only asks
{
    if (!(mask_ & LOG_MASK(LOG_DEBUG))) setlogmask(LOG_UPTO(least));
}

}  // namespace apconf_host
