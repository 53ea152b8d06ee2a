// boxes.h: message boxes of the program. Each subsystem keeps its texts in one table of BoxText and shows
// them here, with the caret hidden meanwhile. Main thread only.
#pragma once

#include "platform/desktop.h"

namespace hexlane {

struct BoxText {
    const char* text;  // each "%s" takes the next argument
    const char* title;
    platform::BoxIcon icon;
    const char* buttons;  // labels with a bar between them
};

// Shows the box and gives the index of the button pressed.
int show_box(const BoxText& box, const char* first = "", const char* second = "");

}  // namespace hexlane
