// color_runs.cpp: the colours of a row, character by character and stretch by stretch.

#include "view/color_runs_internal.h"

#include "view/colors.h"

namespace hexlane {
namespace {

constexpr int NO_SLOT = -1;

// The slot of an address letter, NO_SLOT for any other character.
int letter_slot(char c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' : NO_SLOT;
}

}  // namespace

void ink_row(const char* text, int32_t length, const ColorEntry* table, platform::Color* inks) {
    bool in_comment = false;
    int word = NO_SLOT;  // the slot that the numbers met now belong to
    for (int32_t i = 0; i < length; ++i) {
        const char c = text[i];
        const int letter = letter_slot(c);
        inks[i] = letter == NO_SLOT ? platform::BLACK : table[letter].color;
        if (in_comment || c == '(') {
            in_comment = true;
            inks[i] = table[COMMENT_SLOT].color;
            word = COMMENT_SLOT;
        }
        const bool numeric = is_numeric_char(c);
        if (word != NO_SLOT && table[word].include_numbers != 0 && numeric)
            inks[i] = table[word].color;
        if (letter != NO_SLOT)
            word = letter;
        else if (!numeric && c != ')')
            word = NO_SLOT;
        if (c == ')')
            in_comment = false;
    }
}

int next_color_stretch(const char* text, int32_t from, const ColorEntry* table, ColorStretch* stretch) {
    int32_t first = from;
    while (text[first] != '\0' && text[first] != '(' && letter_slot(text[first]) == NO_SLOT)
        ++first;
    if (text[first] == '\0')
        return 0;
    int32_t end = first + 1;
    int slot = letter_slot(text[first]);
    if (slot == NO_SLOT) {
        slot = COMMENT_SLOT;
        while (text[end] != '\0' && text[end - 1] != ')')
            ++end;
    } else if (table[slot].include_numbers != 0) {
        while (is_numeric_char(text[end]))
            ++end;
    }
    *stretch = {first, end - first, table[slot].color};
    return 1;
}

}  // namespace hexlane
