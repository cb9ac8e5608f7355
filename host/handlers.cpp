// Installs one set and one no handler in every record of the package tables; a call finds its command by its node.
#include "handlers.h"

#include <exception>

#include "block.h"
#include "call.h"
#include "instances.h"
#include "json.h"

namespace apconf_host
{

namespace
{

// A message cannot make the list of what is wrong with it longer than anyone reads.
constexpr const char *cut_short = "(more refusals than are kept)";

std::string path_of(const cpath_ctx &ctx, const lookup_ctx &lookup)
{
    std::string path;
    for (int32_t i = 0; i <= ctx.depth; ++i) {
        const cmd_node *node = ctx.stack[i].node;
        if (!node || node == &cmd_tree) continue;
        path += (path.empty() ? "" : "/") + std::string(node->name);
        const apconf_command *command = apconf_find_command(node);
        if (command && is_iterating(*command) && i < ctx.depth)
            path += "[" + instance_name(static_cast<apconf_scope>(command->scope), lookup) + "]";
    }
    return path;
}

int handle(bool set, json_object *args, const cpath_ctx &ctx)
{
    const auto *message = reinterpret_cast<const request *>(ctx.user);
    auto *lookup = static_cast<lookup_ctx *>(ctx.instance);
    const bool inside = ctx.depth >= 0 && ctx.depth < CPATH_STACK_DEPTH;
    const cmd_node *node = inside ? ctx.stack[ctx.depth].node : nullptr;
    const apconf_command *command = node ? apconf_find_command(node) : nullptr;
    if (!message || !lookup || !command) return call::refused;
    const call call{*message, ctx, *lookup, *node, *command, path_of(ctx, *lookup)};
    if (is_node(*command)) return set ? enter_package(call, args) : remove_package(call, args);
    return set ? set_command(call, args) : remove_command(call, args);
}

void report_failure(const std::exception &problem, const cpath_ctx &ctx) noexcept
{
    try {
        const auto *message = reinterpret_cast<const request *>(ctx.user);
        message->result.refuse(
            {ctx.stack[ctx.depth].node->name, "", "", std::string("nothing now: ") + problem.what()});
    } catch (const std::exception &) {
        // Not even the refusal found memory; the handler's answer is logged by the dispatch.
    }
}

// The library's frames know no exceptions: none passes through them.
int guarded(bool set, json_object *args, cpath_ctx *ctx) noexcept
{
    try {
        return handle(set, args, *ctx);
    } catch (const std::exception &problem) {
        report_failure(problem, *ctx);
        return call::refused;
    }
}

int set_handler(json_object *args, cpath_ctx *ctx)
{
    return guarded(true, args, ctx);
}
int no_handler(json_object *args, cpath_ctx *ctx)
{
    return guarded(false, args, ctx);
}

// On one line and not endless, whatever a message held.
std::string printable(const std::string &text)
{
    constexpr size_t longest = 120;
    std::string result = text.substr(0, longest);
    for (char &c : result)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
    return text.size() > longest ? result + "..." : result;
}

}  // namespace

void outcome::refuse(refusal refusal)
{
    if (refusals.size() < MAX_REFUSALS) refusals.push_back(std::move(refusal));
    if (refusals.size() == MAX_REFUSALS) refusals.back() = {cut_short, "", "", "a message with fewer mistakes"};
}

std::string to_text(const refusal &refusal)
{
    std::string text = printable(refusal.path);
    if (!refusal.key.empty() || !refusal.value.empty()) text += ":";
    if (!refusal.key.empty()) text += " " + printable(refusal.key);
    if (!refusal.value.empty()) text += " '" + printable(refusal.value) + "'";
    return text + " refused: accepted is " + refusal.accepted;
}

int call::refuse(std::string key, std::string value, std::string accepted) const
{
    message.result.refuse({path, std::move(key), std::move(value), std::move(accepted)});
    return refused;
}

int call::changed() const
{
    ++message.result.changes;
    return done;
}

int call::nothing_to_remove() const
{
    if (!in_batch()) return no_change;
    return refuse("", "no", "the removal of something that this batch sets; a batch can carry no other removal here");
}

bool call::report_bss() const
{
    // A state that means nothing but makes the record differ.
    constexpr uint32_t reported = 1;
    if (!in_batch() || scope() != APCONF_SCOPE_BSS) return false;
    auto *bss = reinterpret_cast<bss_config *>(record());
    if (bss->state != reinterpret_cast<const bss_config *>(unset_record(APCONF_SCOPE_BSS))->state) return false;
    bss->state = reported;
    return true;
}

std::vector<std::string> call::keys_of_path() const
{
    std::vector<std::string> keys;
    for (int32_t i = 0; message.single && i < ctx.depth; ++i) {
        const apconf_command *package = apconf_find_command(ctx.stack[i].node);
        if (package && index_key(*package)) keys.push_back(index_key(*package));
    }
    return keys;
}

bool is_removal(json_object *args)
{
    const auto option = scalar_text(member(args, ".OPT"));
    return option == "no" || option == "noall";
}

void install_handlers()
{
    for (const apconf_package *package : apconf_packages)
        for (cmd_node *node = package->table; node->name; ++node) {
            node->set = set_handler;
            node->no = no_handler;
        }
}

}  // namespace apconf_host
