#include "dnc/machine_table.h"

#include <cstring>

#include "dnc/machine_fields.h"
#include "frame/directories.h"
#include "platform/files.h"
#include "platform/text.h"
#include "store/replace_file.h"

namespace hexlane {

using namespace platform;

MachineParams machine_table[MACHINE_COUNT];
int16_t edit_machine = 0;
int32_t slot_machine[SLOT_COUNT] = {0, 0};

namespace {

void read_records(FileHandle file) {
    for (int i = 0; i < MACHINE_COUNT; i++) {
        const int64_t length = file_read_at(file, static_cast<int64_t>(i) * MACHINE_RECORD_SIZE,
                                            &machine_table[i], sizeof machine_table[i]);
        if (length <= 0)
            return;
        machine_table[i].name[MACHINE_NAME_SIZE - 1] = '\0';  // a damaged file may lack it
        uint8_t& xoff = machine_table[i].xoff_char;
        if (xoff != XOFF_DEFAULT && xoff != XOFF_EIA_ALTERNATE)
            xoff = XOFF_DEFAULT;
    }
}

void make_file() {
    FileHandle file = file_create(directories.parameter_file_path, FileCreate::NEW);
    if (file == NO_FILE && last_file_error() != FileError::EXISTS)
        return;
    if (file != NO_FILE)
        file_close(file);
    set_machine_defaults();
    save_machine_table();
}

}  // namespace

void load_machine_table() {
    FileHandle file = file_open(directories.parameter_file_path, FileAccess::READ_WRITE);
    if (file == NO_FILE) {
        make_file();
    } else {
        read_records(file);
        file_close(file);
    }
    const int current = machine_setting(machine_table[0], Field::CURRENT_MACHINE);
    edit_machine = static_cast<int16_t>(current);
    slot_machine[0] = current;
    slot_machine[1] = current;
}

void set_machine_defaults() {
    std::memset(static_cast<void*>(machine_table), 0, sizeof machine_table);
    for (int i = 0; i < MACHINE_COUNT; i++) {
        MachineParams& machine = machine_table[i];
        format_text(machine.name, sizeof machine.name, "Machine %d", i + 1);
        for (int field = 0; field < FIELD_COUNT; field++) {
            if (MACHINE_FIELDS[field].form != FieldForm::STRING)
                set_field(&machine, static_cast<Field>(field), MACHINE_FIELDS[field].fallback);
        }
        std::memset(machine.start_string, BLANK_BYTE, sizeof machine.start_string);
        std::memset(machine.end_string, BLANK_BYTE, sizeof machine.end_string);
    }
}

int save_machine_table() {
    Replacement output;
    if (!begin_replacement(&output, directories.parameter_file_path))
        return 0;
    FileHandle old = file_open(directories.parameter_file_path, FileAccess::READ);
    const int saved =
        replacement_write(&output, machine_table, sizeof machine_table) && finish_replacement(&output, old);
    if (old != NO_FILE)
        file_close(old);
    abandon_replacement(&output);
    return saved;
}

const MachineParams& machine_of_slot(int slot) {
    const int32_t machine = slot_machine[slot];
    return machine_table[machine >= 0 && machine < MACHINE_COUNT ? machine : 0];
}

}  // namespace hexlane
