// machine_watch.h: the table of the machines and its file, with what the user is told and asked about the
// file. Main thread only.
#pragma once

#include "dnc/machine_format.h"

#include <cstdint>

namespace hexlane {

// Program start, ahead of the window: the table from its file, or the defaults. tell_machine_file, once the
// window is on show, tells what was wrong with the file.
void start_machine_table();
void tell_machine_file();

// Drops what was changed: the table of the file again, as load_machine_table. When there is none to be read,
// `fallback` counts. What is wrong with the file is told, but not twice in a row.
void reload_machine_table(const MachineParams fallback[MACHINE_COUNT]);

// What happens when another program has changed the file since it was read here. In the order of the buttons.
enum class TableAnswer : uint8_t {
    KEEP_MINE,  // also when nobody has changed it
    TAKE_THEIRS,
    CANCEL,
};

// Writes the table, unless the answer is another one than KEEP_MINE: then nothing is done. A failure is told.
TableAnswer store_machine_table();

// Saves `machine` as the current one, with the table of the answer. 0 when that was CANCEL: then nothing is
// done. A failure is told.
int store_current_machine(int machine);

}  // namespace hexlane
