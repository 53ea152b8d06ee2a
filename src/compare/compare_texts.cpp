// compare_texts.cpp: the table behind show_compare_box, in the order of CompareBox.

#include "compare/compare_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;

namespace {

constexpr BoxText COMPARE_BOXES[] = {
    {"Files are identical", "Compare", BoxIcon::INFORMATION, BUTTONS_OK},
    {"Cannot print compare results", "Print Error", BoxIcon::STOP, BUTTONS_OK},

    {"Files are identical\n\nThe compare was stopped: nothing differed up to row %s. The rows behind it were not compared.",
     "Compare", BoxIcon::INFORMATION, BUTTONS_OK},
    {"%s cannot be compared: %s.", "Compare", BoxIcon::STOP, BUTTONS_OK},
    {"%s cannot be compared: it has more than 4,294,967,295 bytes.", "Compare", BoxIcon::STOP, BUTTONS_OK},
    {"The compare could not be finished, since its list of rows cannot be stored: %s.\n\nBoth files are as they were. Make room in the folder of the temporary files, then compare again.",
     "Compare", BoxIcon::STOP, BUTTONS_OK},
    {"%s has been changed by another program since the compare began, or can no longer be read.\n\nRows that cannot be read are blank, and others may not be the rows that were compared. Compare again to be sure.",
     "Compare", BoxIcon::EXCLAMATION, BUTTONS_OK},
};
static_assert(std::size(COMPARE_BOXES) == static_cast<std::size_t>(CompareBox::COUNT));

}  // namespace

int show_compare_box(CompareBox box, const char* first, const char* second) {
    return show_box(COMPARE_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
