// search_texts.cpp: the table behind show_search_box, in the order of SearchBox.

#include "search/search_texts.h"

#include "platform/text.h"
#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;

namespace {

constexpr BoxText SEARCH_BOXES[] = {
    {"Search Complete%s", "Search", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s not found.%s", "Search", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Find and Replace Complete", "Find and Replace", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"'Row Number' must be between 1 and %s", "Move To Row Number", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Line Number '%s' not found.", "Move To Line Number", BoxIcon::EXCLAMATION, BUTTONS_OK},

    {"Rows left with a match: %s. The first is row %s.\n\nThe row would have become too long, or it has a match behind the characters that it shows and stays whole as it was. So the program may hold both the old text and the new one.",
     "Find and Replace", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s has a character that a row cannot hold. Nothing has been replaced.", "Find and Replace",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The replacing has stopped at row %s, which could not be read or stored.\n\nWhat was replaced before stays replaced.",
     "Find and Replace", BoxIcon::STOP, BUTTONS_OK},
};
static_assert(std::size(SEARCH_BOXES) == static_cast<std::size_t>(SearchBox::COUNT));

// Stands below the told text.
constexpr char UNSEEN_MATCHES[] =
    "\n\nRows with a match behind the characters that they show: %d. The first is row %d.";
static_assert(sizeof UNSEEN_MATCHES + 2 * 11 <= UNSEEN_TEXT_SIZE);

}  // namespace

void tell_unseen_matches(char out[UNSEEN_TEXT_SIZE], int32_t rows, int32_t first) {
    platform::format_text(out, UNSEEN_TEXT_SIZE, UNSEEN_MATCHES, rows, first + 1);
}

int show_search_box(SearchBox box, const char* first, const char* second) {
    return show_box(SEARCH_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
