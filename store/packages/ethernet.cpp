// ethernet: one Ethernet port.
#include "store/packages/package.h"

PACKAGE(ethernet, ETHERNET)
// clang-format off

COMMAND(shutdown_cmd, flag(AT(shutdown_cmd.state)))
COMMAND(switchport_cmd, group(),
        FIELD("switchport_type", switchport_cmd.switchport_type, SWITCHPORT_TYPE),
        VALUES("vlanid", switchport_cmd.vlanid, UINT))
COMMAND(mtu_cmd, group(),
        FIELD("mtu", mtu_cmd.mtu, UINT))
COMMAND(ip_address_cmd, group(),
        FIELD("ip_type", ip_address_cmd.ip_type, IP_TYPE),
        FIELD("ip_addr", ip_address_cmd.ip_addr, IPV4_MASK))
COMMAND(pppoe_cmd, group(),
        FIELD("status", pppoe_cmd.status, STATUS))
COMMAND(pppoe_echo_interval_cmd, group(),
        FIELD("interval", pppoe_echo_interval_cmd.interval, UINT),
        FIELD("echo_times", pppoe_echo_interval_cmd.echo_times, UINT))
COMMAND(pppoe_user_cmd, group(),
        TEXT("username", pppoe_user_cmd.username),
        TEXT("passwd", pppoe_user_cmd.passwd, secret))

// clang-format on
END_PACKAGE(ethernet)
