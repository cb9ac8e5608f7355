// Configuration messages: reading a message's header, and dispatching it over the command tree to the handlers of the
// packages and commands that it names.
//
// A message comes from another process and may hold any JSON. What must be an object and is not is refused with an
// error line, and handlers only ever see objects or, as a single command's parameters, an array of objects. Handlers
// may change what they are given: the walks hold references and iterate over copies of the member lists.
#include "messaging/dispatch.h"

#include <json-c/json.h>

#include <cstdlib>
#include <cstring>
#include <utility>

#include "apconf/cmessage.h"
#include "apconf/command_tree.h"
#include "apconf/util.h"
#include "util/log.h"
#include "util/owners.h"

namespace apconf
{
namespace
{

// What call_set_handler tells its caller about what is below the node.
enum set_outcome { SET_FAILED = -1, SET_DONE = 0, SET_REMOVED = 1 };

bool is_object(json_object *value)
{
    return json_object_is_type(value, json_type_object) != 0;
}

bool is_array(json_object *value)
{
    return json_object_is_type(value, json_type_array) != 0;
}

json_object *member(json_object *object, const char *key)
{
    return search_child_obj(object, key, nullptr);
}

// JSON null, an empty object or an empty array.
bool is_empty(json_object *value)
{
    if (is_object(value)) return json_object_object_length(value) == 0;
    if (is_array(value)) return json_object_array_length(value) == 0;
    return value == nullptr;
}

bool is_package(const struct cmd_node *node)
{
    return node->children != nullptr;
}

// Puts `value` under `key`; on failure the value is released.
bool put_member(json_object *object, const char *key, json_ptr value)
{
    if (!value || json_object_object_add(object, key, value.get()) != 0) return false;
    value.release();
    return true;
}

bool append(json_object *array, json_ptr value)
{
    if (!value || json_object_array_add(array, value.get()) != 0) return false;
    value.release();
    return true;
}

json_ptr shared(json_object *value)
{
    return json_ptr(json_object_get(value));
}

// {"INDEX": index}, which selects an instance; null when memory is short.
json_ptr instance_of(json_object *index)
{
    json_ptr instance(json_object_new_object());
    if (!instance || !put_member(instance.get(), "INDEX", shared(index))) return json_ptr();
    return instance;
}

// The option word "no" or "noall".
bool is_removal(json_object *args)
{
    return search_child_obj(args, ".OPT", "no") || search_child_obj(args, ".OPT", "noall");
}

// Objects, or one object.
bool is_argument(json_object *value)
{
    if (!is_array(value)) return is_object(value);
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor))
        if (!is_object(element)) return false;
    return true;
}

// The members of a message's object that name children of a node, in the message's order. Holds its own references.
class named_children
{
public:
    struct entry {
        struct cmd_node *child;
        json_object *value;
    };

    named_children(struct cmd_node *node, json_object *object)
    {
        const auto length = static_cast<size_t>(json_object_object_length(object));
        if (length == 0) return;
        entries_ = static_cast<entry *>(calloc(length, sizeof(entry)));
        if (!entries_) {
            LOG_AS("dispatch_tree", LOG_ERR, "no memory for the members of '%s'", node->name);
            return;
        }
        json_object_iter each;
        json_object_object_foreachC(object, each)
        {
            struct cmd_node *child = search_child_cmd(node, each.key);
            if (child) entries_[count_++] = {child, json_object_get(each.val)};
        }
    }
    ~named_children()
    {
        for (const entry &each : *this) json_object_put(each.value);
        free(entries_);
    }
    named_children(const named_children &) = delete;
    named_children &operator=(const named_children &) = delete;

    const entry *begin() const { return entries_; }
    const entry *end() const { return entries_ + count_; }

private:
    entry *entries_ = nullptr;
    size_t count_ = 0;
};

// One level down in the context's stack, and up again at the end of the scope.
class deeper
{
public:
    explicit deeper(struct cpath_ctx *ctx)
        : ctx_(ctx), outer_(ctx->depth), entered_(outer_ >= 0 && outer_ < CPATH_STACK_DEPTH - 1)
    {
        if (entered_) ctx_->depth++;
    }
    ~deeper() { ctx_->depth = outer_; }
    deeper(const deeper &) = delete;
    deeper &operator=(const deeper &) = delete;

    explicit operator bool() const { return entered_; }

private:
    struct cpath_ctx *ctx_;
    int32_t outer_;
    bool entered_;
};

void report_depth(const struct cmd_node *node)
{
    LOG_AS("dispatch_tree", LOG_ERR, "command '%s' is nested deeper than %d levels", node->name, CPATH_STACK_DEPTH);
}

void report_type(const struct cmd_node *node, const char *what, json_object *value)
{
    LOG_AS("dispatch_tree", LOG_ERR, "command '%s' %s isn't an object but %s", node->name, what,
           json_type_to_name(json_object_get_type(value)));
}

// What selects the instance `element`: its "INDEX", or null when it has none. False: it is refused.
bool read_index(const struct cmd_node *node, json_object *element, json_object **index)
{
    *index = member(element, "INDEX");
    if (!*index || is_object(*index)) return true;
    report_type(node, "INDEX", *index);
    return false;
}

int call_no_handler(struct cmd_node *node, json_object *args, struct cpath_ctx *ctx)
{
    constexpr char reporter[] = "call_set_handler";
    if (!node->no) return SET_REMOVED;
    const bool option_alone = json_object_object_length(args) == 1;
    const bool all = search_child_obj(args, ".OPT", "noall") != nullptr;
    const int result = node->no(all || option_alone ? nullptr : args, ctx);
    if (result < 0) {
        LOG_AS(reporter, LOG_ERR, "no  %-32s : failed", node->name);
        return SET_FAILED;
    }
    LOG_AS(reporter, LOG_INFO, "no  %-32s : %s", node->name, result > 0 ? "no change" : "success");
    return SET_REMOVED;
}

int call_set_handler(struct cmd_node *node, json_object *args, struct cpath_ctx *ctx)
{
    if (is_removal(args)) return call_no_handler(node, args, ctx);
    if (!node->set) return SET_DONE;
    const int result = node->set(is_empty(args) ? nullptr : args, ctx);
    if (result < 0) {
        LOG(LOG_ERR, "set %-32s : failed", node->name);
        return SET_FAILED;
    }
    LOG(LOG_INFO, "set %-32s : %s", node->name, result > 0 ? "no change" : "success");
    return SET_DONE;
}

// Without `result` the handler only selects the instance that `args` name.
int call_get_handler(struct cmd_node *node, json_object *args, json_object **result, struct cpath_ctx *ctx)
{
    if (result) *result = nullptr;
    if (!node->get) return 0;
    json_ptr value;
    if (node->get(args, value.out(), ctx) != 0) {
        LOG(LOG_INFO, "get %-32s : failed", node->name);
        return -1;
    }
    if (!result)
        LOG(LOG_INFO, "get %-32s : success, foreach package", node->name);
    else if (value)
        LOG(LOG_INFO, "get %-32s : success", node->name);
    else
        LOG(LOG_DEBUG, "get %-32s : no value", node->name);
    if (result) *result = value.release();
    return 0;
}

// Those of `args` that are parameters of the package; null: none.
json_ptr build_index_obj(const struct cmd_node *node, json_object *args)
{
    json_ptr index;
    const uint32_t count = node->params ? node->param_count : 0;
    for (uint32_t i = 0; i < count; i++) {
        const char *name = node->params[i].name;
        json_object *value = name ? member(args, name) : nullptr;
        if (!value) continue;
        if (!index) index.reset(json_object_new_object());
        if (index) put_member(index.get(), name, shared(value));
    }
    return index;
}

// The instances that a package's handler listed, each with what is below it.
json_ptr collect_instances(struct cmd_node *node, json_object *listed, struct cpath_ctx *ctx)
{
    json_ptr instances;
    int cursor = 0;
    while (json_object *element = get_json_obj(listed, &cursor)) {
        const json_ptr held = shared(element);
        if (call_get_handler(node, element, nullptr, ctx) != 0) continue;
        json_ptr instance = instance_of(element);
        if (!instances) instances.reset(json_object_new_array());
        if (!instance || !instances) continue;
        json_object *content = instance.get();
        if (append(instances.get(), std::move(instance)) && !is_removal(element)) package_get_all(node, content, ctx);
    }
    return instances;
}

// The one instance that a package's handler reported, or the children of a package that has none; null: no content.
json_ptr collect_instance(struct cmd_node *node, json_ptr value, struct cpath_ctx *ctx)
{
    if (!is_empty(value.get())) {
        if (call_get_handler(node, value.get(), nullptr, ctx) != 0) return json_ptr();
        json_ptr instance = instance_of(value.get());
        if (!instance || is_removal(value.get())) return instance;
        value = std::move(instance);
    }
    package_get_all(node, value.get(), ctx);
    if (is_null_package_obj(value.get())) return json_ptr();
    return value;
}

// The whole content of one node; null: none.
json_ptr collect_package(struct cmd_node *node, struct cpath_ctx *ctx)
{
    json_ptr value;
    if (call_get_handler(node, nullptr, value.out(), ctx) != 0) return json_ptr();
    if (!is_package(node)) return value;
    if (!value) {
        if (node->get) return json_ptr();
        value.reset(json_object_new_object());
    }
    if (is_array(value.get())) return collect_instances(node, value.get(), ctx);
    if (is_object(value.get())) return collect_instance(node, std::move(value), ctx);
    if (value) report_type(node, "value", value.get());
    return json_ptr();
}

// Takes the next component off the path. `*rest` is null once the path is used up.
struct cmd_node *get_cpath_cmd(struct cmd_node *node, char **rest)
{
    if (!*rest) return nullptr;
    char *component = *rest + strspn(*rest, "/");
    if (*component == '\0') {
        *rest = nullptr;
        return node;
    }
    char *end = component + strcspn(component, "/");
    char *next = end + strspn(end, "/");
    *rest = *next ? next : nullptr;
    *end = '\0';
    struct cmd_node *found = search_child_cmd(node, component);
    if (!found) LOG(LOG_ERR, "not find cmd '%s'", component);
    return found;
}

// Goes one package down a path. False: the path is too deep, logged.
bool descend(const struct cmd_node *package, struct cpath_ctx *ctx)
{
    if (ctx->depth >= CPATH_STACK_DEPTH - 1) {
        LOG(LOG_ERR, "cpath is deeper than %d components below command '%s'", CPATH_STACK_DEPTH, package->name);
        return false;
    }
    ctx->depth++;
    return true;
}

// A package on the path sees all parameters before the command does.
int set_package(struct cmd_node *package, json_object *param, struct cpath_ctx *ctx)
{
    constexpr char reporter[] = "cpath_set";
    if (!package->set) return 0;
    if (package->set(param, ctx) < 0) {
        LOG_AS(reporter, LOG_ERR, "command '%s' set failed", package->name);
        return -1;
    }
    LOG_AS(reporter, LOG_INFO, "command '%s' set success", package->name);
    return 0;
}

int cpath_set(char *path, json_object *param, struct cpath_ctx *ctx)
{
    LOG(LOG_INFO, "set cpath '%s'", path);
    struct cmd_node *node = &cmd_tree;
    char *rest = path;
    for (;;) {
        node = get_cpath_cmd(node, &rest);
        if (!node) return 0;
        ctx->stack[ctx->depth].node = node;
        if (!rest) break;
        if (!is_package(node)) {
            LOG(LOG_ERR, "command '%s' isn't a package command", node->name);
            return 0;
        }
        if (set_package(node, param, ctx) != 0 || !descend(node, ctx)) return -1;
    }
    call_set_handler(node, param, ctx);
    return 0;
}

// What the last node of a path answers; null: no value.
json_ptr get_final(struct cmd_node *node, json_object *param, struct cpath_ctx *ctx)
{
    if (!is_package(node)) {
        json_ptr value;
        call_get_handler(node, is_empty(param) ? nullptr : param, value.out(), ctx);
        return value;
    }
    const json_ptr index = is_empty(param) ? json_ptr() : build_index_obj(node, param);
    if (!index) return collect_package(node, ctx);
    if (call_get_handler(node, param, nullptr, ctx) != 0) return json_ptr();
    json_ptr value = instance_of(index.get());
    if (value) package_get_all(node, value.get(), ctx);
    return value;
}

// Adds the object of a package on the path to the answer; null: memory is short.
json_object *enter_answer(json_object *answer, struct cmd_node *package, json_object *param)
{
    json_ptr content(json_object_new_object());
    json_object *entered = content.get();
    if (!put_member(answer, package->name, std::move(content))) return nullptr;
    json_ptr index = build_index_obj(package, param);
    if (index) put_member(entered, "INDEX", std::move(index));
    return entered;
}

int cpath_get(char *path, json_object *param, json_object **out, struct cpath_ctx *ctx)
{
    LOG(LOG_INFO, "get cpath '%s'", path);
    json_object *answer = *out = json_object_new_object();
    if (!answer) return -1;
    struct cmd_node *node = &cmd_tree;
    char *rest = path;
    for (;;) {
        node = get_cpath_cmd(node, &rest);
        if (!node) return 0;
        ctx->stack[ctx->depth].node = node;
        if (!rest) break;
        if (!is_package(node)) {
            LOG(LOG_ERR, "command '%s' isn't a package command", node->name);
            return 0;
        }
        if (call_get_handler(node, param, nullptr, ctx) != 0) return 0;
        answer = enter_answer(answer, node, param);
        if (!answer || !descend(node, ctx)) return -1;
    }
    json_ptr value = get_final(node, param, ctx);
    if (!value) return 0;
    if (node == &cmd_tree) {
        json_object_put(*out);
        *out = value.release();
        return 0;
    }
    return put_member(answer, node->name, std::move(value)) ? 0 : -1;
}

void walk_set_tree(struct cmd_node *node, json_object *object, struct cpath_ctx *ctx);

void set_element(struct cmd_node *child, json_object *element, struct cpath_ctx *ctx)
{
    if (!is_object(element)) {
        report_type(child, "value", element);
        return;
    }
    if (!is_package(child)) {
        call_set_handler(child, element, ctx);
        return;
    }
    json_object *index;
    if (!read_index(child, element, &index)) return;
    const json_ptr held = shared(index);
    if (call_set_handler(child, index ? index : element, ctx) == SET_DONE) walk_set_tree(child, element, ctx);
}

void walk_set_tree(struct cmd_node *node, json_object *object, struct cpath_ctx *ctx)
{
    const deeper level(ctx);
    if (!level) return report_depth(node);
    struct cpath_stack_entry &entry = ctx->stack[ctx->depth];
    for (const auto &[child, value] : named_children(node, object)) {
        entry = {value, child};
        int cursor = 0;
        while (json_object *element = get_json_obj(value, &cursor)) {
            const json_ptr held = shared(element);
            set_element(child, element, ctx);
        }
    }
    entry.args = nullptr;
}

void walk_get_tree(struct cmd_node *node, json_object *request, json_object *out, struct cpath_ctx *ctx);

// Answers one instance that a request names. False: it could not be selected.
bool get_instance(struct cmd_node *child, json_object *element, json_ptr &answer, struct cpath_ctx *ctx)
{
    json_object *index;
    if (!read_index(child, element, &index)) return true;
    answer = index ? instance_of(index) : json_ptr(json_object_new_object());
    if (!answer) return false;
    if (call_get_handler(child, index ? index : answer.get(), nullptr, ctx) != 0) return false;
    walk_get_tree(child, element, answer.get(), ctx);
    return true;
}

// Answers one element of a request's member; no answer leaves `answer` null. False: the whole member is given up.
bool get_element(struct cmd_node *child, json_object *element, json_ptr &answer, struct cpath_ctx *ctx)
{
    if (!is_object(element)) {
        report_type(child, "value", element);
        return true;
    }
    if (is_package(child)) return get_instance(child, element, answer, ctx);
    return call_get_handler(child, element, answer.out(), ctx) == 0;
}

// Everything that a request's member asks for; null: nothing, or given up.
json_ptr get_member(struct cmd_node *child, json_object *value, struct cpath_ctx *ctx)
{
    if (is_empty(value)) return collect_package(child, ctx);
    json_object *gathered = nullptr;
    int cursor = 0;
    while (json_object *element = get_json_obj(value, &cursor)) {
        const json_ptr held = shared(element);
        json_ptr answer;
        if (!get_element(child, element, answer, ctx)) {
            json_object_put(gathered);
            return json_ptr();
        }
        add_json_obj(&gathered, answer.release());
    }
    return json_ptr(gathered);
}

void walk_get_tree(struct cmd_node *node, json_object *request, json_object *out, struct cpath_ctx *ctx)
{
    if (is_null_package_obj(request)) return package_get_all(node, out, ctx);
    const deeper level(ctx);
    if (!level) return report_depth(node);
    for (const auto &[child, value] : named_children(node, request)) {
        ctx->stack[ctx->depth].node = child;
        json_ptr gathered = get_member(child, value, ctx);
        if (gathered) put_member(out, child->name, std::move(gathered));
    }
}

// Stands in for a missing "param". One for the process, never released, and empty at the start of every message.
json_object *empty_placeholder()
{
    static json_object *placeholder;
    if (!placeholder) return placeholder = json_object_new_object();
    json_object_object_foreach(placeholder, key, value)
    {
        (void)value;
        json_object_object_del(placeholder, key);
    }
    return placeholder;
}

// The parameters of a single-command message; null, logged, when they are not what a handler can take.
json_object *read_param(json_object *body)
{
    json_object *param = member(body, "param");
    if (!param) return empty_placeholder();
    if (is_argument(param)) return param;
    LOG_AS("cmessage_parser", LOG_ERR, "cmessage param isn't an object or an array of objects");
    return nullptr;
}

int dispatch_cpath(const struct cmesage_info *info, json_object **out, struct cpath_ctx *ctx)
{
    const heap_text path(info->path ? strdup(info->path) : nullptr);
    if (!path || !out) return -1;
    const json_ptr param = shared(read_param(info->body));
    if (!param) return -1;
    if (!ctx->is_get) return cpath_set(path.get(), param.get(), ctx);
    if (cpath_get(path.get(), param.get(), out, ctx) == 0) return 0;
    json_object_put(std::exchange(*out, nullptr));
    return -1;
}

}  // namespace

int dispatch_tree(json_object *body, json_object **out, struct cpath_ctx *ctx)
{
    if (!body || !ctx) return -1;
    if (!is_object(body)) {
        LOG(LOG_ERR, "cmessage isn't an object");
        return -1;
    }
    ctx->depth = 0;
    ctx->stack[0].node = &cmd_tree;
    if (!ctx->is_get) {
        walk_set_tree(&cmd_tree, body, ctx);
        return 0;
    }
    if (!out) return -1;
    *out = json_object_new_object();
    if (!*out) return -1;
    walk_get_tree(&cmd_tree, body, *out, ctx);
    return 0;
}

}  // namespace apconf

int get_cmesage_info(struct json_object *msg, struct cmesage_info *info)
{
    if (!msg || !info) return -1;
    *info = {};
    if (!apconf::is_object(msg)) {
        LOG(LOG_ERR, "cmessage isn't an object");
        return -1;
    }
    info->is_get = search_child_obj(msg, "ACTION", "get") != nullptr;
    json_object *module = apconf::member(msg, "MODULE");
    if (json_object_is_type(module, json_type_string))
        info->module = json_object_get_string(module);
    else if (module)
        LOG(LOG_ERR, "cmessage MODULE isn't a string");

    json_object *cpath = apconf::member(msg, "CPATH");
    if (!cpath) {
        info->body = msg;
        info->is_config = apconf::member(msg, "config") != nullptr;
        return 0;
    }
    json_object *path = apconf::member(cpath, "path");
    if (!json_object_is_type(path, json_type_string)) {
        LOG(LOG_ERR, "cmessage CPATH has no path string");
        return -1;
    }
    info->path = json_object_get_string(path);
    info->has_cpath = 1;
    info->body = cpath;
    info->is_config = strstr(info->path, "/config") != nullptr;
    info->is_connect_status = strstr(info->path, "/wtp_notify/connect_status_cmd") != nullptr;
    return 0;
}

int cmessage_parser(const struct cmesage_info *info, struct json_object **out, uintptr_t user, void *instance)
{
    if (!info) return -1;
    struct cpath_ctx ctx = {};
    ctx.is_get = info->is_get;
    ctx.user = user;
    ctx.instance = instance;
    ctx.module = info->module ? info->module : "UNKNOWN";
    LOG(LOG_INFO, "parse %s cmessage: %s", ctx.is_get ? "get" : "set", ctx.module);
    if (!info->has_cpath) return apconf::dispatch_tree(info->body, out, &ctx);
    return apconf::dispatch_cpath(info, out, &ctx);
}

int is_null_package_obj(struct json_object *obj)
{
    if (apconf::is_empty(obj)) return 1;
    if (!apconf::is_object(obj) || json_object_object_length(obj) != 1) return 0;
    return json_object_object_get_ex(obj, "INDEX", nullptr);
}

void package_get_all(struct cmd_node *node, struct json_object *obj, struct cpath_ctx *ctx)
{
    if (!node || !node->children || !ctx || !apconf::is_object(obj)) return;
    const apconf::deeper level(ctx);
    if (!level) return apconf::report_depth(node);
    for (struct cmd_node *child = node->children; child->name; child++) {
        ctx->stack[ctx->depth].node = child;
        apconf::json_ptr answer = apconf::collect_package(child, ctx);
        if (answer) apconf::put_member(obj, child->name, std::move(answer));
    }
}
