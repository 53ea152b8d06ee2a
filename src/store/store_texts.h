// store_texts.h: every message box of the document store. A new one is a line here and in the table.
#pragma once

namespace hexlane {

enum class StoreBox {
    // Told texts.
    ASK_NULLS,   // file
    NOT_OPENED,  // file, reason
    // Our own.
    NOT_INDEXED,          // file, reason
    TOO_MANY_ROWS,        // file, limit
    TOO_LARGE,            // file, limit
    NULLS_NOT_STRIPPED,   // file, reason
    NOT_SAVED,            // file, reason
    SNAPSHOT_FAILED,      // reason
    NOT_MERGED,           // file, reason
    NO_MERGE_BACKUP,      // file, reason
    MERGE_NOT_UNDONE,     // file, backup
    MERGED_FILE_GONE,     // the same
    MERGE_BACKUP_GONE,    // the same
    UNDO_FAILED,          // file with the reason, backup
    MERGED_FILE_LEFT,     // file, where the merged file is
    MERGED_FILE_ASIDE,    // the same
    OTHER_FILE_ASIDE,     // file, where another program's file is
    ROW_NOT_STORED,       // file, reason
    STORE_FAILED,         // file, reason
    TABLE_FULL,           // limit
    SAVE_TOO_MANY_ROWS,   // file, limit
    MERGE_TOO_MANY_ROWS,  // file, limit
    COUNT,                // how many; no box
};

// Shows a box and gives the index of the button pressed.
int show_store_box(StoreBox box, const char* first = "", const char* second = "");

}  // namespace hexlane
