// autorf: automatic channel and power of a radio.
#include "store/packages/package.h"

PACKAGE(autorf, RADIO)
// clang-format off

COMMAND(assignment_cmd, group(),
        FIELD("assignment", autorf.assignment_cmd.assignment, ARM_ASSIGNMENT))
COMMAND(client_aware_cmd, group(),
        FIELD("status", autorf.client_aware_cmd.status, STATUS))
COMMAND(back_off_cmd, group(),
        FIELD("back_off", autorf.back_off_cmd.back_off, UINT))
COMMAND(minimum_scan_time_cmd, group(),
        FIELD("minimum_scan_time", autorf.minimum_scan_time_cmd.minimum_scan_time, UINT))
COMMAND(scan_time_cmd, group(),
        FIELD("scan_time", autorf.scan_time_cmd.scan_time, UINT))
COMMAND(minimum_transmit_power_cmd, group(),
        FIELD("minimum_transmit_power", autorf.minimum_transmit_power_cmd.minimum_transmit_power, UINT))
COMMAND(maximum_transmit_power_cmd, group(),
        FIELD("maximum_transmit_power", autorf.maximum_transmit_power_cmd.maximum_transmit_power, UINT))
COMMAND(scan_enable_cmd, group(),
        FIELD("status", autorf.scan_enable_cmd.status, STATUS))

// clang-format on
END_PACKAGE(autorf)
