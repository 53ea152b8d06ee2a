// save.h: streaming the rows in table order into a new file. Runs of unchanged rows are copied as raw bytes;
// rows that were touched get CR LF. Main thread only.
#pragma once

namespace hexlane {

// Writes the document in the place of file_path. Gives 1: `modified` is 0, the table no longer fits the file,
// and the caller closes and loads. Gives 0 after a message: file and document are as before.
int save_file();

// save_file for a merge: leaves the merge backup and its flag alone.
int save_file_keeping_merge();

// Writes the document to `path`, complete and then in place. 1 as save_file (the old file stays as it is), or
// 0 after a message.
int save_file_as(const char* path);

// Writes the document to a new temporary file, named in compare_path. 1, or 0 after a message.
int write_compare_snapshot();

}  // namespace hexlane
