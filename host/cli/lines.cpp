// Turns messages into command lines. The library's converter words each line; it gets one command at a time, so that
// the word of an optional BODY never waits for another command, and values quoted where the words of a line demand it.
#include "cli/lines.h"

#include <cstdio>
#include <cstring>
#include <sstream>

#include "arguments.h"
#include "cli/matching.h"
#include "secrets.h"

namespace apconf_host
{

namespace
{

// A value as one word.
json_object *word_of(json_object *value)
{
    if (!json_object_is_type(value, json_type_array)) return json_object_new_string(quoted(shown(value)).c_str());
    std::string joined;
    for (size_t i = 0; i < json_object_array_length(value); ++i)
        joined += (i ? "," : "") + shown(json_object_array_get_idx(value, i));
    return json_object_new_string(quoted(joined).c_str());
}

json_ptr in_words(json_object *arguments)
{
    json_ptr words(json_object_new_object());
    json_object_object_foreach(arguments, key, value)
    {
        if (value) json_object_object_add(words.get(), key, word_of(value));
    }
    return words;
}

// The same values, whatever JSON they are written as: a number and its text are one, and so are a value and a list of
// it.
bool same_value(json_object *one, json_object *other)
{
    if (json_object_is_type(one, json_type_object)) return json_object_equal(one, other) != 0;
    int at_one = 0;
    int at_other = 0;
    while (true) {
        json_object *first = get_json_obj(one, &at_one);
        json_object *second = get_json_obj(other, &at_other);
        if (!first || !second) return first == second;
        if (shown(first) != shown(second)) return false;
    }
}

// The keys of `message` that the line's arguments do not say as they are.
std::vector<std::string> unsaid_keys(json_object *message, json_object *line)
{
    std::vector<std::string> keys;
    json_object_object_foreach(message, key, value)
    {
        if (value && !same_value(value, member(line, key))) keys.emplace_back(key);
    }
    return keys;
}

// Null counts as absent, in a message as in a line.
bool says_all(json_object *message, json_object *line)
{
    size_t values = 0;
    json_object_object_foreach(message, key, value)
    {
        (void)key;
        values += value ? 1 : 0;
    }
    return unsaid_keys(message, line).empty() && values == static_cast<size_t>(json_object_object_length(line));
}

// Moves the package's own index keys from `arguments` to an INDEX object; null when there are none.
json_ptr take_index(const syntax_command &package, json_object *arguments)
{
    json_ptr index;
    for (const syntax_item *item : values_of(package)) {
        json_object *value = member(arguments, item->name.c_str());
        if (!value) continue;
        if (!index) index.reset(json_object_new_object());
        json_object_object_add(index.get(), item->name.c_str(), json_object_get(value));
        json_object_object_del(arguments, item->name.c_str());
    }
    return index;
}

json_ptr shallow_copy(json_object *object)
{
    json_ptr copy(json_object_new_object());
    if (!object) return copy;
    json_object_object_foreach(object, key, value)
    {
        json_object_object_add(copy.get(), key, json_object_get(value));
    }
    return copy;
}

// The mark that removes all entries of a list.
bool clears_list(json_object *arguments)
{
    return shown(member(arguments, ".OPT")) == "noall" && json_object_object_length(arguments) == 1;
}

class line_writer
{
public:
    line_writer(const vocabulary &vocabulary, secrets secrets) : vocabulary_(vocabulary), secrets_(secrets)
    {
        stream_.reset(open_memstream(&buffer_, &size_));
    }
    ~line_writer()
    {
        stream_.reset();
        free(buffer_);
    }
    line_writer(const line_writer &) = delete;
    line_writer &operator=(const line_writer &) = delete;

    line_text write(json_object *config)
    {
        if (!json_object_is_type(config, json_type_object)) {
            leave_out("", config, "it is no object");
            return std::move(result_);
        }
        const json_ptr around(json_object_new_object());
        write_below(vocabulary_.config(), config, around.get(), around.get(), 0);
        return std::move(result_);
    }

private:
    // `message` is a message whose innermost package object is `place`, for the converter: it holds the packages around
    // and nothing else. `depth` of them print a line.
    void write_below(const syntax_command &package, json_object *object, json_object *message, json_object *place,
                     size_t depth)
    {
        json_object *here = json_object_new_object();
        json_object_object_add(place, package.node->name, here);
        if (json_object *index = member(object, "INDEX"); index && depth > 0)
            json_object_object_add(here, "INDEX", in_words(index).release());
        if (depth > 0 && !write_heading(package, object, message, depth)) return;
        json_object_object_foreach(object, name, value)
        {
            if (strcmp(name, "INDEX") == 0) continue;
            const syntax_command *command = below(package, name);
            int cursor = 0;
            while (json_object *single = get_json_obj(value, &cursor)) {
                if (!command || !json_object_is_type(single, json_type_object))
                    leave_out(name, single, command ? "it is no object" : "the vocabulary does not have it");
                else if (command->is_package())
                    write_instance(*command, single, message, here, depth);
                else
                    write_command(*command, single, message, here, depth);
            }
        }
    }

    void write_instance(const syntax_command &package, json_object *object, json_object *message, json_object *place,
                        size_t depth)
    {
        // An instance without INDEX holds its key itself.
        const json_ptr instance = shallow_copy(object);
        if (!member(object, "INDEX"))
            if (json_ptr index = take_index(package, instance.get()))
                json_object_object_add(instance.get(), "INDEX", index.release());

        const size_t length = path_.size();
        path_ += std::string("/") + package.node->name + in_brackets(member(instance.get(), "INDEX"));
        write_below(package, instance.get(), message, place, depth + 1);
        json_object_object_del(place, package.node->name);
        path_.resize(length);
    }

    // The line of the package's instance; false when there is none that says it.
    bool write_heading(const syntax_command &package, json_object *object, json_object *message, size_t depth)
    {
        const std::string line = converted(message, depth - 1);
        const split_line words = split_words(line);
        const line_match match = match_line(*package.package, words.words);
        json_object *index = member(object, "INDEX");
        const bool faithful = match && match.command == &package &&
                              (index ? match.arguments && says_all(index, match.arguments.get()) : !match.arguments);
        if (faithful)
            result_.text += line;
        else
            leave_out("", object, index ? "no line chooses this instance" : "it does not say which one");
        return faithful;
    }

    void write_command(const syntax_command &command, json_object *arguments, json_object *message, json_object *place,
                       size_t depth)
    {
        const std::string line = clears_list(arguments)
                                     ? std::string(depth, ' ') + "no " + command.line_words() + "\n"
                                     : converted(command, in_words(arguments).get(), message, place, depth);
        const line_match match = match_line(*command.package, split_words(line).words);
        const bool readable = match && match.command == &command;
        const bool complete = readable && says_all(arguments, match.arguments.get());
        const bool hides = secrets_ == secrets::hidden && has_secret(*command.command);
        if (readable)
            result_.text +=
                hides ? converted(command, masked(command, in_words(arguments)).get(), message, place, depth) : line;
        if (!complete)
            leave_out(command.node->name, hides ? masked(command, shallow_copy(arguments)).get() : arguments,
                      reason(arguments, line, match));
    }

    static json_ptr masked(const syntax_command &command, json_ptr arguments)
    {
        mask_arguments(*command.command, arguments.get());
        return arguments;
    }

    std::string converted(const syntax_command &command, json_object *words, json_object *message, json_object *place,
                          size_t depth)
    {
        json_object_object_add(place, command.node->name, json_object_get(words));
        std::string line = converted(message, depth);
        json_object_object_del(place, command.node->name);
        return line;
    }

    // What the converter prints behind the `headings` lines of the packages around.
    std::string converted(json_object *message, size_t headings)
    {
        rewind(stream_.get());
        convert_config(vocabulary_.document_root(), message, stream_.get());
        fflush(stream_.get());
        const char *begin = buffer_;
        const char *end = buffer_ + ftell(stream_.get());
        for (; headings > 0 && begin != end; --headings) {
            const void *newline = memchr(begin, '\n', static_cast<size_t>(end - begin));
            begin = newline ? static_cast<const char *>(newline) + 1 : end;
        }
        return {begin, end};
    }

    static std::string reason(json_object *arguments, const std::string &line, const line_match &match)
    {
        constexpr std::string_view mark = " MISSING(";
        if (const size_t missing = line.find(mark); missing != std::string::npos) {
            const size_t name = missing + mark.size();
            return line.substr(name, line.find(')', name) - name) + " is missing";
        }
        if (!match) return "a value is none that the line takes";
        std::string keys;
        for (const std::string &key : unsaid_keys(arguments, match.arguments.get()))
            keys += (keys.empty() ? "" : ", ") + key;
        return "a line with the rest has no place for " + keys;
    }

    static const syntax_command *below(const syntax_command &package, const char *name)
    {
        for (const auto &command : package.below)
            if (strcmp(command->node->name, name) == 0) return command.get();
        return nullptr;
    }

    void leave_out(const std::string &name, json_object *value, const std::string &reason)
    {
        const std::string last = name.empty() ? "" : "/" + name;
        result_.left_out.push_back({vocabulary_.config().path + path_ + last, shown(value), reason});
    }

    struct file_release {
        void operator()(FILE *file) const { fclose(file); }
    };
    const vocabulary &vocabulary_;
    const secrets secrets_;
    char *buffer_ = nullptr;
    size_t size_ = 0;
    std::unique_ptr<FILE, file_release> stream_;
    std::string path_;
    line_text result_;
};

// The node that a wire path names; null when there is none.
const cmd_node *node_at(const std::string &path)
{
    cmd_node *node = get_cmd_tree();
    std::istringstream names(path);
    for (std::string name; node && std::getline(names, name, '/');)
        if (!name.empty()) node = search_child_cmd(node, name.c_str());
    return node;
}

// The "config" object that says the same as a single-command message.
json_ptr as_tree(const syntax_command &command, json_object *param)
{
    json_ptr arguments = shallow_copy(param);
    std::vector<const syntax_command *> levels;
    for (const syntax_command *level = &command; level->package; level = level->package)
        levels.insert(levels.begin(), level);

    json_ptr config(json_object_new_object());
    json_object *around = config.get();
    for (const syntax_command *level : levels) {
        json_object *object = json_object_new_object();
        json_object_object_add(around, level->node->name, object);
        around = object;
        if (!level->is_package()) continue;
        if (json_ptr index = take_index(*level, arguments.get()))
            json_object_object_add(object, "INDEX", index.release());
    }
    json_object *option_holder = around;
    if (command.is_package() && json_object_object_length(arguments.get()) > 0) {
        if (!member(around, "INDEX")) json_object_object_add(around, "INDEX", json_object_new_object());
        option_holder = member(around, "INDEX");
    }
    json_object_object_foreach(arguments.get(), key, value)
    {
        json_object_object_add(option_holder, key, json_object_get(value));
    }
    return config;
}

// Reported of every command of this kind in which nothing is set.
bool says_unset(const cmd_node &node, json_object *arguments)
{
    const apconf_command *command = apconf_find_command(&node);
    return command && command->variant == APCONF_UNSET_MEANS_NO && shown(member(arguments, ".OPT")) == "no";
}

json_ptr tidied_package(cmd_node &package, json_object *object);

json_ptr tidied_values(cmd_node &node, json_object *value)
{
    json_object *kept = nullptr;
    int cursor = 0;
    while (json_object *single = get_json_obj(value, &cursor)) {
        json_ptr tidy;
        if (node.children)
            tidy = tidied_package(node, single);
        else if (!clears_list(single) && !says_unset(node, single))
            tidy.reset(json_object_get(single));
        if (tidy) add_json_obj(&kept, tidy.release());
    }
    return json_ptr(kept);
}

// Null when nothing is set in it; an element of a list counts even so.
json_ptr tidied_package(cmd_node &package, json_object *object)
{
    const apconf_command *description = apconf_find_command(&package);
    bool has_content = description && description->variant == APCONF_LIST_NODE;
    json_ptr tidy(json_object_new_object());
    json_object_object_foreach(object, name, value)
    {
        cmd_node *child = search_child_cmd(&package, name);
        json_ptr kept = child ? tidied_values(*child, value) : json_ptr(json_object_get(value));
        if (!kept) continue;
        json_object_object_add(tidy.get(), name, kept.release());
        has_content = has_content || child;
    }
    return has_content ? std::move(tidy) : nullptr;
}

}  // namespace

line_text to_lines(const vocabulary &vocabulary, json_object *message, secrets secrets)
{
    json_object *single = member(message, "CPATH");
    if (!single) return line_writer(vocabulary, secrets).write(member(message, "config"));
    const std::string path = shown(member(single, "path"));
    json_object *param = member(single, "param");
    const cmd_node *node = node_at(path);
    const syntax_command *command = node ? vocabulary.find(node) : nullptr;
    line_text result;
    if (!command) {
        result.left_out.push_back({path, shown(param), "the vocabulary does not have it"});
        return result;
    }
    int cursor = 0;
    if (!param) return line_writer(vocabulary, secrets).write(as_tree(*command, nullptr).get());
    while (json_object *arguments = get_json_obj(param, &cursor)) {
        line_text part = line_writer(vocabulary, secrets).write(as_tree(*command, arguments).get());
        result.text += part.text;
        for (unsayable &unsaid : part.left_out) result.left_out.push_back(std::move(unsaid));
    }
    return result;
}

json_ptr tidied(json_object *configuration)
{
    json_ptr tidy = tidied_package(*get_cmd_tree(), configuration);
    if (!tidy) tidy.reset(json_object_new_object());
    if (!member(tidy.get(), "config")) json_object_object_add(tidy.get(), "config", json_object_new_object());
    return tidy;
}

}  // namespace apconf_host
