// The memory of `root`: reading, writing, comparing and releasing fields, elements and records as their descriptions
// lay them out.
#pragma once

#include <cstddef>
#include <string>

#include <apconf/apconf.h>

namespace apconf_host
{

// One value for a field, converted and checked.
struct argument {
    const apconf_field *field = nullptr;
    std::string bytes;              // VALUE, VALUES, LIST: the values, back to back; TEXT, TYPED: the text
    json_object *object = nullptr;  // OBJECT: borrowed from the message
};

// One element of a command in a record (of commands without array: the record), beside the same place of an unset
// record. A field stands at its offset from both.
struct element {
    char *stored = nullptr;
    const char *unset = nullptr;
};

// The record of `scope` in which nothing is set. init_cmd_tree_data must have been called.
const char *unset_record(apconf_scope scope);

element element_at(const apconf_command &command, char *record, size_t index = 0);

// How many elements a command has room for: of the block's, what the schema allows.
size_t capacity(const apconf_command &command, const cmd_node &node);

bool is_heap_text(const apconf_field &field);
char *load_text(const apconf_field &field, const element &at);

bool is_set(const apconf_field &field, const element &at);
bool any_set(const apconf_command &command, const element &at);
bool holds(const element &at, const argument &argument);

// The field's value would be stored as "not set".
bool looks_unset(const argument &argument, const element &at);

// Both release what the field held. Writing throws std::bad_alloc with the field as it was.
void write(const element &at, const argument &argument);
void unset(const apconf_field &field, const element &at);
void unset_all(const apconf_command &command, const element &at);

// Removes element `index` of the first `count`; those behind it move up.
void remove_element(const apconf_command &command, char *record, size_t index, size_t count);

uint32_t option_word(const apconf_command &command, const char *record);
uint32_t unset_option(const apconf_command &command);
void set_option(const apconf_command &command, char *record, uint32_t word);

// Makes all elements of a command and its option word unset. False when they were.
bool reset_command(const apconf_command &command, char *record);

// Makes a whole record unset, releasing what its commands held.
void reset_record(apconf_scope scope, char *record);

bool is_node(const apconf_command &command);

// The command reports "no" or "noall" as long as it is unset.
bool reports_removal(const apconf_command &command);

}  // namespace apconf_host
