// macro_table.h: the macros that there are, and their files. A macro's name stands inside its file alone; its
// place in the table is its place in the dialogs' lists. Format in macro_format.h. Main thread only.
#pragma once

#include "macros/macro_format.h"
#include "platform/text.h"

#include <cstdint>

namespace hexlane {

constexpr int MAX_MACROS = 50;
constexpr int MACRO_FILE_NAME_SIZE = 14;

struct MacroEntry {
    char name[MACRO_NAME_SIZE];  // bytes as in the file
    char file_name[MACRO_FILE_NAME_SIZE];
};

// The run; wiped by reset_macros.
struct MacroState {
    MacroFileImage block;  // what is read and written; recording and playback share its ring
    int32_t event_count;   // recording: next free entry of the ring; playback: number of events
    bool recording;
    MacroEntry table[MAX_MACROS];
    int32_t count;   // entries of the table in use
    int32_t active;  // entry of the macro that is being recorded or played
};
extern MacroState macros;

// Program start: nothing is being recorded, and the table is filled from the folder.
void reset_macros();

// Fills the table from the files MACRO.* (in either case) of macro_dir, in byte order, as far as it goes. A
// file that cannot be read gets an empty name.
void scan_macros();

// Gives `entry` the first file name from MACRO.001 to MACRO.050 that neither a file nor another entry has. 1,
// or 0 when none is free.
[[nodiscard]] int new_macro_file(int32_t entry);

// The path of the entry's file. 1; 0 when it does not fit (NAME_TOO_LONG): then it is cut.
int macro_file_path(int32_t entry, char path[platform::PATH_SIZE]);

// Writes name, count and ring, complete or not at all; a file that may not be written stays. 1; 0 on failure,
// with the reason in platform::last_file_error().
[[nodiscard]] int write_macro(int32_t entry);

enum class MacroRead : uint8_t {
    DONE,
    FAILED,   // the reason is in platform::last_file_error()
    DAMAGED,  // of another length, or with a count that is none
};

// Reads the file of `entry`. Whenever that is not done, ring and count stay as they were.
[[nodiscard]] MacroRead read_macro(int32_t entry);

// Deletes the file, then scans. 1; 0 when it could not be deleted, with the reason in
// platform::last_file_error().
[[nodiscard]] int delete_macro(int32_t entry);

// The first entry of exactly that name, -1 for none.
int32_t find_macro(const char* name);

}  // namespace hexlane
