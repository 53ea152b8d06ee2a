// ncutils_texts.cpp: the table behind show_ncutils_box, in the order of NcUtilsBox.

#include "ncutils/ncutils_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO;

namespace {

constexpr BoxText NCUTILS_BOXES[] = {
    {"Renumber Complete.", "NC Utility", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"  Are you sure?", "Strip Line Numbers", BoxIcon::QUESTION, BUTTONS_YES_NO},

    {"Rows left as they were: %s. The first is row %s.\n\nThe new text would not fit into a row, or words stand behind the characters that a row shows. All other rows are done, so the program is now mixed.",
     "NC Utility", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Rows that cannot be converted: %s. The first is row %s.\n\nThe new text would not fit into a row, or words stand behind the characters that a row shows. Nothing has been changed, since one row that is left makes all rows behind it wrong.",
     "NC Utility", BoxIcon::STOP, BUTTONS_OK},
    {"The run stopped at row %s, which could not be read or stored.\n\nThe rows in front of it are done, the rows behind it are as they were, so the program is now mixed.",
     "NC Utility", BoxIcon::STOP, BUTTONS_OK},
    {"Row %s could not be read.\n\nNothing has been changed.", "NC Utility", BoxIcon::STOP, BUTTONS_OK},
};
static_assert(std::size(NCUTILS_BOXES) == static_cast<std::size_t>(NcUtilsBox::COUNT));

}  // namespace

int show_ncutils_box(NcUtilsBox box, const char* first, const char* second) {
    return show_box(NCUTILS_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
