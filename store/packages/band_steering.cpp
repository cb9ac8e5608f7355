// band_steering: moving stations of a BSS to the better band.
#include "store/packages/package.h"

PACKAGE(band_steering, BSS)
// clang-format off

COMMAND(band_steering_cmd, group(),
        FIELD("status", band_steering.band_steering_cmd.status, STATUS))
COMMAND(band_steering_mode_cmd, group(),
        FIELD("mode", band_steering.band_steering_mode_cmd.mode, BAND_STEERING_MODE))
COMMAND(band_steering_count_cmd, group(),
        FIELD("count", band_steering.band_steering_count_cmd.count, UINT))

// clang-format on
END_PACKAGE(band_steering)
