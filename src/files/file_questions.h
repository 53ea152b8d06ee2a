// file_questions.h: the question about unsaved changes, and the file dialogs with their memory of type and
// folder. Main thread only.
#pragma once

#include "platform/desktop.h"

namespace hexlane {

enum class SaveAnswer { YES = 1, NO = 0, CANCEL = -1 };
SaveAnswer ask_save();

// Open and Save As dialogs. Both give 1 and the file in `dialog`, or 0 for Cancel. The caret is hidden
// meanwhile.
int ask_open_name(platform::FileDialog* dialog);
int ask_save_name(platform::FileDialog* dialog);

// The same for the files of the ports, which remember a custom type of their own.
int ask_file_to_send(platform::FileDialog* dialog);
int ask_file_to_receive(platform::FileDialog* dialog);

// A file was named from outside a dialog: the next dialog opens in its folder, with its type.
void note_named_file(const char* path);

}  // namespace hexlane
