#include "dnc/machine_presets.h"

#include <cstring>

#include "dnc/machine_fields.h"

namespace hexlane {

namespace {

struct ProtocolPreset {
    int baud_index;
    int data_type;
    int data_bits_index;
    int stop_bits_index;
    int parity_index;
};

constexpr ProtocolPreset PROTOCOL_PRESETS[] = {
    {4, DATA_ASCII, 1, 1, 2},
    {6, KEEP, KEEP, 1, KEEP},
    {5, KEEP, KEEP, 1, KEEP},
    {7, DATA_ASCII, KEEP, KEEP, KEEP},
};

constexpr DataTypeRule DATA_TYPE_RULES[] = {
    {1, 0, KEEP, XOFF_DEFAULT, true, false},                     // ISO
    {0, 1, EOB_LF, KEEP, false, false},                          // EIA
    {KEEP, KEEP, KEEP, XOFF_DEFAULT, true, true},                // ASCII
    {KEEP, KEEP, EOB_NO_CONVERSION, XOFF_DEFAULT, false, true},  // BINARY
};

void set_unless_kept(MachineParams* machine, Field field, int value) {
    if (value != KEEP)
        set_field(machine, field, value);
}

}  // namespace

void apply_protocol_preset(MachineParams* machine, int protocol) {
    const ProtocolPreset& preset = PROTOCOL_PRESETS[protocol];
    constexpr Field CLEARED[] = {Field::PORT_INDEX, Field::EOB_DELAY_MS,     Field::START_CHAR,
                                 Field::END_CHAR,   Field::START_CHAR_COUNT, Field::END_CHAR_COUNT};
    set_field(machine, Field::PROTOCOL, protocol);
    for (const Field field : CLEARED)
        set_field(machine, field, 0);
    std::memset(machine->reserved_72, 0, sizeof machine->reserved_72);
    std::memset(machine->start_string, BLANK_BYTE, sizeof machine->start_string);
    std::memset(machine->end_string, BLANK_BYTE, sizeof machine->end_string);
    set_unless_kept(machine, Field::BAUD_INDEX, preset.baud_index);
    set_unless_kept(machine, Field::DATA_TYPE, preset.data_type);
    set_unless_kept(machine, Field::DATA_BITS_INDEX, preset.data_bits_index);
    set_unless_kept(machine, Field::STOP_BITS_INDEX, preset.stop_bits_index);
    set_unless_kept(machine, Field::PARITY_INDEX, preset.parity_index);
}

const DataTypeRule& data_type_rule(int data_type) {
    return DATA_TYPE_RULES[data_type];
}

void apply_data_type(MachineParams* machine) {
    const DataTypeRule& rule = data_type_rule(machine_setting(*machine, Field::DATA_TYPE));
    set_unless_kept(machine, Field::PARITY_INDEX, rule.parity_index);
    set_unless_kept(machine, Field::DATA_BITS_INDEX, rule.data_bits_index);
    set_unless_kept(machine, Field::EOB_CONVERSION, rule.eob_conversion);
    set_unless_kept(machine, Field::XOFF_CHAR, rule.xoff_char);
}

bool drop_delay_without_conversion(MachineParams* machine) {
    if (machine->eob_delay_ms <= 0 || machine->eob_conversion != EOB_NO_CONVERSION)
        return false;
    machine->eob_delay_ms = 0;
    return true;
}

}  // namespace hexlane
