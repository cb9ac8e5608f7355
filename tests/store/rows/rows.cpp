// A package whose rows are right, and with WRONG_ROW from 1 on one that is not: then it must not compile.
#include "store/packages/package.h"

PACKAGE(wmm, BSS)
// clang-format off

COMMAND(status_cmd, group(),
        FIELD("status", wmm.status_cmd.status, STATUS))
COMMAND(ssid_cmd, group(),
        TEXT("ssid", ssid_cmd.ssid))
COMMAND(transmit_rates_cmd, group(),
        VALUES("transmit_rates", transmit_rates_cmd.rates, RADIO_RATES))
COMMAND(wep_key_cmd, fixed_array(ARRAY(auth_open_wep.wep_key_cmd)),
        FIELD("type", auth_open_wep.wep_key_cmd[i].type, WEP_KEY_TYPE),
        TEXT("key", auth_open_wep.wep_key_cmd[i].key, secret))

#if WRONG_ROW == 1  // too wide for its type
COMMAND(wrong_cmd, group(), FIELD("lan_id", rts_threshold_cmd.rts, UINT8))
#elif WRONG_ROW == 2  // too narrow
COMMAND(wrong_cmd, group(), FIELD("rts", wired_lan_cmd.lan_id, UINT))
#elif WRONG_ROW == 3  // a number without the sign
COMMAND(wrong_cmd, group(), FIELD("rts", rts_threshold_cmd.rts, SINT))
#elif WRONG_ROW == 4  // a text where a number is
COMMAND(wrong_cmd, group(), FIELD("rts", rts_threshold_cmd.rts, STRING))
#elif WRONG_ROW == 5  // a number where a text is
COMMAND(wrong_cmd, group(), FIELD("ssid", ssid_cmd.ssid, UINT))
#elif WRONG_ROW == 6  // as wide, but no address with a mask
COMMAND(wrong_cmd, group(), FIELD("id", session_id_cmd.session_id_0, IPV4_MASK))
#elif WRONG_ROW == 7  // no text
COMMAND(wrong_cmd, group(), TEXT("rts", rts_threshold_cmd.rts))
#elif WRONG_ROW == 8  // no such member
COMMAND(wrong_cmd, group(), FIELD("status", wmm.status_cmd.mode, STATUS))
#elif WRONG_ROW == 9  // values of another type
COMMAND(wrong_cmd, group(), VALUES("rates", transmit_rates_cmd.rates, UINT16))
#elif WRONG_ROW == 10  // no such type
COMMAND(wrong_cmd, group(), FIELD("status", wmm.status_cmd.status, STATE))
#endif

// clang-format on
END_PACKAGE(wmm)
