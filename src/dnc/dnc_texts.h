// dnc_texts.h: every message box of the communications. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class DncBox {
    // Told texts.
    DISCONNECT,  // question
    COMPLETE,
    TERMINATED,
    CONNECTION_FAILED,  // reason, or empty
    WORKER_FAILED,
    // Our own.
    LINE_GONE,       // port
    SOURCE_CHANGED,  // file
    CANNOT_READ,     // file
    CANNOT_WRITE,    // file, reason
};

// Shows a box and gives the index of the button pressed.
int show_dnc_box(DncBox box, const char* first = "", const char* second = "");

// The box for a port that cannot be opened, with the reason as a second paragraph.
void show_connection_failed();

}  // namespace hexlane
