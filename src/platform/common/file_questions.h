// file_questions.h: what every desktop does with the name that a person gave in a file dialog: makes it
// absolute, puts the default extension behind it, and asks about creating and overwriting in boxes of ours.
#pragma once

#include "platform/desktop.h"

namespace hexlane::platform {

// Settles `typed` (UTF-8, absolute or relative to dialog->start_folder) with the entry `filter_index` on
// show. Gives 1 and fills path, file_title and filter_index of the dialog; 0 after a box when the dialog must
// stay up: the path is too long, its folder is not there, it is a folder, or the person answered No.
//   open: a file that does not exist may be created later: asks first.
//   save: a file that exists will be replaced: asks first.
int settle_open_file(FileDialog* dialog, const char* typed, int filter_index);
int settle_save_file(FileDialog* dialog, const char* typed, int filter_index);

}  // namespace hexlane::platform
