// files_texts.cpp: the table behind show_files_box, in the order of FilesBox.

#include "files/files_texts.h"

#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO;
using platform::BUTTONS_YES_NO_CANCEL;

namespace {

constexpr const char* BUTTONS_OVERWRITE = "Overwrite|Save As|Cancel";
constexpr const char* BUTTONS_RELOAD = "Reload|Cancel";

constexpr BoxText FILES_BOXES[] = {
    {"Save current changes? %s", "EditFile", BoxIcon::EXCLAMATION, BUTTONS_YES_NO_CANCEL},
    {"The Merge function will save any pending changes and the merged file will be become a permanent part of this file.  Do you want to continue?",
     "Merge File", BoxIcon::QUESTION, BUTTONS_YES_NO},
    {"Cannot merge file with itself.", "Merge Error", BoxIcon::STOP, BUTTONS_OK},
    {"You cannot open an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},

    {"Another program has replaced %s since it was opened.\n\nOverwrite puts the document in the editor in its place. Save As keeps both.",
     "File Changed", BoxIcon::EXCLAMATION, BUTTONS_OVERWRITE},
    {"Another program has moved or deleted %s since it was opened.\n\nOverwrite writes the document in the editor under that name again. Save As takes another name.",
     "File Changed", BoxIcon::EXCLAMATION, BUTTONS_OVERWRITE},
    {"Another program has replaced %s since it was opened.\n\nReload shows the new file. Cancel keeps the old one on show.",
     "File Changed", BoxIcon::EXCLAMATION, BUTTONS_RELOAD},
    {"Another program has written into %s since it was opened. The rows that you have not changed can no longer be trusted, so the document cannot be saved.\n\nReload shows the file as it is now; your changes are lost. Cancel keeps the document on show.",
     "File Changed", BoxIcon::STOP, BUTTONS_RELOAD},
    {"Another program has written into %s since it was opened, so what is on show is no longer the file.\n\nReload shows the file as it is now.",
     "File Changed", BoxIcon::EXCLAMATION, BUTTONS_RELOAD},
    {"%s not opened\n\nThe file cannot be opened for reading and writing: %s.", "Access Denied",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s not opened\n\nIts name could not be written into newnm.fil in the program's folder: %s.",
     "Access Denied", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"You cannot merge an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"You cannot save over an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
};
static_assert(std::size(FILES_BOXES) == static_cast<std::size_t>(FilesBox::COUNT));

}  // namespace

int show_files_box(FilesBox box, const char* first, const char* second) {
    return show_box(FILES_BOXES[static_cast<int>(box)], first, second);
}

}  // namespace hexlane
