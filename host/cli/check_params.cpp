// One PARAM of a command-tree file, by itself: its options, and its limits, default and choices as values of its ptype.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

#include "cli/check_parts.h"
#include "expectation.h"

namespace apconf_host
{

namespace
{

struct free_release {
    void operator()(void *memory) const { free(memory); }
};
using range_ptr = std::unique_ptr<void, free_release>;

const char *or_null(const std::string &text)
{
    return text.empty() ? nullptr : text.c_str();
}

class param_checker
{
public:
    param_checker(const xmlNode *param, uint32_t ptype, element_faults &faults)
        : param_(param), ptype_(ptype), faults_(faults)
    {
    }

    uint8_t check()
    {
        check_option();
        check_range();
        const char *text = get_xmlnode_attr(param_, "default");
        if (text && !converts(text)) refuse("default", text, accepted_by(ptype_, range_.get()));
        if (flags_ & PARAM_OPTION_LIST) check_choices();
        return flags_;
    }

private:
    bool converts(const char *text) const { return convert_ptype_to_value(ptype_, nullptr, text, range_.get()) == 0; }

    void check_option()
    {
        const std::string option = attribute(param_, "option");
        resolve_param_option_attr(option.c_str(), &flags_);
        size_t begin = 0;
        while (begin < option.size()) {
            const size_t comma = std::min(option.find(',', begin), option.size());
            const std::string word = option.substr(begin, comma - begin);
            begin = comma + 1;
            uint8_t flag = 0;
            resolve_param_option_attr(word.c_str(), &flag);
            if (!flag) refuse("option", word, "hidden, optional, list or pindex");
        }
    }

    void check_range()
    {
        const std::string min = attribute(param_, "min");
        const std::string max = attribute(param_, "max");
        range_.reset(convert_ptype_range(ptype_, or_null(min), or_null(max)));
        if (range_ || (min.empty() && max.empty())) return;
        const bool takes_range = range_ptr(convert_ptype_range(ptype_, "1", "1")) != nullptr;
        const bool min_is_good = min.empty() || range_ptr(convert_ptype_range(ptype_, min.c_str(), nullptr));
        const bool max_is_good = max.empty() || range_ptr(convert_ptype_range(ptype_, nullptr, max.c_str()));
        const std::string type = get_ptype_name(ptype_);
        const std::string limit =
            ptype_ == PTYPE_STRING || ptype_ == PTYPE_HEX_STR ? "a length of at least 1" : accepted_by(ptype_, nullptr);
        if (!takes_range)
            refuse(min.empty() ? "max" : "min", min.empty() ? max : min, "no limit: " + type + " has no range");
        else if (!min_is_good)
            refuse("min", min, limit);
        else if (!max_is_good)
            refuse("max", max, limit);
        else
            refuse("min", min, "a limit that is not above max '" + max + "'");
    }

    void check_choices()
    {
        std::set<std::string> seen;
        for (const xmlNode *choice : children_of(param_)) {
            const std::string name = attribute(choice, "name");
            if (!is_item(choice) || name.empty()) continue;
            if (!converts(name.c_str()))
                faults_.add(choice, refused("choice", name, accepted_by(ptype_, range_.get())));
            else if (!seen.insert(name).second)
                faults_.add(choice, refused("choice", name, "one element a choice, and this is the second"));
        }
    }

    void refuse(const char *what, const std::string &value, const std::string &accepted)
    {
        faults_.add(param_, refused(what, value, accepted));
    }

    const xmlNode *param_;
    uint32_t ptype_;
    element_faults &faults_;
    range_ptr range_;
    uint8_t flags_ = 0;
};

}  // namespace

uint8_t check_param(const xmlNode *param, uint32_t ptype, element_faults &faults)
{
    return param_checker(param, ptype, faults).check();
}

}  // namespace apconf_host
