// search_texts.h: every message box of the search. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class SearchBox {
    // Told texts.
    SEARCH_COMPLETE,
    NOT_FOUND,  // text
    REPLACE_COMPLETE,
    ROW_RANGE,       // highest number
    LINE_NOT_FOUND,  // number as typed
    // Our own.
    MATCHES_LEFT,       // how many, row number of the first
    NOT_IN_TABLE,       // replacement
    REPLACING_STOPPED,  // row number
};

// Shows a box and gives the index of the button pressed.
int show_search_box(SearchBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
