// store_fault.h: what happens when a write of the store fails (full disk, I/O error, size limit).
// The failing operation leaves the table as it was. A row that could not be committed is kept in
// unsaved_row, further edits are refused until it has been stored, and the user is told once, from the
// message loop, since a commit can run inside a repaint. Main thread only.
#pragma once

#include "platform/files.h"
#include "shell/store_limits.h"

#include <cstdint>

namespace hexlane {

// One document; wiped by clear_store_fault (load, close).
struct StoreFault {
    int16_t damaged;  // a read or write of the store has failed since the load and not been made good
    platform::FileError error;       // why
    char path[platform::PATH_SIZE];  // the file concerned
    int16_t told;                    // the user has seen the message
    int16_t table_full;              // it was no file: the document has as many rows as the editor can hold
};
extern StoreFault store_fault;

struct UnsavedRow {
    int32_t row;  // -1 for none
    char text[ROW_BUFFER_SIZE];
    int32_t shown;  // bytes of the stored row that `text` stands for; the bytes behind them stay with the row
};
extern UnsavedRow unsaved_row;

// Notes a failure with platform::last_file_error() and posts STORE_FAULT_MESSAGE, once for each fault.
void raise_store_fault(const char* path);

// raise_store_fault for an edit that could not be carried out: the user is told even if a fault has been told
// before. Gives 0.
int fail_edit(const char* path);

// fail_edit for rows that the document has no place for.
int fail_full_table();

// Keeps row_text as the text of a row that could not be committed; it stands for the first `shown` bytes of
// what is stored.
void keep_unsaved_row(int32_t row, int32_t shown);

void clear_store_fault();

// Before every edit. 1 when the document may be changed: there is no unsaved row, or it could be stored just
// now. 0: the edit must be refused (a beep tells it).
int edits_allowed();

// The box of STORE_FAULT_MESSAGE; none for a fault that has been made good since.
void show_store_fault();

}  // namespace hexlane
