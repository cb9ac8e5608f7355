// Puts together what is known about a command.
#include "cli/facts.h"

#include <algorithm>

#include "block.h"
#include "cli/listing.h"
#include "cli/matching.h"
#include "instances.h"

namespace apconf_host
{

namespace
{

std::string help_text(const std::string &key)
{
    return key.empty() ? "" : get_help_string(key.c_str());
}

key_facts facts_of(const syntax_command &command, const syntax_item &item)
{
    key_facts facts;
    facts.key = item.name;
    facts.ptype = item.ptype;
    facts.accepted = accepted(command, item);
    facts.default_value = item.default_value;
    facts.help = help_text(item.help);
    facts.source = item.source;
    facts.optional = item.optional;
    facts.secret = item.field->flags & APCONF_FIELD_SECRET;
    facts.selects = item.selects;
    if (item.what == syntax_item::kind::choice)
        for (const syntax_item &choice : item.items) facts.choices.push_back({choice.name, help_text(choice.help)});
    return facts;
}

std::string removal_of(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_GROUP:
        case APCONF_NEGATABLE_GROUP:
        case APCONF_UNSET_MEANS_NO:
            return "makes it unset";
        case APCONF_FLAG:
            return "stores the opposite";
        case APCONF_NEVER_REPORTED:
            return "does nothing";
        case APCONF_PACKAGE_NODE:
        case APCONF_UNCONDITIONAL_NODE:
            return "makes everything in it unset";
        case APCONF_RECORD_NODE:
            return "makes everything in the instance unset";
        case APCONF_LIST_NODE:
            return "removes the instance and everything in it";
        default:
            return "removes the entries that it names, all when it names none";
    }
}

std::string reported_of(const apconf_command &command)
{
    switch (command.variant) {
        case APCONF_GROUP:
            return "the keys that differ";
        case APCONF_NEGATABLE_GROUP:
            return "the keys that differ, or \"no\" after a removal";
        case APCONF_UNSET_MEANS_NO:
            return "the keys that differ, or \"no\" while it is unset";
        case APCONF_FLAG:
            return "whenever it has been set or removed";
        case APCONF_FIXED_ARRAY:
        case APCONF_SELECTED_ENTRY:
            return "the entries that differ";
        case APCONF_RESET_ON_CHANGE:
            return "the entries that differ, after \"noall\" when the list has been replaced";
        case APCONF_RESET_ON_DIFFERENCE:
            return "after \"noall\", when any entry differs";
        case APCONF_ALWAYS_RESET:
            return "the entries that differ, always after \"noall\"";
        case APCONF_ONLY_WHEN_REPLACED:
            return "after \"noall\", when the list has been replaced";
        case APCONF_PACKED_LIST:
            return "the entries up to the first that does not differ, after \"noall\" when the list has been replaced";
        case APCONF_COUNTED_ARRAY:
            return "all entries";
        case APCONF_NEVER_REPORTED:
            return "never";
        case APCONF_RECORD_NODE:
            return "the instances that differ";
        case APCONF_LIST_NODE:
            return "all instances";
        case APCONF_UNCONDITIONAL_NODE:
            return "always";
        default:
            return "when anything in it differs";
    }
}

size_t entries_of(const syntax_command &command)
{
    if (command.command->variant == APCONF_LIST_NODE)
        return command.node->repeat > 0 ? static_cast<size_t>(command.node->repeat) : 0;
    return command.command->array.count > 1 ? capacity(*command.command, *command.node) : 0;
}

}  // namespace

command_facts facts_of(const vocabulary &vocabulary, const syntax_command &command)
{
    command_facts facts;
    facts.path = command.path;
    facts.help = help_text(command.help);
    facts.source = command.source;
    for (const std::string &line : syntax_lines(vocabulary, command, extent::itself))
        (line.starts_with("no ") ? facts.no_lines : facts.set_lines).push_back(line);
    facts.removal = facts.no_lines.empty() ? "not on the command line" : removal_of(*command.command);
    for (const syntax_command *package = command.package; package; package = package->package)
        if (is_iterating(*package->command))
            facts.instances.insert(facts.instances.begin(), index_key(*package->command));
    facts.entries = entries_of(command);
    facts.reported = reported_of(*command.command);
    for (const syntax_item *item : values_of(command)) {
        // A key can stand in several choices; what it accepts is the same in all of them.
        const auto known = std::find_if(facts.keys.begin(), facts.keys.end(), [item](const key_facts &key) {
            return key.key == item->name && key.ptype == item->ptype;
        });
        if (known == facts.keys.end())
            facts.keys.push_back(facts_of(command, *item));
        else
            known->optional = known->optional && item->optional;
    }
    return facts;
}

}  // namespace apconf_host
