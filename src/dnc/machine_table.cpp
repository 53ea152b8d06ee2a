#include "dnc/machine_table.h"

#include <cstring>

#include "dnc/machine_fields.h"
#include "platform/files.h"
#include "platform/text.h"
#include "shell/directories.h"
#include "store/replace_file.h"

namespace hexlane {

using namespace platform;

MachineParams machine_table[MACHINE_COUNT];
int16_t edit_machine = 0;
int32_t slot_machine[SLOT_COUNT] = {0, 0};

namespace {

// The settings of a slot whose port is open.
struct HeldMachine {
    bool held;
    MachineParams settings;
};
HeldMachine held_machine[SLOT_COUNT];

// A file in memory: what it has of the records, and defaults behind that.
struct TableImage {
    MachineParams records[MACHINE_COUNT];
    int64_t length;  // of the file, at most MACHINE_FILE_SIZE
};
static_assert(sizeof TableImage::records == MACHINE_FILE_SIZE);

void fill_defaults(MachineParams machines[MACHINE_COUNT]) {
    std::memset(static_cast<void*>(machines), 0, MACHINE_FILE_SIZE);
    for (int i = 0; i < MACHINE_COUNT; i++) {
        MachineParams& machine = machines[i];
        format_text(machine.name, sizeof machine.name, "Machine %d", i + 1);
        for (int field = 0; field < FIELD_COUNT; field++) {
            if (MACHINE_FIELDS[field].form != FieldForm::STRING)
                set_field(&machine, static_cast<Field>(field), MACHINE_FIELDS[field].fallback);
        }
        std::memset(machine.start_string, BLANK_BYTE, sizeof machine.start_string);
        std::memset(machine.end_string, BLANK_BYTE, sizeof machine.end_string);
    }
}

// 1; 0 when there is no file or it cannot be read.
int read_image(TableImage* image) {
    const FileHandle file = file_open(directories.parameter_file_path, FileAccess::READ);
    if (file == NO_FILE)
        return 0;
    fill_defaults(image->records);
    image->length = file_read_at(file, 0, image->records, sizeof image->records);
    const FileError reason = last_file_error();
    file_close(file);
    set_last_file_error(reason);
    return image->length >= 0;
}

// Puts the image in the table. A name that the file breaks off ends there; a damaged record may lack its end.
void take_image(TableImage* image) {
    const auto last = static_cast<int>(image->length / MACHINE_RECORD_SIZE);
    const auto of_last = static_cast<int>(image->length % MACHINE_RECORD_SIZE);
    if (of_last > 0 && of_last < MACHINE_NAME_SIZE)
        image->records[last].name[of_last] = '\0';
    for (MachineParams& machine : image->records) {
        machine.name[MACHINE_NAME_SIZE - 1] = '\0';
        if (machine.xoff_char != XOFF_DEFAULT && machine.xoff_char != XOFF_EIA_ALTERNATE)
            machine.xoff_char = XOFF_DEFAULT;
    }
    std::memcpy(static_cast<void*>(machine_table), image->records, sizeof machine_table);
}

// The file as it was read or written here last; length -1 when it was neither.
TableImage known = {{}, -1};

void note_written() {
    std::memcpy(static_cast<void*>(known.records), machine_table, sizeof machine_table);
    known.length = MACHINE_FILE_SIZE;
}

}  // namespace

TableState read_machine_table() {
    TableImage image;
    known.length = -1;
    if (read_image(&image)) {
        known = image;
        take_image(&image);
        return image.length < MACHINE_FILE_SIZE ? TableState::SHORT : TableState::READ;
    }
    if (last_file_error() != FileError::NOT_FOUND)
        return TableState::NOT_READ;
    fill_defaults(image.records);
    if (!replace_whole_file(directories.parameter_file_path, image.records, sizeof image.records))
        return TableState::NOT_MADE;
    set_machine_defaults();
    note_written();
    return TableState::MADE;
}

TableState load_machine_table() {
    const TableState state = read_machine_table();
    const int current = machine_setting(machine_table[0], Field::CURRENT_MACHINE);
    edit_machine = static_cast<int16_t>(current);
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        if (!held_machine[slot].held)
            slot_machine[slot] = current;
    }
    return state;
}

void set_machine_defaults() {
    fill_defaults(machine_table);
}

int machine_file_changed() {
    TableImage image;
    if (!read_image(&image))
        return last_file_error() == FileError::NOT_FOUND ? 0 : -1;
    return image.length != known.length ||
           std::memcmp(image.records, known.records, sizeof known.records) != 0;
}

int save_machine_table() {
    if (machine_file_changed() < 0 ||
        !replace_whole_file(directories.parameter_file_path, machine_table, sizeof machine_table))
        return 0;
    note_written();
    return 1;
}

const MachineParams& chosen_machine(int slot) {
    const int32_t machine = slot_machine[slot];
    return machine_table[machine >= 0 && machine < MACHINE_COUNT ? machine : 0];
}

const MachineParams& machine_of_slot(int slot) {
    return held_machine[slot].held ? held_machine[slot].settings : chosen_machine(slot);
}

void hold_machine(int slot) {
    held_machine[slot] = {true, chosen_machine(slot)};
}

void let_go_machine(int slot) {
    held_machine[slot].held = false;
}

void choose_machine(int slot, int machine) {
    slot_machine[slot] = machine;
    held_machine[slot].settings = chosen_machine(slot);
}

}  // namespace hexlane
