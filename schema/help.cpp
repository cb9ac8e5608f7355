// Help texts by key, the dump of every key that a command-tree file uses, and the dump of the tree's paths.
#include "apconf/help.h"

#include <libxml/tree.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "apconf/util.h"
#include "schema/schema_file.h"
#include "util/log.h"
#include "util/owners.h"

struct help_entry *help_map;
int help_count;
int total_help_count;
struct iovec cmdvec[CMDVEC_COUNT];

namespace apconf
{
namespace
{

constexpr char help_path[] = "/etc/cmd_tree_help.txt";

// A longer line of the help file is read in pieces, each a line of its own.
constexpr int help_line_size = 512;

// Keys of the front end itself.
constexpr const char *fixed_keys[] = {
    "HELP_COMMIT",
    "HELP_NO",
    "HELP_END",
    "HELP_EXIT",
    "HELP_SHOW",
    "HELP_SHOW_RUNNING_CONFIG",
    "HELP_SHOW_CONFIGUREHELP_PIPE",  // kept: one key
    "HELP_PIPE_FILTER_TYPE",
    "HELP_PIPE_FILTER_INCLUDE",
    "HELP_PIPE_FILTER_EXCLUDE",
    "HELP_PIPE_REGEXPR",
};

bool is_blank(char character)
{
    return isspace(static_cast<unsigned char>(character)) != 0;
}

char *skip_blanks(char *text)
{
    while (is_blank(*text)) text++;
    return text;
}

bool realloc_help_map_buf()
{
    constexpr int growth = 100;
    int capacity;
    size_t size;
    void *grown = nullptr;
    const bool overflows = __builtin_add_overflow(total_help_count, growth, &capacity) ||
                           __builtin_mul_overflow(static_cast<size_t>(capacity), sizeof(struct help_entry), &size);
    if (!overflows) grown = realloc(help_map, size);
    if (!grown) {
        LOG(LOG_ERR, "realloc %d help map buffer failed", capacity);
        return false;
    }
    help_map = static_cast<struct help_entry *>(grown);
    memset(help_map + total_help_count, 0, growth * sizeof(struct help_entry));
    total_help_count = capacity;
    return true;
}

// Copies both texts; `text` may be null. False: nothing was added.
bool add_help_entry(const char *key, const char *text, uint8_t printed)
{
    if (help_count >= total_help_count && !realloc_help_map_buf()) return false;
    heap_text own_key(strdup(key));
    heap_text own_text(text ? strdup(text) : nullptr);
    if (!own_key || (text && !own_text)) {
        LOG(LOG_ERR, "no memory for help key '%s'", key);
        return false;
    }
    help_map[help_count++] = {own_key.release(), own_text.release(), printed};
    return true;
}

// "key = text"; everything else is a remark. False: memory is short.
bool load_help_line(char *line)
{
    char *equals = strchr(line, '=');
    if (!equals) return true;
    char *end = equals;
    while (end > line && is_blank(end[-1])) end--;
    *end = '\0';
    const char *key = skip_blanks(line);
    if (*key == '\0') return true;

    char *text = equals + 1;
    const size_t length = strlen(text);
    if (length > 0 && text[length - 1] == '\n') text[length - 1] = '\0';
    text = skip_blanks(text);
    return add_help_entry(key, *text ? text : nullptr, 0);
}

struct help_entry *find_help_entry(const char *key)
{
    for (int i = 0; i < help_count; i++)
        if (strcmp(help_map[i].key, key) == 0) return &help_map[i];
    return nullptr;
}

// Every key is printed once, bare when it has no text.
void print_help_key(FILE *out, const char *key)
{
    if (!key) return;
    struct help_entry *entry = find_help_entry(key);
    if (!entry) {
        if (add_help_entry(key, nullptr, 1)) fprintf(out, "%s\n", key);
        return;
    }
    if (entry->printed) return;
    entry->printed = 1;
    if (entry->text)
        fprintf(out, "%-32s = %s\n", key, entry->text);
    else
        fprintf(out, "%s\n", key);
}

void print_help_keys(FILE *out, const xmlNode *parent)
{
    for (const xmlNode *child = parent->children; child; child = child->next) {
        if (!is_element(child)) continue;
        print_help_key(out, get_xmlnode_attr(child, "help"));
        print_help_keys(out, child);
    }
}

struct iovec path_component(const char *text)
{
    return {const_cast<char *>(text), strlen(text)};
}

}  // namespace
}  // namespace apconf

void load_help_map(const char *path)
{
    const apconf::unique_file file(path ? fopen(path, "r") : nullptr);
    if (!file) return;
    char line[apconf::help_line_size];
    while (fgets(line, sizeof line, file.get()))
        if (!apconf::load_help_line(line)) return;
}

void free_help_map(void)
{
    for (int i = 0; i < help_count; i++) {
        free(help_map[i].key);
        free(help_map[i].text);
    }
    free(help_map);
    help_map = nullptr;
    help_count = total_help_count = 0;
}

const char *get_help_string(const char *key)
{
    if (!key) return nullptr;
    for (int i = 0; i < help_count; i++)
        if (help_map[i].text && strcmp(help_map[i].key, key) == 0) return help_map[i].text;
    return key;
}

void help_dump(FILE *out, const char *xml_path)
{
    if (!out) return;
    load_help_map(apconf::help_path);
    const apconf::xml_doc document = apconf::read_schema(__func__, xml_path);
    if (document) {
        for (const char *key : apconf::fixed_keys) apconf::print_help_key(out, key);
        apconf::print_help_keys(out, xmlDocGetRootElement(document.get()));
    }
    free_help_map();
}

void dump_cpath(const struct cmd_node *node, int depth, int fd)
{
    if (!node || !node->children) return;
    if (depth < 0 || depth >= CMDVEC_COUNT - 1) {
        LOG(LOG_ERR, "command '%s' is nested too deep, skip what is below it", node->name);
        return;
    }
    for (const struct cmd_node *child = node->children; child->name; child++) {
        cmdvec[depth] = apconf::path_component("/");
        cmdvec[depth + 1] = apconf::path_component(child->name);
        if (writev(fd, cmdvec, depth + 2) < 0) {
            LOG(LOG_ERR, "write path of command '%s' failed: %s", child->name, strerror(errno));
            return;
        }
        if (child->children) dump_cpath(child, depth + 2, fd);
    }
}
