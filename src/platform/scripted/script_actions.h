// script_actions.h: the lines of the language, one function each, and the table of them. Only for script.cpp
// and the files that hold the functions. Main thread only.
#pragma once

#include "platform/scripted/person.h"
#include "platform/scripted/script_words.h"

#include <vector>

namespace hexlane::platform {

using Words = std::vector<Word>;  // the action's name first

// When a line may stand.
constexpr unsigned BEFORE_START = 1;
constexpr unsigned WHILE_RUNNING = 2;
constexpr unsigned AFTER_EXIT = 4;
constexpr unsigned ALWAYS = BEFORE_START | WHILE_RUNNING | AFTER_EXIT;

struct Action {
    const char* name;
    const char* use;  // what stands behind the name, as told when it is wrong
    unsigned when;
    Refusal (*act)(const Words& words);
};

// The action of a name, nullptr when there is none.
const Action* find_action(const std::string& name);

// What an action gives when its words make no sense; the person sees the table's `use` instead.
extern const Refusal WRONG_USE;

// "LABEL", "LABEL"/2 or @ID in that place. Gives false when something else stands there, or nothing.
bool control_at(const Words& words, std::size_t at, ControlName* name);

// A script plays the machine on a serial line, in script_lines.cpp.
Refusal do_line(const Words& words);

// The lines that print, in script_prints.cpp.
Refusal print_screen(const Words& words);
Refusal print_colors(const Words& words);
Refusal print_status(const Words& words);
Refusal print_menu(const Words& words);
Refusal print_title(const Words& words);
Refusal print_caret(const Words& words);
Refusal print_view(const Words& words);
Refusal print_bytes(const Words& words);
Refusal print_files(const Words& words);

// Bytes as quoted lines, one for each line feed, the rest last.
void print_byte_lines(const std::string& bytes);

// What the program layer knows (script.h); set before the first line.
void set_state_printers(void (*state)(), std::string (*rows)(int64_t first, int64_t last));

}  // namespace hexlane::platform
