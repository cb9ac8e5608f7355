// Messages with random valid values for any command, from the loaded schema and the descriptions.
#pragma once

#include <random>
#include <set>

#include "host/instances.h"
#include "host/json.h"

namespace apconf_test
{

class random_message
{
public:
    // `density`: of 100 commands, how many get a value.
    random_message(uint64_t seed, unsigned density) : source_(seed), density_(density) {}

    // {"ACTION": "set", "config": {...}}
    apconf_host::json_ptr make();

    // The commands that messages have held so far.
    const std::set<const cmd_node *> &made() const { return made_; }

    // What stands below one instance of a package.
    json_object *package(const cmd_node &node);

    // The argument object of one command, all keys given.
    json_object *arguments(const cmd_node &node, const apconf_command &command);

    // Likewise, with those keys that must be given, and some of the others.
    json_object *some_arguments(const cmd_node &node, const apconf_command &command);

    // An index that an instance of an iterating package can have.
    std::string index(const cmd_node &node, const apconf_command &described);

    uint64_t number(uint64_t least, uint64_t most)
    {
        return std::uniform_int_distribution<uint64_t>(least, most)(source_);
    }
    bool chance(unsigned percent) { return number(1, 100) <= percent; }

private:
    json_object *instances(const cmd_node &node, const apconf_command &command);
    void fill_if_bare(const cmd_node &node, json_object *instance);
    json_object *command(const cmd_node &node, const apconf_command &command);
    json_object *elements(const cmd_node &node, const apconf_command &command);
    json_object *value(const cmd_node &node, const apconf_field &field);
    std::string single_value(const cmd_node &node, const apconf_field &field);
    std::string text(uint32_t ptype, const void *range);

    std::mt19937_64 source_;
    unsigned density_;
    std::set<const cmd_node *> made_;
};

}  // namespace apconf_test
