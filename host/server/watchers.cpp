// Tells subscribers what is applied. Nothing is done when there is none.
#include "host/server/watchers.h"

#include <time.h>

#include <string_view>

#include "host/json_build.h"
#include "host/server/limits.h"

namespace apconf_host
{

std::unique_ptr<watchers::subscription> watchers::add(push on_event)
{
    if (all_.size() >= limits::watchers) return nullptr;
    return std::make_unique<subscription>(all_, std::move(on_event));
}

void watchers::tell(std::optional<int> number, json_object *message, const outcome &result)
{
    if (all_.empty()) return;
    const json_ptr event = new_object();
    apconf_host::add(event.get(), "time", new_number(time(nullptr)));
    if (number) apconf_host::add(event.get(), "number", new_number(*number));
    apconf_host::add(event.get(), "changes", new_number(result.changes));
    apconf_host::add(event.get(), "refusals", new_number(static_cast<int64_t>(result.refusals.size())));
    apconf_host::add(event.get(), "message", shared(message));
    const std::string_view text = to_line(event.get());
    const std::string data(text.data(), text.size() + 1);
    for (const auto &on_event : all_) on_event(data);
}

}  // namespace apconf_host
