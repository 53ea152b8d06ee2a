// frame_texts.h: every message box of the frame. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class FrameBox {
    COMPARE_ACTIVE_FILE,
    NO_HOME,  // folder
    COUNT,    // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_frame_box(FrameBox box, const char* argument = "");

}  // namespace hexlane
