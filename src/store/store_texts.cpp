// store_texts.cpp: the table behind show_store_box, in the order of StoreBox.

#include "store/store_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO_CANCEL;

namespace {

constexpr BoxText STORE_BOXES[] = {
    {"%s has NULLs. Do you wish to strip them? ", "EditFile", BoxIcon::EXCLAMATION, BUTTONS_YES_NO_CANCEL},
    {"%s not opened\n\nThe file cannot be opened for reading and writing: %s.", "Access Denied",
     BoxIcon::EXCLAMATION, BUTTONS_OK},

    {"%s could not be loaded: %s.\n\nThe file itself is untouched.", "Load Error", BoxIcon::STOP, BUTTONS_OK},
    {"%s has more rows than the editor can hold (%s).\n\nThe file is untouched.", "Load Error", BoxIcon::STOP,
     BUTTONS_OK},
    {"%s is larger than the editor can hold (%s bytes).\n\nThe file is untouched.", "Load Error",
     BoxIcon::STOP, BUTTONS_OK},
    {"The NULLs could not be stripped from %s: %s.\n\nThe file is as it was.", "EditFile",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s could not be saved: %s.\n\nThe file on disk is as it was before, and your changes are still in the editor.",
     "Save Error", BoxIcon::STOP, BUTTONS_OK},
    {"The changed document could not be written out for the compare: %s.", "Save Error", BoxIcon::STOP,
     BUTTONS_OK},
    {"%s could not be merged: %s.\n\nThe active file is as it was before.", "Merge Error", BoxIcon::STOP,
     BUTTONS_OK},
    {"No backup of %s could be made: %s.\n\nNothing has been merged.", "Merge Error", BoxIcon::STOP,
     BUTTONS_OK},
    {"The merge into %s was not undone: the file is no longer the one that the merge made.\n\nThe state from before the merge is in %s.",
     "Merge Error", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The merge into %s was not undone: the file has been moved or deleted since.\n\nThe state from before the merge is in %s.",
     "Merge Error", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The merge into %s was not undone: its backup %s is no longer there.\n\nThe file is as the merge made it.",
     "Merge Error", BoxIcon::STOP, BUTTONS_OK},
    {"The merge was not undone in %s.\n\nThe state from before the merge is in %s.", "Merge Error",
     BoxIcon::STOP, BUTTONS_OK},
    {"The merge into %s was undone. What the merge had made could not be deleted, and is in %s.",
     "Merge Error", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The merge was not undone, and %s is not in its place. What the merge had made is in %s; the state from before the merge has the same name without the ending .merged.",
     "Merge Error", BoxIcon::STOP, BUTTONS_OK},
    {"The merge into %s was undone. Another program had put another file in its place; that is in %s now.",
     "Merge Error", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"A changed row could not be stored in %s: %s.\n\nIts text is kept, and no further change is taken until it can be stored. Free some space and go on, or save the file.",
     "Disk Error", BoxIcon::STOP, BUTTONS_OK},
    {"%s could not be read or written: %s.\n\nThe last step was not carried out.", "Disk Error",
     BoxIcon::STOP, BUTTONS_OK},
    {"The document has as many rows as the editor can hold (%s).\n\nNo row was put in.", "EditFile",
     BoxIcon::STOP, BUTTONS_OK},
    {"%s was not saved: it would have more rows than the editor can hold (%s).\n\nThe file on disk is as it was before, and your changes are still in the editor. Delete some rows and save again.",
     "Save Error", BoxIcon::STOP, BUTTONS_OK},
    {"%s was not merged: the active file would have more rows than the editor can hold (%s).\n\nThe active file is as it was before.",
     "Merge Error", BoxIcon::STOP, BUTTONS_OK},
};
static_assert(std::size(STORE_BOXES) == static_cast<std::size_t>(StoreBox::COUNT));

}  // namespace

int show_store_box(StoreBox box, const char* first, const char* second) {
    return show_box(STORE_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
