// input_rules.h: what a field of a view takes, judged the same way on every desktop.
#pragma once

#include "platform/views.h"

namespace hexlane::platform {

// Whether a field may hold `text` while it is being typed: limit and allowed characters. No rule takes all.
bool field_takes(const InputRule* rule, const char* text);

// A character as the field takes it: a capital where the rule wants capitals.
char field_character(const InputRule* rule, char c);

// Whether `text` is a number in the rule's range; true when the rule has no range. An empty text is bad.
bool value_in_range(const InputRule* rule, const char* text);

// Tells the person that a value is bad: the rule's box, or a beep.
void report_bad_value(const InputRule* rule);

// `label` without its '&' mnemonics ("&&" is one '&'), into plain[size].
void plain_label(const char* label, char* plain, std::size_t size);

}  // namespace hexlane::platform
