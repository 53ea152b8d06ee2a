// station_texts.h: every message box of the communications. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class DncBox {
    // Told texts.
    DISCONNECT,         // question
    CONNECTION_FAILED,  // reason, or empty
    WORKER_FAILED,
    DELAY_DROPPED,
    CLOSE_EDITED_FILE,  // question
    SEND_ACTIVE_FILE,
    RECEIVE_ACTIVE_FILE,
    COMMUNICATE_ACTIVE_FILE,
    NO_DATA,
    OVERWRITE_DATA,  // question
    STOP_PORT,       // question
    TERMINATE_PORT,  // question
    NO_TERMINAL,
    RECEIVE_CONNECTION_FAILED,  // reason, or empty
    // Our own.
    NAME_NOT_IN_TABLE,  // name
    TABLE_NOT_SAVED,    // reason
    TOO_LARGE_TO_SEND,
    START_POINT_GONE,
    CANNOT_MAKE_FILE,  // file, reason
    NO_ROW_INDEX,      // file, reason
    LOG_NOT_WRITTEN,   // reason
    TABLE_NOT_READ,    // reason
    TABLE_MADE_ANEW,
    TABLE_NOT_MADE,  // reason
    TABLE_SHORT,
    TABLE_CHANGED,  // question; buttons as TableAnswer
    RECEIVE_CUT,    // file
    COUNT,          // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_dnc_box(DncBox box, const char* first = "", const char* second = "");

// The box for a port that cannot be opened, with the reason as a second paragraph.
void show_connection_failed();
void show_receive_connection_failed();

}  // namespace hexlane
