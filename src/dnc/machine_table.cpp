#include "dnc/machine_table.h"

#include <algorithm>
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

// The records of a file, as many of their bytes as it has.
struct TableImage {
    MachineParams records[MACHINE_COUNT];
    int64_t length;
};
static_assert(sizeof TableImage::records == MACHINE_FILE_SIZE);

// 1; 0 when there is no file or it cannot be read.
int read_image(TableImage* image) {
    const FileHandle file = file_open(directories.parameter_file_path, FileAccess::READ);
    if (file == NO_FILE)
        return 0;
    image->length = file_read_at(file, 0, image->records, sizeof image->records);
    const FileError reason = last_file_error();
    file_close(file);
    set_last_file_error(reason);
    return image->length >= 0;
}

// Record `i` from what the file has of it. A damaged one may lack the name's end.
void take_record(const TableImage& image, int i) {
    const int64_t length = std::min<int64_t>(image.length - i * MACHINE_RECORD_SIZE, MACHINE_RECORD_SIZE);
    if (length <= 0)
        return;
    MachineParams& machine = machine_table[i];
    std::memcpy(static_cast<void*>(&machine), &image.records[i], static_cast<std::size_t>(length));
    machine.name[MACHINE_NAME_SIZE - 1] = '\0';
    if (machine.xoff_char != XOFF_DEFAULT && machine.xoff_char != XOFF_EIA_ALTERNATE)
        machine.xoff_char = XOFF_DEFAULT;
}

TableState read_table() {
    TableImage image;
    if (read_image(&image)) {
        for (int i = 0; i < MACHINE_COUNT; i++)
            take_record(image, i);
        return TableState::READ;
    }
    if (last_file_error() != FileError::NOT_FOUND)
        return TableState::NOT_READ;
    set_machine_defaults();
    (void)save_machine_table();
    return TableState::MADE;
}

}  // namespace

TableState load_machine_table() {
    const TableState state = read_table();
    const int current = machine_setting(machine_table[0], Field::CURRENT_MACHINE);
    edit_machine = static_cast<int16_t>(current);
    slot_machine[0] = current;
    slot_machine[1] = current;
    return state;
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
    return replace_whole_file(directories.parameter_file_path, machine_table, sizeof machine_table);
}

const MachineParams& machine_of_slot(int slot) {
    const int32_t machine = slot_machine[slot];
    return machine_table[machine >= 0 && machine < MACHINE_COUNT ? machine : 0];
}

}  // namespace hexlane
