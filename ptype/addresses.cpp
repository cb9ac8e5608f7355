// Converters of the address and time types and of TXPOWER_TYPE. Their failures are silent and no range applies.
#include <arpa/inet.h>
#include <strings.h>

#include <cstdio>

#include "apconf/ptype.h"
#include "ptype/slots.h"
#include "ptype/target_parse.h"

using apconf::copy_cut;
using apconf::load;
using apconf::scan_fields;
using apconf::store;

// sscanf's leniency is kept: blanks and a sign before a field, one digit instead of two, anything behind the sixth.
int MAC_ADDR_to_ptype(const char *text, void *value_out, const void *)
{
    if (!text) return -1;
    unsigned field[6];
    if (sscanf(text, "%02x:%02x:%02x:%02x:%02x:%02x", &field[0], &field[1], &field[2], &field[3], &field[4],
               &field[5]) != 6)
        return -1;
    mac_addr address;
    for (int i = 0; i < 6; ++i) address.octet[i] = static_cast<uint8_t>(field[i]);
    store(value_out, address);
    return 0;
}

int MAC_ADDR_to_string(const void *value, char *text_out, size_t text_size, const void *)
{
    if (!value) return -1;
    if (!text_out) return 0;
    const auto address = load<mac_addr>(value);
    const uint8_t(&octet)[6] = address.octet;
    snprintf(text_out, text_size, "%02X:%02X:%02X:%02X:%02X:%02X", octet[0], octet[1], octet[2], octet[3], octet[4],
             octet[5]);
    return 0;
}

int TIME_HHMMSS_to_ptype(const char *text, void *value_out, const void *)
{
    uint32_t field[3];
    if (!text || !scan_fields(text, "::", field)) return -1;
    const auto [hours, minutes, seconds] = field;
    if (hours >= 24 || minutes >= 60 || seconds >= 60) return -1;
    store(value_out, hours * 3600 + minutes * 60 + seconds);
    return 0;
}

// Neither padded nor limited to a day: kept.
int TIME_HHMMSS_to_string(const void *value, char *text_out, size_t text_size, const void *)
{
    if (!value) return -1;
    if (!text_out) return 0;
    const auto time = load<uint32_t>(value);
    snprintf(text_out, text_size, "%u:%u:%u", time / 3600, time % 3600 / 60, time % 60);
    return 0;
}

// inet_aton decides about the value, which reads a field with a leading zero as octal; the scan refuses its short
// forms.
int IPV4_to_ptype(const char *text, void *value_out, const void *)
{
    in_addr address;
    uint32_t field[4];
    if (!text || inet_aton(text, &address) == 0 || !scan_fields(text, "...", field)) return -1;
    store(value_out, ntohl(address.s_addr));
    return 0;
}

int IPV4_to_string(const void *value, char *text_out, size_t text_size, const void *)
{
    if (!value) return -1;
    const in_addr address = {htonl(load<uint32_t>(value))};
    copy_cut(text_out, text_size, inet_ntoa(address));
    return 0;
}

int IPV4_MASK_to_ptype(const char *text, void *value_out, const void *)
{
    uint32_t field[5];
    if (!text || !scan_fields(text, ".../", field)) return -1;
    ipv4_mask mask = {0, field[4]};
    for (int i = 0; i < 4; ++i) {
        if (field[i] > 255) return -1;
        mask.address = mask.address << 8 | field[i];
    }
    if (mask.prefix > 32) return -1;
    store(value_out, mask);
    return 0;
}

// Prints the least significant byte first, so the octets come out in the reverse order of the text that was read: kept.
int IPV4_MASK_to_string(const void *value, char *text_out, size_t text_size, const void *)
{
    if (!value) return -1;
    if (!text_out) return 0;
    const auto [address, prefix] = load<ipv4_mask>(value);
    snprintf(text_out, text_size, "%u.%u.%u.%u/%u", address & 255, address >> 8 & 255, address >> 16 & 255,
             address >> 24, prefix);
    return 0;
}

int TXPOWER_TYPE_to_ptype(const char *text, void *value_out, const void *)
{
    if (!text) return -1;
    store(value_out, uint32_t{strcasecmp(text, "percents") != 0});
    return 0;
}

int TXPOWER_TYPE_to_string(const void *value, char *text_out, size_t text_size, const void *)
{
    if (!value) return -1;
    const bool percents = load<uint32_t>(value) == 0;
    copy_cut(text_out, percents ? text_size : text_size > 0, percents ? "percents" : "");
    return percents ? 0 : -1;
}
