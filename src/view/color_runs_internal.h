// color_runs_internal.h: which character of a row takes which colour: the rule without a window.
#pragma once

#include "platform/surface.h"
#include "shell/child.h"

#include <cstdint>

namespace hexlane {

// Gives each of the first `length` characters of `text` its ink. An address letter takes its slot's colour
// and, where the slot includes numbers, so do the digits, signs and points behind it. A comment, from a '('
// through its ')', takes the comment slot's colour, and with that slot's numbers included so do the numbers
// behind it. It ends with its row. Everything else, small letters too, is black.
void ink_row(const char* text, int32_t length, const ColorEntry* table, platform::Color* inks);

// A coloured stretch of a row.
struct ColorStretch {
    int32_t first;
    int32_t length;
    platform::Color ink;
};

// Finds the next coloured stretch of `text` from index `from` on: a comment, or a letter with the numbers
// behind it where its slot includes them. Numbers behind a comment belong to none. Gives 1, or 0 when there
// is none.
int next_color_stretch(const char* text, int32_t from, const ColorEntry* table, ColorStretch* stretch);

}  // namespace hexlane
