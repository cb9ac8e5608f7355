// webauth_parameter: the web authentication portal of a BSS.
#include "store/packages/package.h"

PACKAGE(webauth_parameter, BSS)
// clang-format off

COMMAND(url_parameter_cmd, group(),
        FIELD("vlan", webauth_parameter.url_parameter_cmd.vlan, UINT),
        FIELD("configure", webauth_parameter.url_parameter_cmd.configure, UINT))
COMMAND(portal_url_cmd, fixed_array(ARRAY(webauth_parameter.portal_url_cmd)),
        FIELD("index", webauth_parameter.portal_url_cmd[i].index, UINT, index_key),
        FIELD("format", webauth_parameter.portal_url_cmd[i].format, UINT),
        TEXT("nickname", webauth_parameter.portal_url_cmd[i].nickname))
COMMAND(dmi_type_cmd, group(),
        FIELD("type", webauth_parameter.dmi_type_cmd.type, UINT))
COMMAND(portal_dmi_cmd, fixed_array(ARRAY(webauth_parameter.portal_dmi_cmd)),
        FIELD("ip", webauth_parameter.portal_dmi_cmd[i].ip, IPV4),
        TEXT("domain", webauth_parameter.portal_dmi_cmd[i].domain))
COMMAND(http_login_cmd, group(),
        FIELD("status", webauth_parameter.http_login_cmd.status, STATUS),
        FIELD("portal_type", webauth_parameter.http_login_cmd.portal_type, UINT),
        FIELD("portal_ip", webauth_parameter.http_login_cmd.portal_ip, IPV4),
        FIELD("redir_ip", webauth_parameter.http_login_cmd.redir_ip, IPV4),
        FIELD("ac_ip", webauth_parameter.http_login_cmd.ac_ip, IPV4),
        FIELD("ac_mac", webauth_parameter.http_login_cmd.ac_mac, MAC_ADDR),
        FIELD("nas_ip", webauth_parameter.http_login_cmd.nas_ip, IPV4),
        TEXT("url", webauth_parameter.http_login_cmd.url),
        TEXT("ac_name", webauth_parameter.http_login_cmd.ac_name),
        TEXT("ssid", webauth_parameter.http_login_cmd.ssid))
COMMAND(http_logout_cmd, group(),
        FIELD("status", webauth_parameter.http_logout_cmd.status, STATUS),
        FIELD("portal_type", webauth_parameter.http_logout_cmd.portal_type, UINT),
        FIELD("portal_ip", webauth_parameter.http_logout_cmd.portal_ip, IPV4),
        FIELD("redir_ip", webauth_parameter.http_logout_cmd.redir_ip, IPV4),
        FIELD("ac_ip", webauth_parameter.http_logout_cmd.ac_ip, IPV4),
        FIELD("ac_mac", webauth_parameter.http_logout_cmd.ac_mac, MAC_ADDR),
        FIELD("nas_ip", webauth_parameter.http_logout_cmd.nas_ip, IPV4),
        TEXT("url", webauth_parameter.http_logout_cmd.url),
        TEXT("ac_name", webauth_parameter.http_logout_cmd.ac_name),
        TEXT("ssid", webauth_parameter.http_logout_cmd.ssid))
COMMAND(http_parameter_cmd, group(),
        FIELD("vlan", webauth_parameter.http_parameter_cmd.vlan, UINT),
        FIELD("configure", webauth_parameter.http_parameter_cmd.configure, UINT))
COMMAND(http_url_cmd, fixed_array(ARRAY(webauth_parameter.http_url_cmd)),
        TEXT("src", webauth_parameter.http_url_cmd[i].src),
        TEXT("dst", webauth_parameter.http_url_cmd[i].dst))

// clang-format on
END_PACKAGE(webauth_parameter)
