// macro_texts.cpp: the table behind show_macro_box, in the order of MacroBox.

#include "macros/macro_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO;

namespace {

constexpr BoxText MACRO_BOXES[] = {
    {"You must enter a Macro Name.", "Record Macro", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Overwrite %s with new macro?", "Overwrite Macro", BoxIcon::QUESTION, BUTTONS_YES_NO},
    {"Delete %s?", "Delete Macro", BoxIcon::QUESTION, BUTTONS_YES_NO},

    {"There is no room for another macro. Delete one first, or record over one that is there.",
     "Record Macro", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s has a character that the name of a macro cannot hold.", "Record Macro", BoxIcon::EXCLAMATION,
     BUTTONS_OK},
    {"%s could not be stored: %s.\n\nThe recording is lost. If it was to replace a macro, that one is as it was.",
     "Record Macro", BoxIcon::STOP, BUTTONS_OK},
    {"%s could not be read: %s.\n\nNothing has been played.", "Play Macro", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s is damaged: it is no whole macro.\n\nNothing has been played. Delete it, or record it anew.",
     "Play Macro", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s could not be deleted: %s.", "Delete Macro", BoxIcon::EXCLAMATION, BUTTONS_OK},
};
static_assert(std::size(MACRO_BOXES) == static_cast<std::size_t>(MacroBox::COUNT));

}  // namespace

int show_macro_box(MacroBox box, const char* first, const char* second) {
    return show_box(MACRO_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
