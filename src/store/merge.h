// merge.h: a second file spliced into the active file on disk, with a backup that the program's end can
// restore. Main thread only.
#pragma once

#include "platform/files.h"
#include "platform/text.h"

#include <cstdint>

namespace hexlane {

// From the first merge of a file until its Save, its undoing or the program's end. It can be undone only
// while file_path is merge_restore_path.
struct MergeBackup {
    int16_t merge_backup_active;
    char merge_restore_path[platform::PATH_SIZE];  // the file as it was named at the first merge
    char merge_backup_path[platform::PATH_SIZE];   // its bytes from before that merge
    char document_path[platform::PATH_SIZE];       // the merged document: a Save As has given it another name
    platform::FileStamp merged;                    // the file that the last merge made
};
extern MergeBackup merge_backup;

// Puts the whole of merge_path into the active file in front of the caret's row. All rows are 'O' (the caller
// has saved and reloaded). On success closes the document, sets `modified`, and the caller loads. Gives 1; 0
// on failure after a message, and then document and file are as they were.
int merge_file();

// Whether the backup belongs to the active file.
bool merge_counts();

// Takes the active file as it stands on disk as what the merge made: after a save or a load of our own.
void note_merged_file();

// The document has been saved as `path`, which is not file_path. If it is the merged one, its next Save makes
// the merge final, and being saved over the merged file again does so now. If it is another one, there is no
// merge of `path` to undo any more; the backup stays.
void note_saved_as(const char* path);

// After a Save of the merged document: the merge is final; deletes the backup.
void confirm_merge();

// At the program's end: puts the backup in the place of the merged file in one step. The document is closed.
// Does nothing but tell the user when the file is not the one that the merge made. Gives 1 when restored.
int undo_merge();

}  // namespace hexlane
