#include "dnc/machine_watch.h"

#include "dnc/dnc_texts.h"
#include "dnc/machine_table.h"
#include "platform/files.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

// What the last load found, and what the user has been told last. A file that was made is no news at the
// program's start.
TableState found;
FileError found_error;
TableState told;

void load_over(const MachineParams* fallback) {
    if (fallback == nullptr)
        set_machine_defaults();
    else
        std::memcpy(static_cast<void*>(machine_table), fallback, sizeof machine_table);
    found = load_machine_table();
    found_error = last_file_error();
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

}  // namespace hexlane
