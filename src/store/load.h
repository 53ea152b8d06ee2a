// load.h: making the row table of a file in one pass, and the test for NUL bytes. Main thread only.
#pragma once

namespace hexlane {

// Opens file_path as the document: builds the table, opens both streams, sets file_open. The caller has
// closed the previous document, sets file_title and file_dir before and the caret after. `modified` stays. A
// missing file is created; an empty one gets CR LF. Gives 1 when the document is open. Otherwise 0: a message
// has told why (or the user cancelled the question about NULs), the file is untouched, file_open is 0, and
// file_path and file_title are empty.
int load_file();

// Asks about NUL bytes and strips them on Yes. -1 for Cancel, else 0.
int check_nulls();

// Writes `source` without its NUL bytes in its own place, complete and then renamed. 0, or -1 on failure.
int strip_nulls(const char* path);

// file_dir from file_path: everything up to its last '/'.
void set_file_dir();

// A last row with text and without a line end gets an end row behind it.
void add_end_row_after_load();

}  // namespace hexlane
