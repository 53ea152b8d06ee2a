// ncutils_texts.h: every message box of the NC utilities. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class NcUtilsBox {
    // Told texts.
    RENUMBER_COMPLETE,
    STRIP_QUESTION,  // Yes, No
    // Our own.
    ROWS_LEFT,      // number of rows, number of the first
    NOT_CONVERTED,  // the same
    RUN_STOPPED,    // number of the row
    LOOK_STOPPED,   // the same
    COUNT,          // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_ncutils_box(NcUtilsBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
