// Valid values for every described field, for tests that go through the descriptions.
#pragma once

#include <string>

#include "apconf/description.h"

namespace apconf_test
{

// A text that converts to a value of the type, and the text that the value converts back to.
struct sample {
    std::string given;
    std::string shown;
};
sample sample_of(uint32_t ptype);

// Gives a field a valid value. `place` is where it lies; heap members become fresh copies.
void set_sample(const apconf_field &field, char *place);

// The text, or for several values the JSON array, that such a field is reported as.
std::string shown_sample(const apconf_field &field);

// Sets the word that picks which of the fields under one key is in force. `first` picks ip addresses and hex texts,
// otherwise it is domains and plain texts. Commands without such a word stay as they are.
void select_alternative(const apconf_command &command, char *record, bool first);

// Whether the field is one of those that select_alternative has put in force.
bool is_alternative(const apconf_field &field, bool first);

void set_word(char *place, uint32_t value);

}  // namespace apconf_test
