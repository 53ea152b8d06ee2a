// compare_texts.h: every message box of the compare. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class CompareBox {
    // Told texts.
    IDENTICAL,
    CANNOT_PRINT,
    // Our own.
    IDENTICAL_SO_FAR,  // number of the last row; the told text with a paragraph of ours
    NOT_OPENED,        // file, reason
    TOO_LARGE,         // file
    NO_RECORDS,        // reason
    DISTURBED,         // file
    COUNT,             // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_compare_box(CompareBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
