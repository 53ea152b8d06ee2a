#include "dnc/machine_fields.h"

#include "platform/text.h"

#include <cstddef>
#include <cstring>

namespace hexlane {

#define HEXLANE_FIELD(member) #member, static_cast < int16_t>(offsetof(MachineParams, member))

const MachineField MACHINE_FIELDS[FIELD_COUNT] = {
    {HEXLANE_FIELD(protocol), FieldForm::INT16, 0, 3, 0},
    {HEXLANE_FIELD(baud_index), FieldForm::INT16, 0, 10, 6},
    {HEXLANE_FIELD(data_type), FieldForm::INT16, 0, 3, DATA_ASCII},
    {HEXLANE_FIELD(data_bits_index), FieldForm::INT16, 0, 1, 0},
    {HEXLANE_FIELD(parity_index), FieldForm::INT16, 0, 2, 0},
    {HEXLANE_FIELD(stop_bits_index), FieldForm::INT16, 0, 1, 1},
    {HEXLANE_FIELD(eob_conversion), FieldForm::INT16, 0, 6, 0},
    {HEXLANE_FIELD(port_index), FieldForm::INT16, 0, 3, 0},
    {HEXLANE_FIELD(handshake), FieldForm::INT16, 0, 1, HANDSHAKE_SOFTWARE},
    {HEXLANE_FIELD(start_char), FieldForm::INT16, -1, 127, 0},
    {HEXLANE_FIELD(end_char), FieldForm::INT16, -1, 127, 0},
    {HEXLANE_FIELD(start_char_count), FieldForm::INT16, 0, 1000, 0},
    {HEXLANE_FIELD(end_char_count), FieldForm::INT16, 0, 1000, 0},
    {HEXLANE_FIELD(eob_delay_ms), FieldForm::INT16, 0, 9999, 0},
    {HEXLANE_FIELD(start_string), FieldForm::STRING, -1, 127, -1},
    {HEXLANE_FIELD(end_string), FieldForm::STRING, -1, 127, -1},
    {HEXLANE_FIELD(compress_comments), FieldForm::UNSIGNED8, 0, 1, 0},
    {HEXLANE_FIELD(compress_line_numbers), FieldForm::UNSIGNED8, 0, 1, 0},
    {HEXLANE_FIELD(compress_tabs), FieldForm::UNSIGNED8, 0, 1, 0},
    {HEXLANE_FIELD(compress_spaces), FieldForm::UNSIGNED8, 0, 1, 0},
    {HEXLANE_FIELD(compress_character_on), FieldForm::UNSIGNED8, 0, 1, 0},
    {HEXLANE_FIELD(compress_character), FieldForm::SIGNED8, -1, 127, 0},
    {HEXLANE_FIELD(current_machine), FieldForm::INT16, 0, MACHINE_COUNT - 1, 0},
    {HEXLANE_FIELD(receive_timeout_s), FieldForm::INT16, 1, 999, 3},
    {HEXLANE_FIELD(xoff_char), FieldForm::UNSIGNED8, 0, 255, XOFF_DEFAULT},
};

#undef HEXLANE_FIELD

namespace {

const uint8_t* place_of(const MachineParams& machine, const MachineField& field) {
    return reinterpret_cast<const uint8_t*>(&machine) + field.offset;
}

}  // namespace

int field_as_read(const MachineParams& machine, Field field) {
    const MachineField& entry = MACHINE_FIELDS[static_cast<int>(field)];
    const uint8_t* place = place_of(machine, entry);
    switch (entry.form) {
    case FieldForm::INT16:
        return static_cast<int16_t>(place[0] | place[1] << 8);
    case FieldForm::UNSIGNED8:
        return place[0];
    default:
        return static_cast<int8_t>(place[0]);
    }
}

int machine_setting(const MachineParams& machine, Field field) {
    const MachineField& entry = MACHINE_FIELDS[static_cast<int>(field)];
    const int value = field_as_read(machine, field);
    return value < entry.low || value > entry.high ? entry.fallback : value;
}

void set_field(MachineParams* machine, Field field, int value) {
    const MachineField& entry = MACHINE_FIELDS[static_cast<int>(field)];
    auto* place = reinterpret_cast<uint8_t*>(machine) + entry.offset;
    place[0] = static_cast<uint8_t>(value & 0xFF);
    if (entry.form == FieldForm::INT16)
        place[1] = static_cast<uint8_t>(value >> 8 & 0xFF);
}

// A damaged record may lack the name's end.
void machine_name(const MachineParams& machine, char text[MACHINE_NAME_TEXT_SIZE]) {
    char bytes[MACHINE_NAME_SIZE];
    std::memcpy(bytes, machine.name, sizeof bytes);
    bytes[MACHINE_NAME_SIZE - 1] = '\0';
    platform::bytes_to_text(text, MACHINE_NAME_TEXT_SIZE, bytes);
}

int set_machine_name(MachineParams* machine, const char* text) {
    char bytes[MACHINE_NAME_SIZE] = "";
    if (!platform::text_to_bytes(bytes, sizeof bytes, text))
        return 0;
    std::memcpy(machine->name, bytes, sizeof bytes);
    return 1;
}

}  // namespace hexlane
