// Range records from the "min" and "max" texts of a parameter.
#include <cfloat>
#include <cstdint>
#include <cstdlib>

#include "apconf/ptype.h"
#include "ptype/target_parse.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

constexpr const char *function = "convert_ptype_range";

using range_owner = owner<void *, [](void *record) { free(record); }>;
using read_limit_fn = bool(uint32_t ptype, const char *text, void *limit);

// The type's own converter: so an integer limit lies inside the type's default range.
bool read_value_limit(uint32_t ptype, const char *text, void *limit)
{
    return convert_ptype_to_value(ptype, limit, text, nullptr) == 0;
}

// A length of 0 cannot be told from a text that is no number and is refused with it; a negative one wraps: kept.
bool read_length_limit(uint32_t, const char *text, void *limit)
{
    const auto length = static_cast<uint32_t>(parse_leading_int(text));
    *static_cast<uint32_t *>(limit) = length;
    return length != 0;
}

template <typename Range>
void *make_range(uint32_t ptype, const char *min_text, const char *max_text, Range defaults,
                 read_limit_fn *read_limit = read_value_limit)
{
    range_owner record(malloc(sizeof(Range)));
    if (!record) return nullptr;
    auto &range = *static_cast<Range *>(record.get());
    range = defaults;
    if (min_text && !read_limit(ptype, min_text, &range.min)) {
        LOG_AS(function, LOG_ERR, "convert ptype '%s' range min '%s' failed", get_ptype_name(ptype), min_text);
        return nullptr;
    }
    if (max_text && !read_limit(ptype, max_text, &range.max)) {
        LOG_AS(function, LOG_ERR, "convert ptype '%s' range max '%s' failed", get_ptype_name(ptype), max_text);
        return nullptr;
    }
    if (range.min > range.max) {
        LOG_AS(function, LOG_ERR, "convert ptype '%s' range min is more than max", get_ptype_name(ptype));
        return nullptr;
    }
    return record.release();
}

constexpr length_range default_lengths = {1, 10240};

}  // namespace
}  // namespace apconf

void *convert_ptype_range(uint32_t ptype, const char *min_text, const char *max_text)
{
    using namespace apconf;
    if (!min_text && !max_text) return nullptr;
    switch (ptype) {
        case PTYPE_SINT:
            return make_range(ptype, min_text, max_text, default_sint_range);
        case PTYPE_UINT8:
            return make_range(ptype, min_text, max_text, default_uint8_range);
        case PTYPE_UINT16:
            return make_range(ptype, min_text, max_text, default_uint16_range);
        case PTYPE_UINT:
            return make_range(ptype, min_text, max_text, default_uint_range);
        case PTYPE_UINT64:
            return make_range(ptype, min_text, max_text, uint64_range{0, UINT64_MAX});
        // The smallest positive float, so 0 and what is below it are out of a range that names only its maximum: kept.
        case PTYPE_FLOAT:
            return make_range(ptype, min_text, max_text, float_range{FLT_MIN, FLT_MAX});
        case PTYPE_STRING:
        case PTYPE_HEX_STR:
            return make_range(ptype, min_text, max_text, default_lengths, read_length_limit);
        default:
            return nullptr;
    }
}
