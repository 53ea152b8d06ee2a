// machine_table.h: the sixteen machines, which of them each port uses, and their file COMMPARM.INI.
// Main thread, but for machine_of_slot, which the slot's worker calls too.
#pragma once

#include "dnc/machine_format.h"

#include <cstdint>

namespace hexlane {

constexpr int SLOT_COUNT = 2;  // 0 the upper row of the activity screen, 1 the lower

// The run; filled by load_machine_table.
extern MachineParams machine_table[MACHINE_COUNT];
extern int16_t edit_machine;              // the record that the parameter dialog shows
extern int32_t slot_machine[SLOT_COUNT];  // the machine chosen for each slot

// How the file was found.
enum class TableState : uint8_t {
    READ,
    SHORT,     // what it lacks has the default
    MADE,      // there was none: it is there now, with the defaults
    NOT_MADE,  // there is none and none can be made: the table is as it was
    NOT_READ,  // it is there and cannot be read: it is left alone, and the table is as it was
};

// Fills machine_table from parameter_file_path, or makes the file with defaults when there is none. Sets
// edit_machine and the slot_machine of each closed port to the current machine of record 0. Nothing is
// reported; for NOT_MADE and NOT_READ the reason is in platform::last_file_error().
[[nodiscard]] TableState load_machine_table();

// The same, but edit_machine and slot_machine stay as they are.
[[nodiscard]] TableState read_machine_table();

// Fills all records with the defaults. Touches no file.
void set_machine_defaults();

// Whether another program has changed the file since it was read or written here: 1; 0, also when there is no
// file; -1 when it cannot be read. It is the bytes that are compared: every table has the same size, and the
// clocks and inodes of some file systems say little.
int machine_file_changed();

// Writes all records, complete and then in place. Gives 1; 0 on failure, when the old file stays and the
// reason is in platform::last_file_error(). One that cannot be read, or not be written, is not replaced.
[[nodiscard]] int save_machine_table();

// The record of the slot's machine in the table.
const MachineParams& chosen_machine(int slot);

// The settings that the slot works with. From hold_machine to let_go_machine, which is while its port is
// open, they are a copy: what is edited, dropped or read anew meanwhile counts from the next opening on, and
// a load leaves the slot its machine. Another choice counts at once; call choose_machine under the slot's
// lock.
const MachineParams& machine_of_slot(int slot);
void hold_machine(int slot);
void let_go_machine(int slot);
void choose_machine(int slot, int machine);

}  // namespace hexlane
