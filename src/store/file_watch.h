// file_watch.h: whether another program has changed the active file since it was opened. Main thread only.
#pragma once

#include "platform/files.h"

namespace hexlane {

enum class FileChange {
    NONE,
    IN_PLACE,  // the same file holds other bytes: unchanged rows cannot be trusted
    REPLACED,  // another file has the name now; our handle still holds the old bytes
    REMOVED,   // no file has the name; our handle still holds the old bytes
};

// Notes what the file is ahead of a load, so that a write during the load is noticed too.
void note_document_stamp(platform::FileHandle file);

// Compares with the file on disk. `fresh` takes true when this state has not been reported by
// mark_change_told yet.
FileChange document_change(bool* fresh);
void mark_change_told();

}  // namespace hexlane
