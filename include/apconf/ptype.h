/* SPDX-License-Identifier: MIT
 *
 * Parameter types (ptypes): how a command's argument is held in memory and how it is written as text.
 *
 * A ptype is a number from 0 to 82 that indexes the constant table `param_types`. Every type NAME has two converters,
 * NAME_to_ptype (text to value) and NAME_to_string (value to text); the 68 enumerated types also have a token table,
 * NAME_pairs. See apconf.h for the conventions that hold for all headers.
 */
#ifndef APCONF_PTYPE_H
#define APCONF_PTYPE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The types that are not enumerations: ROW(number, NAME, type of the value in memory).
 * The values of STRING, HEX_STR and BINARY point at the text that was converted; nothing is copied. A RAW_JSON slot is
 * as wide as a pointer and no converter touches it. */
#define APCONF_SCALAR_PTYPES(ROW)        \
    ROW(0, RAW_JSON, void *)             \
    ROW(1, SINT, int32_t)                \
    ROW(2, UINT8, uint8_t)               \
    ROW(3, UINT16, uint16_t)             \
    ROW(4, UINT, uint32_t)               \
    ROW(5, UINT64, uint64_t)             \
    ROW(6, FLOAT, float)                 \
    ROW(7, STRING, char *)               \
    ROW(8, HEX_STR, char *)              \
    ROW(9, IPV4, uint32_t)               \
    ROW(10, IPV4_MASK, struct ipv4_mask) \
    ROW(11, MAC_ADDR, struct mac_addr)   \
    ROW(14, TIME_HHMMSS, uint32_t)       \
    ROW(15, TXPOWER_TYPE, uint32_t)      \
    ROW(65, BINARY, char *)

/* The enumerated types: ROW(number, NAME, number of pairs in NAME_pairs). Their value is a 32-bit id. */
#define APCONF_ENUM_PTYPES(ROW)          \
    ROW(12, STATUS, 2)                   \
    ROW(13, BOOLEAN, 2)                  \
    ROW(16, WIRELESS_MODE, 32)           \
    ROW(17, CHANNEL, 38)                 \
    ROW(18, WMM_MAP, 4)                  \
    ROW(19, BEACON_RATE, 12)             \
    ROW(20, STA_ISOLATE_MODE, 4)         \
    ROW(21, SWITCHPORT_TYPE, 3)          \
    ROW(22, DHCP_TYPE, 2)                \
    ROW(23, AUTH_TYPE, 8)                \
    ROW(24, WEP_KEY_TYPE, 2)             \
    ROW(25, WPA_TYPE, 2)                 \
    ROW(26, RADIUS_SEVER_PORT, 2)        \
    ROW(27, ACCESS_LIST_TYPE, 3)         \
    ROW(28, COUNTRY_CODE, 26)            \
    ROW(29, IP_TYPE, 2)                  \
    ROW(30, IP_NAT_IF, 2)                \
    ROW(31, DNS_SERVER_TYPE, 2)          \
    ROW(32, CAPWAP_IF, 4)                \
    ROW(33, CAPWAP_CTL_TYPE, 2)          \
    ROW(34, LOCATION_MODE, 2)            \
    ROW(35, PING_TYPE, 2)                \
    ROW(36, UPIMG_TYPE, 3)               \
    ROW(37, UPIMG_SERVER_TYPE, 1)        \
    ROW(38, AP_MODE, 2)                  \
    ROW(39, SYSLOG_SEVERITY, 8)          \
    ROW(40, SYSLOG_FACILITY, 18)         \
    ROW(41, CIPHER_TYPE, 4)              \
    ROW(42, TUNNEL_MODE, 6)              \
    ROW(43, LOCATION_FEATURE, 3)         \
    ROW(44, REBOOT_TYPE, 5)              \
    ROW(45, MACAUTH_MODE, 2)             \
    ROW(46, MAC_CASE, 2)                 \
    ROW(47, MAC_DELIMITER, 5)            \
    ROW(48, LED_TYPE, 6)                 \
    ROW(49, LED_STATUS, 2)               \
    ROW(50, LED_COLOR, 3)                \
    ROW(51, MONTH, 12)                   \
    ROW(52, WEEKDAY, 7)                  \
    ROW(53, TIMEZONE, 33)                \
    ROW(54, IMAGE_TYPE, 6)               \
    ROW(55, IMAGE_SOURCE, 2)             \
    ROW(56, ARM_ASSIGNMENT, 7)           \
    ROW(57, BAND_STEERING_MODE, 2)       \
    ROW(58, ADDR_TYPE, 3)                \
    ROW(59, COREDUMP_TYPE, 3)            \
    ROW(60, TIMERANGE_TYPE, 3)           \
    ROW(61, FTPS_INTERVAL_TYPE, 3)       \
    ROW(62, FTPS_POLICY_TYPE, 5)         \
    ROW(63, FTPS_MODE_TYPE, 10)          \
    ROW(64, FTPS_COMPRESS_TYPE, 3)       \
    ROW(66, CERT_FORMAT, 3)              \
    ROW(67, PSK_FORMAT, 3)               \
    ROW(68, BEACON_REQUEST_MODE, 3)      \
    ROW(69, MIN_RATE, 31)                \
    ROW(70, RADIO_RATES, 12)             \
    ROW(71, MAC_CHARACTER, 3)            \
    ROW(72, OPTION82_ID_TYPE, 5)         \
    ROW(73, STRING_FORMAT, 3)            \
    ROW(74, HS20_ACCESS_NETWORK_TYPE, 6) \
    ROW(75, HS20_NETWORK_AUTH_TYPE, 4)   \
    ROW(76, HS20_IPV4_TYPE, 8)           \
    ROW(77, HS20_IPV6_TYPE, 3)           \
    ROW(78, HS20_WAN_LINK_STATUS, 4)     \
    ROW(79, MFP_MODE, 3)                 \
    ROW(80, FORWARD_MODE, 3)             \
    ROW(81, MCAST_RATE, 12)              \
    ROW(82, HE_SHORTGI, 4)

/* PTYPE_STATUS is 12, and so on for all 83; PTYPE_COUNT is the first number that is no type. */
enum {
#define APCONF_PTYPE_NUMBER(number, NAME, detail) PTYPE_##NAME = number,
    APCONF_SCALAR_PTYPES(APCONF_PTYPE_NUMBER) APCONF_ENUM_PTYPES(APCONF_PTYPE_NUMBER)
#undef APCONF_PTYPE_NUMBER
        PTYPE_COUNT = 83
};

/* Value of IPV4_MASK: an address with its first octet in the most significant byte, and a prefix length, 0 to 32. */
struct ipv4_mask {
    uint32_t address;
    uint32_t prefix;
};

/* Value of MAC_ADDR: the six octets in text order. */
struct mac_addr {
    uint8_t octet[6];
};

/* One token of an enumerated type. */
struct enum_pair {
    int32_t id;
    const char *token;
};

/* Ranges, both limits included. The text types hold lengths in characters, two 32-bit numbers on every machine. */
struct sint_range {
    int32_t min, max;
};
struct uint8_range {
    uint8_t min, max;
};
struct uint16_range {
    uint16_t min, max;
};
struct uint_range {
    uint32_t min, max;
};
struct uint64_range {
    uint64_t min, max;
};
struct float_range {
    float min, max;
};
struct length_range {
    uint32_t min, max;
};

/* Text to value. `value_out` is a slot of the type's size, or null to validate only; `range` the type's range record or
 * null. Returns 0, or -1 with `value_out` untouched (also for a null `text`). Range and token failures are logged,
 * syntax failures are silent. */
typedef int ptype_to_value_fn(const char *text, void *value_out, const void *range);

/* Value to text. Writes at most `text_size` bytes to `text_out`. Returns 0; -1 for a null or invalid value; and for
 * STRING, HEX_STR and BINARY a positive number, the length the buffer was measured against, when it is too small (then
 * nothing is written). STRING needs strlen + 1 bytes and returns strlen; HEX_STR and BINARY need strlen + 2 bytes and
 * return strlen + 1. With a null `text_out` the numeric and text types only check. */
typedef int ptype_to_string_fn(const void *value, char *text_out, size_t text_size, const void *range);

/* One type of the registry. */
struct ptype_record {
    const char *name;
    int32_t ptype; /* equals the record's index */
    int32_t size;  /* bytes of a value in memory, and the step between the values of an array */
    ptype_to_value_fn *to_value;
    ptype_to_string_fn *to_string;
};

/* How a listing shows a parameter of this type: `format` takes the two limits as texts. */
struct ptype_info {
    const char *name;
    const char *min;
    const char *max;
    const char *format;
};

enum { PARAM_PTYPE_INFO_COUNT = 13 };

#pragma GCC visibility push(default)

extern const struct ptype_record param_types[PTYPE_COUNT];
extern const struct ptype_info param_ptype_info[PARAM_PTYPE_INFO_COUNT];

/* Used by the integer converters when they are given no range. */
extern const struct sint_range default_sint_range;
extern const struct uint8_range default_uint8_range;
extern const struct uint16_range default_uint16_range;
extern const struct uint_range default_uint_range;

/* int NAME_to_ptype(const char *, void *, const void *) and int NAME_to_string(const void *, char *, size_t,
 * const void *) for all 83 types; struct enum_pair NAME_pairs[count] for the enumerated ones. */
#define APCONF_DECLARE_CONVERTERS(number, NAME, detail)                        \
    int NAME##_to_ptype(const char *text, void *value_out, const void *range); \
    int NAME##_to_string(const void *value, char *text_out, size_t text_size, const void *range);
#define APCONF_DECLARE_PAIRS(number, NAME, count) extern const struct enum_pair NAME##_pairs[count];
APCONF_SCALAR_PTYPES(APCONF_DECLARE_CONVERTERS)
APCONF_ENUM_PTYPES(APCONF_DECLARE_CONVERTERS)
APCONF_ENUM_PTYPES(APCONF_DECLARE_PAIRS)
#undef APCONF_DECLARE_CONVERTERS
#undef APCONF_DECLARE_PAIRS

/* The number of the type called exactly `name` (not null), or -1. */
int get_ptype_by_name(const char *name);

/* Bytes of a value of the type, or -1 for a number of 83 or more. */
int get_ptype_size(uint32_t ptype);

/* The type's name (static), or null for a number of 83 or more. */
const char *get_ptype_name(uint32_t ptype);

/* The type's converters by number; -1 for a number of 83 or more. No range reaches a value-to-text conversion. */
int convert_ptype_to_value(uint32_t ptype, void *value_out, const char *text, const void *range);
int convert_ptype_to_string(uint32_t ptype, const void *value, char *text_out, size_t text_size);

/* 0 when `text` is valid for the type and within `range` (null: the type's default), else -1. */
int check_ptype_string(uint32_t ptype, const char *text, const void *range);

/* Always -1, but 0 for RAW_JSON: the value is handed over as the output buffer and the value itself is null. Kept:
 * callers know it as it is. */
int check_ptype_value(uint32_t ptype, const void *value, const void *range);

/* The value as text in one static buffer of 256 bytes that every call overwrites, or null when it does not convert or
 * does not fit. */
const char *get_ptype_value_string(uint32_t ptype, const void *value);

/* Verifies `param_types`; logs the first bad record and stops the process. */
void check_ptype_define(void);

/* The id of the first of `count` pairs whose token equals `text` without regard to case, or -1. */
int get_enum_id(const struct enum_pair *pairs, int count, const char *text);

/* The token of the first of `count` pairs with this id, or null. */
const char *get_enum_name(const struct enum_pair *pairs, int count, int id);

/* A new range record from the texts of a parameter's "min" and "max" (either may be null: the type's default limit).
 * Types 1 to 8 have one. Null, logged where it is a mistake, when the type takes no range, when both texts are null, on
 * a limit that does not convert and when min is above max. The caller releases it with free(). */
void *convert_ptype_range(uint32_t ptype, const char *min_text, const char *max_text);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
