// print_texts.h: every message box of printing. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class PrintBox {
    // Told texts.
    NOT_STARTED,   // reason
    CANNOT_PRINT,  // of the command Print
    // Our own.
    NOT_COMPLETE,  // reason
    COUNT,         // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_print_box(PrintBox box, const char* argument = "");

}  // namespace hexlane
