// machine_presets.h: the rules that tie a machine's settings together: what a protocol sets, and what a data
// type forces. The engine does not check them again. Pure; any thread.
#pragma once

#include "dnc/machine_format.h"

namespace hexlane {

// Sets what a protocol brings with it: the line, and no delay, start or end sequence. What its row of the
// table does not name is kept.
void apply_protocol_preset(MachineParams* machine, int protocol);

// Which controls of the parameter dialog a data type leaves to the user.
struct DataTypeRule {
    int parity_index;     // forced value, or KEEP
    int data_bits_index;  // forced value, or KEEP
    int eob_conversion;   // forced value, or KEEP
    int xoff_char;        // forced value, or KEEP
    bool conversion_free;
    bool parity_and_bits_free;
};
constexpr int KEEP = -1;
const DataTypeRule& data_type_rule(int data_type);

// Puts the values that the record's data type forces into the record.
void apply_data_type(MachineParams* machine);

// No end-of-block delay without an end-of-block conversion. Gives whether a delay was set back to 0.
bool drop_delay_without_conversion(MachineParams* machine);

}  // namespace hexlane
