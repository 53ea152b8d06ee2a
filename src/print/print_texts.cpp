// print_texts.cpp: the table behind show_print_box, in the order of PrintBox.

#include "print/print_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;

namespace {

constexpr BoxText PRINT_BOXES[] = {
    {" Error: %s ", " COMMDLG.DLL ERROR ", BoxIcon::STOP, BUTTONS_OK},
    {"Cannot print file", "Print Error", BoxIcon::STOP, BUTTONS_OK},

    {"The print job could not be finished: %s.\n\nA part of it may be missing.", "Print Error",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
};
static_assert(std::size(PRINT_BOXES) == static_cast<std::size_t>(PrintBox::COUNT));

}  // namespace

int show_print_box(PrintBox box, const char* argument) {
    return show_box(PRINT_BOXES[static_cast<int>(box)], argument);
}

}  // namespace hexlane
