// frame_texts.h: every message box of the frame. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class FrameBox {
    // Told texts.
    SAVE_CHANGES,  // file
    MERGE_QUESTION,
    MERGE_WITH_ITSELF,
    VIEW_FAILED,
    OPEN_ACTIVE_FILE,
    COMPARE_ACTIVE_FILE,
    // Our own: the active file was changed by another program.
    REPLACED_MODIFIED,    // file; Overwrite, Save As, Cancel
    REMOVED,              // file; Overwrite, Save As, Cancel
    REPLACED_UNMODIFIED,  // file; Reload, Cancel
    IN_PLACE_MODIFIED,    // file; Reload, Cancel
    IN_PLACE_UNMODIFIED,  // file; Reload, Cancel
    NOT_OPENED,           // file, reason
    NAME_NOT_WRITTEN,     // file, reason
    NO_HOME,              // folder
    MERGE_ACTIVE_FILE,
    SAVE_ACTIVE_FILE,
};

// Shows a box and gives the index of the button pressed.
int show_frame_box(FrameBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
