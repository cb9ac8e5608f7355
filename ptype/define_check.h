// The start-up check of a ptype table, apart from the one table there is so that a bad one can be tried.
#pragma once

#include "apconf/ptype.h"
#include "util/always_assert.h"
#include "util/log.h"

namespace apconf
{

inline bool is_sound(const ptype_record &record, int index)
{
    return record.ptype == index && record.to_value && record.to_string && record.name;
}

// Logs the first bad record of `records` (PTYPE_COUNT of them) and stops the process.
inline void check_ptype_define(const ptype_record *records)
{
    for (int index = 0; index < PTYPE_COUNT; ++index) {
        const ptype_record &record = records[index];
        if (is_sound(record, index)) continue;
        LOG(LOG_ERR, "ptype define error: index:%d, name:%p, ptype:%d, to_value_handler:%p, to_string_handler:%p",
            index, static_cast<const void *>(record.name), record.ptype,
            reinterpret_cast<const void *>(record.to_value), reinterpret_cast<const void *>(record.to_string));
        ALWAYS_ASSERT(false);
    }
}

}  // namespace apconf
