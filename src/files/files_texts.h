// files_texts.h: every message box of this folder. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class FilesBox {
    // Told texts.
    SAVE_CHANGES,  // file
    MERGE_QUESTION,
    MERGE_WITH_ITSELF,
    OPEN_ACTIVE_FILE,
    // Our own: the active file was changed by another program.
    REPLACED_MODIFIED,    // file; Overwrite, Save As, Cancel
    REMOVED,              // file; Overwrite, Save As, Cancel
    REPLACED_UNMODIFIED,  // file; Reload, Cancel
    IN_PLACE_MODIFIED,    // file; Reload, Cancel
    IN_PLACE_UNMODIFIED,  // file; Reload, Cancel
    NOT_OPENED,           // file, reason
    NAME_NOT_WRITTEN,     // file, reason
    MERGE_ACTIVE_FILE,
    SAVE_ACTIVE_FILE,
    COUNT,  // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_files_box(FilesBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
