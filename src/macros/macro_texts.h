// macro_texts.h: every message box of the macros. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class MacroBox {
    // Told texts.
    NAME_MISSING,
    ASK_OVERWRITE,  // name
    ASK_DELETE,     // name
    // Our own.
    NO_ROOM,
    NAME_NOT_IN_TABLE,  // name
    NOT_STORED,         // file, reason
    NOT_READ,           // file, reason
    DAMAGED,            // file
    NOT_DELETED,        // file, reason
    COUNT,              // how many; no box
};

constexpr int YES_BUTTON = 0;

// Shows a box and gives the index of the button pressed.
int show_macro_box(MacroBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
