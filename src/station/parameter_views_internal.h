// parameter_views_internal.h: what COMMSETTINGS and ADVANCED share: the record that both edit. Main thread
// only.
#pragma once

#include "dnc/machine_fields.h"

namespace hexlane {

// The record of edit_machine.
MachineParams& edited_machine();

// Stores one of its settings.
void store_setting(Field field, int value);

}  // namespace hexlane
