// machine_text.h: a machine's settings as text, FIELD=VALUE, and back. What the dialogs refuse is refused
// here too.
#pragma once

#include "dnc/machine_format.h"

#include <string>

namespace hexlane {

// All settings, a line each, in a form that set_setting takes. A number out of its limits (from a damaged
// file) stands in a comment line.
std::string machine_text(const MachineParams& machine, bool first);

// Takes one FIELD=VALUE into the record; "preset=PROTOCOL" sets what a protocol brings with it. Gives what is
// wrong with it, or "".
std::string set_setting(MachineParams* machine, const std::string& setting);

// Puts in what the data type forces, and no delay without an end-of-block conversion. Gives a sentence for
// each setting that was changed, a line each.
std::string apply_rules(MachineParams* machine);

// The short forms that lists show: "heidenhain", "9600 7N2".
std::string protocol_word(const MachineParams& machine);
std::string data_type_word(const MachineParams& machine);
std::string eob_word(const MachineParams& machine);
std::string line_form(const MachineParams& machine);

}  // namespace hexlane
