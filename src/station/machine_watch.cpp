#include "station/machine_watch.h"

#include "dnc/machine_table.h"
#include "platform/files.h"
#include "station/station_texts.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

// What the last load found, and what the user has been told last. A file that was made is no news at the
// program's start.
TableState found;
FileError found_error;
TableState told;

void note(TableState state) {
    found = state;
    found_error = last_file_error();
}

void load_over(const MachineParams* fallback) {
    if (fallback == nullptr)
        set_machine_defaults();
    else
        std::memcpy(static_cast<void*>(machine_table), fallback, sizeof machine_table);
    note(load_machine_table());
}

// A table that another program has changed is not written over without a question.
TableAnswer ask_whose() {
    if (machine_file_changed() <= 0)
        return TableAnswer::KEEP_MINE;
    return static_cast<TableAnswer>(show_dnc_box(DncBox::TABLE_CHANGED));
}

void save_or_tell() {
    if (!save_machine_table()) {
        show_dnc_box(DncBox::TABLE_NOT_SAVED, file_error_text(last_file_error()));
        return;
    }
    found = TableState::READ;
    told = TableState::READ;
}

}  // namespace

void start_machine_table() {
    load_over(nullptr);
    told = found == TableState::MADE ? TableState::MADE : TableState::READ;
}

void tell_machine_file() {
    const bool fresh = found != told;
    told = found;
    if (!fresh)
        return;
    switch (found) {
    case TableState::SHORT:
        show_dnc_box(DncBox::TABLE_SHORT);
        break;
    case TableState::NOT_MADE:
        show_dnc_box(DncBox::TABLE_NOT_MADE, file_error_text(found_error));
        break;
    case TableState::MADE:
        show_dnc_box(DncBox::TABLE_MADE_ANEW);
        break;
    case TableState::NOT_READ:
        show_dnc_box(DncBox::TABLE_NOT_READ, file_error_text(found_error));
        break;
    default:
        break;
    }
}

void reload_machine_table(const MachineParams fallback[MACHINE_COUNT]) {
    load_over(fallback);
    if (found == TableState::MADE)
        told = TableState::READ;
    tell_machine_file();
}

TableAnswer store_machine_table() {
    const TableAnswer answer = ask_whose();
    if (answer == TableAnswer::KEEP_MINE)
        save_or_tell();
    return answer;
}

int store_current_machine(int machine) {
    const TableAnswer answer = ask_whose();
    if (answer == TableAnswer::CANCEL)
        return 0;
    if (answer == TableAnswer::TAKE_THEIRS) {
        note(read_machine_table());
        tell_machine_file();
    }
    machine_table[0].current_machine = static_cast<int16_t>(machine);
    save_or_tell();
    return 1;
}

}  // namespace hexlane
