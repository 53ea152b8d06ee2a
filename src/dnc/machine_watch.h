// machine_watch.h: the table of the machines and its file, with what the user is told about the file. Main
// thread only.
#pragma once

#include "dnc/machine_format.h"

namespace hexlane {

// Program start, ahead of the window: the table from its file, or the defaults. tell_machine_file, once the
// window is on show, tells what was wrong with the file.
void start_machine_table();
void tell_machine_file();

// Drops what was changed: the table of the file again, as load_machine_table. When there is none to be read,
// `fallback` counts. What is wrong with the file is told, but not twice in a row.
void reload_machine_table(const MachineParams fallback[MACHINE_COUNT]);

}  // namespace hexlane
