/* SPDX-License-Identifier: MIT
 *
 * The package tables: the command tree itself. Each is closed by a record whose name is null. They are writable,
 * because the loader gives the records their parameters and hosts install their set and no handlers.
 */
#ifndef APCONF_PACKAGES_H
#define APCONF_PACKAGES_H

#include "apconf/command_tree.h"

#ifdef __cplusplus
extern "C" {
#endif

/* All packages: ROW(name) for lib_pkg_<name>, in catalogue order. */
#define APCONF_PACKAGES(ROW)  \
    ROW(access_list)          \
    ROW(auth_open_wep)        \
    ROW(auth_open_wpa)        \
    ROW(auth_open_wpa2)       \
    ROW(auth_shared_wep)      \
    ROW(auth_wpa2_wpa3)       \
    ROW(auth_wpa3_sae)        \
    ROW(auth_wpa_wpa2)        \
    ROW(autorf)               \
    ROW(band_steering)        \
    ROW(black_list)           \
    ROW(bss)                  \
    ROW(capwap)               \
    ROW(celluar)              \
    ROW(config)               \
    ROW(dhcp_option82)        \
    ROW(dhcp_server)          \
    ROW(dns)                  \
    ROW(dos)                  \
    ROW(dot11k_cfg)           \
    ROW(dpi)                  \
    ROW(ethernet)             \
    ROW(ftp)                  \
    ROW(ip_acl)               \
    ROW(location)             \
    ROW(multicast_to_unicast) \
    ROW(nat)                  \
    ROW(ntp)                  \
    ROW(passpoint_anqp)       \
    ROW(passpoint_ie)         \
    ROW(pool)                 \
    ROW(radio)                \
    ROW(redis)                \
    ROW(root)                 \
    ROW(vlan)                 \
    ROW(webauth_parameter)    \
    ROW(wmm)

enum {
    APCONF_PACKAGE_COUNT = 37,
    APCONF_RECORD_COUNT = 292 /* in all tables together, the closing records not counted */
};

#pragma GCC visibility push(default)

#define APCONF_DECLARE_PACKAGE(name) extern struct cmd_node lib_pkg_##name[];
APCONF_PACKAGES(APCONF_DECLARE_PACKAGE)
#undef APCONF_DECLARE_PACKAGE

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

#endif
