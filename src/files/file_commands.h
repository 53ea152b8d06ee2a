// file_commands.h: the commands that change which file is open or how it stands on disk, and the program's
// end. Main thread only.
#pragma once

#include "platform/text.h"

namespace hexlane {

// A file named by the command line or by a second start; empty otherwise.
extern char requested_file[platform::PATH_SIZE];

void command_open();
void command_close();
void command_save();
void command_save_as();
void command_merge();
void open_request();   // OPEN_REQUEST_MESSAGE
void close_program();  // WM_CLOSE

// Opens the files that second starts have handed over, one after the other, each by newnm.fil and
// OPEN_REQUEST_MESSAGE. What is no ordinary file by now leaves the document as it is.
void take_handovers();

// Makes requested_file the document and shows it; requested_file is empty afterwards.
void open_requested_file();

// Writes the document in the place of its file and loads it afresh; the caret stays. 1, or 0 after a message,
// when nothing has changed.
int save_and_reload();

// Loads the file as it is on disk now; the edits are lost, the caret stays. 1 when a document is open.
int reload_document();

}  // namespace hexlane
