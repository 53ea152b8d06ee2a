// file_guard.h: what to do when another program has changed the active file on disk. Main thread only.
#pragma once

namespace hexlane {

enum class GuardAnswer {
    WRITE,    // the file may be replaced
    SAVE_AS,  // the user wants another name
    STOP,     // nothing may be written now
};

// Before the active file is replaced. Asks when it is no longer the one that was opened; a yes holds for that
// state of the file. Rows of a file that was written in place cannot be trusted: it may not be saved, and a
// reload is offered.
GuardAnswer guard_save();

// Whether the document may be written at all, under any name: false after telling that it was written in
// place.
bool guard_rows();

// When the window gets the focus: asks once for each new state of the file.
void check_active_file();

}  // namespace hexlane
