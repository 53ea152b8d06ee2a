// machine_table.h: the sixteen machines, which of them each port uses, and their file COMMPARM.INI.
// Main thread writes, under both slots' locks once ports are open (port_engine.h); workers read.
#pragma once

#include "dnc/machine_format.h"

#include <cstdint>

namespace hexlane {

constexpr int SLOT_COUNT = 2;  // 0 the upper row of the activity screen, 1 the lower

// The run; filled by load_machine_table.
extern MachineParams machine_table[MACHINE_COUNT];
extern int16_t edit_machine;              // the record that the parameter dialog shows
extern int32_t slot_machine[SLOT_COUNT];  // the machine chosen for each slot

// Fills machine_table from parameter_file_path as far as the file goes, or makes the file with defaults. Sets
// edit_machine and slot_machine to the current machine of record 0. Nothing is reported.
void load_machine_table();

// Fills all records with the defaults. Touches no file.
void set_machine_defaults();

// Writes all records, complete and then in place. Gives 1, or 0 on failure, when the old file stays.
int save_machine_table();

// The record that slot `slot` works with.
const MachineParams& machine_of_slot(int slot);

}  // namespace hexlane
