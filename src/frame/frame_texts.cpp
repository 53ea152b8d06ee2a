// frame_texts.cpp: the table behind show_frame_box, in the order of FrameBox.

#include "frame/frame_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;

namespace {

constexpr BoxText FRAME_BOXES[] = {
    {"You cannot compare with an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"The program's folder cannot be used: %s\n\nIt does not exist, may not be made, or its path is too long.",
     "System Error", BoxIcon::STOP, BUTTONS_OK},
};
static_assert(std::size(FRAME_BOXES) == static_cast<std::size_t>(FrameBox::COUNT));

}  // namespace

int show_frame_box(FrameBox box, const char* argument) {
    return show_box(FRAME_BOXES[static_cast<int>(box)], argument);
}

}  // namespace hexlane
