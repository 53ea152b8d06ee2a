// row_actions.cpp: what the buttons of an activity row do. Every question can be answered while the other row
// goes on, so the state is looked at again behind each one.

#include "dnc/activity.h"
#include "dnc/dnc_texts.h"
#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "frame/child.h"
#include "frame/command_state.h"
#include "frame/directories.h"
#include "frame/file_questions.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/instance.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int COMMAND_CLOSE = 1035;

int other_slot(int slot) {
    return 1 - slot;
}

bool other_has_file(int slot, bool receiving_only) {
    const TransferState& other = transfer_state[other_slot(slot)];
    const int8_t status = other.status;
    const bool receiving = status == RECEIVING || status == RECEIVE_STANDBY;
    const bool sending = status == SENDING || status == SEND_STANDBY;
    return (receiving || (sending && !receiving_only)) &&
           same_path(other.file_name, transfer_state[slot].file_name);
}

bool editor_has_file(int slot) {
    return child[0].file_open && same_path(transfer_state[slot].file_name, child[0].file_path);
}

// Size of the slot's file, 0 when it cannot be opened.
int64_t file_size_of(int slot) {
    FileHandle file = file_open(transfer_state[slot].file_name, FileAccess::READ);
    if (file == NO_FILE)
        return 0;
    const int64_t size = file_size(file);
    file_close(file);
    return size > 0 ? size : 0;
}

void take_file(int slot, const char* path) {
    const LockGuard guard(port_slot[slot].step_lock);
    copy_text(transfer_state[slot].file_name, PATH_SIZE, path);
}

// The file that is open in the editor is closed first, if the user agrees. Gives false when it stays open.
bool settle_with_editor(int slot) {
    if (!editor_has_file(slot))
        return true;
    if (show_dnc_box(DncBox::CLOSE_EDITED_FILE) != 0)
        return false;
    send_message(child[0].main_window, WM_COMMAND, COMMAND_CLOSE, 0);
    return !editor_has_file(slot);
}

bool may_be_sent(int slot) {
    if (other_has_file(slot, true)) {
        show_dnc_box(DncBox::SEND_ACTIVE_FILE);
        return false;
    }
    const int64_t size = file_size_of(slot);
    if (size == 0 || size > INT32_MAX) {
        show_dnc_box(size == 0 ? DncBox::NO_DATA : DncBox::TOO_LARGE_TO_SEND);
        return false;
    }
    return true;
}

// Gives 1 with file_name set to a file that may be sent, 0 when the user gave up.
int choose_file_to_send(int slot) {
    if (transfer_state[slot].file_name[0] != '\0' && may_be_sent(slot) && settle_with_editor(slot))
        return 1;
    FileDialog dialog;
    while (ask_file_to_send(&dialog)) {
        take_file(slot, dialog.path);
        if (may_be_sent(slot) && settle_with_editor(slot))
            return 1;
    }
    transfer_state[slot].status = PORT_IDLE;
    return 0;
}

bool may_be_received(int slot) {
    if (other_has_file(slot, false)) {
        show_dnc_box(DncBox::RECEIVE_ACTIVE_FILE);
        return false;
    }
    return file_size_of(slot) == 0 || show_dnc_box(DncBox::OVERWRITE_DATA) == 0;
}

int choose_file_to_receive(int slot) {
    if (transfer_state[slot].file_name[0] != '\0' && may_be_received(slot)) {
        if (!editor_has_file(slot))
            return 1;
        show_dnc_box(DncBox::COMMUNICATE_ACTIVE_FILE);
    }
    FileDialog dialog;
    while (ask_file_to_receive(&dialog)) {
        take_file(slot, dialog.path);
        if (!settle_with_editor(slot) || !may_be_received(slot))
            continue;
        if (!editor_has_file(slot))
            return 1;
        show_dnc_box(DncBox::COMMUNICATE_ACTIVE_FILE);
    }
    return 0;
}

int open_port(int slot) {
    if (port_slot[slot].connected)
        return 1;
    return port_init(slot, machine_of_slot(slot)) == 1 && port_open(slot);
}

// A receive that has not begun is given up: its file is closed.
void leave_receive_standby(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    if (transfer_state[slot].status != RECEIVE_STANDBY)
        return;
    transfer_state[slot].status = PORT_IDLE;
    close_received_file(slot);
}

void give_up_send(int slot) {
    {
        const LockGuard guard(port_slot[slot].step_lock);
        transfer_state[slot].status = PORT_IDLE;
        transfer_state[slot].file_name[0] = '\0';
        reset_transfer(slot);
    }
    port_close_and_report(slot);
}

}  // namespace

int test_port(int slot) {
    if (port_slot[slot].connected)
        return 1;
    if (!open_port(slot)) {
        show_connection_failed();
        return 0;
    }
    port_close(slot);
    return 1;
}

void start_prepared_send(int slot) {
    TransferState& t = transfer_state[slot];
    t.start_now = send_now;
    // The port opens only now, since the line's handshake depends on whether the machine is to ask for the
    // file.
    if (!open_port(slot)) {
        t.status = PORT_IDLE;
        show_connection_failed();
        return;
    }
    if (t.status == PORT_IDLE) {
        give_up_send(slot);
        return;
    }
    if (!prepare_send(slot)) {
        show_dnc_box(DncBox::NO_DATA);
        give_up_send(slot);
        return;
    }
    if (!send_continuous)
        t.start_now = 0;
    set_ui_timer(UI_TIMER_SLOW);
}

void press_send(int slot) {
    TransferState& t = transfer_state[slot];
    if (t.status == SEND_STANDBY) {
        begin_sending(slot);
        set_ui_timer(UI_TIMER_SLOW);
        return;
    }
    leave_receive_standby(slot);
    if (slot_is_busy(slot) || !test_port(slot) || !choose_file_to_send(slot))
        return;
    t.bytes_done = 0;
    t.total_bytes = static_cast<int32_t>(file_size_of(slot));
    t.status = SEND_STANDBY;
    send_slot = slot;
    show_send_properties();
    start_prepared_send(slot);
}

void press_receive(int slot) {
    if (slot_is_busy(slot))
        return;
    if (!open_port(slot)) {
        show_receive_connection_failed();
        return;
    }
    if (!choose_file_to_receive(slot))
        return;
    if (!prepare_receive(slot)) {
        show_dnc_box(DncBox::CANNOT_MAKE_FILE, transfer_state[slot].file_name,
                     file_error_text(last_file_error()));
        return;
    }
    set_ui_timer(UI_TIMER_SLOW);
}

void press_stop(int slot) {
    TransferState& t = transfer_state[slot];
    if (slot_is_busy(slot)) {
        if (show_dnc_box(DncBox::STOP_PORT) != 0)
            return;
        const LockGuard guard(port_slot[slot].step_lock);
        if (slot_is_busy(slot)) {  // it may have come to its end behind the question
            close_received_file(slot);
            t.status = PORT_IDLE;
            reset_transfer(slot);
        }
    }
    if (port_slot[slot].connected)
        port_close_and_report(slot);
    t.status = PORT_IDLE;
}

void press_file(int slot) {
    FileDialog dialog;
    if (slot_is_busy(slot))
        return;
    if (!ask_file_to_send(&dialog)) {
        transfer_state[slot].status = PORT_IDLE;
        return;
    }
    char before[PATH_SIZE];
    copy_text(before, sizeof before, transfer_state[slot].file_name);
    take_file(slot, dialog.path);
    if (!settle_with_editor(slot))
        take_file(slot, before);
}

void press_terminal(int slot) {
    {
        const BothSlotsGuard guard;
        machine_table[0].current_machine = slot_machine[slot];
    }
    if (!save_machine_table())
        show_dnc_box(DncBox::TABLE_NOT_SAVED, file_error_text(last_file_error()));
    if (!start_program(directories.terminal_path, nullptr, nullptr, nullptr))
        show_dnc_box(DncBox::NO_TERMINAL);
}

void command_send_this() {
    constexpr int slot = 0;
    if (slot_is_busy(slot)) {
        if (show_dnc_box(DncBox::TERMINATE_PORT) != 0)
            return;
        if (slot_is_busy(slot)) {
            // The disconnect question is put while the transfer still counts as running.
            if (!port_close_and_report(slot))
                return;
            const LockGuard guard(port_slot[slot].step_lock);
            transfer_state[slot].status = PORT_IDLE;
            reset_transfer(slot);
        }
    }
    if (!test_port(slot))
        return;
    take_file(slot, child[0].file_path);
    send_message(child[0].main_window, WM_COMMAND, COMMAND_CLOSE, 0);
    if (child[0].file_open)
        return;
    if (!may_be_sent(slot))
        return;
    TransferState& t = transfer_state[slot];
    t.bytes_done = 0;
    t.total_bytes = static_cast<int32_t>(file_size_of(slot));
    t.status = SEND_STANDBY;
    send_slot = slot;
    show_send_properties();
    start_prepared_send(slot);
    set_ui_timer(UI_TIMER_SLOW);
    update_menus(child[0].main_window);
}

}  // namespace hexlane
