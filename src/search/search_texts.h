// search_texts.h: every message box of the search. A new one is a line here and in the table.
#pragma once

#include <cstdint>

namespace hexlane {

enum class SearchBox {
    // Told texts.
    SEARCH_COMPLETE,  // paragraph on unseen matches, or nothing
    NOT_FOUND,        // text; the same paragraph
    REPLACE_COMPLETE,
    ROW_RANGE,       // highest number
    LINE_NOT_FOUND,  // number as typed
    // Our own.
    ROWS_LEFT,          // how many, number of the first
    NOT_IN_TABLE,       // replacement
    REPLACING_STOPPED,  // row number
    COUNT,              // how many; no box
};

// Writes the paragraph that tells of matches in text that rows do not show: in how many rows, and the first
// of them, counted from 0.
constexpr int UNSEEN_TEXT_SIZE = 120;
void tell_unseen_matches(char out[UNSEEN_TEXT_SIZE], int32_t rows, int32_t first);

// Shows a box and gives the index of the button pressed.
int show_search_box(SearchBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
