// search_texts.cpp: the table behind show_search_box, in the order of SearchBox.

#include "search/search_texts.h"

#include "frame/boxes.h"

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;

namespace {

constexpr BoxText SEARCH_BOXES[] = {
    {"Search Complete", "Search", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s not found.", "Search", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Find and Replace Complete", "Find and Replace", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"'Row Number' must be between 1 and %s", "Move To Row Number", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Line Number '%s' not found.", "Move To Line Number", BoxIcon::EXCLAMATION, BUTTONS_OK},

    {"Matches that were left as they are, because the row would have become too long: %s.\n\nThe first is in "
     "row %s. The program now holds both the old text and the new one.",
     "Find and Replace", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s has a character that a row cannot hold. Nothing has been replaced.", "Find and Replace",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The replacing has stopped at row %s, which could not be read or stored.\n\nWhat was replaced before "
     "stays replaced.",
     "Find and Replace", BoxIcon::STOP, BUTTONS_OK},
};

}  // namespace

int show_search_box(SearchBox box, const char* first, const char* second) {
    return show_box(SEARCH_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
