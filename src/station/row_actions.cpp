// row_actions.cpp: what the buttons of an activity row do, and Send This. Every question can be answered
// while the other row goes on, so the state is looked at again behind each one.

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "files/file_commands.h"
#include "files/file_questions.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/instance.h"
#include "platform/process.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/ui_timer.h"
#include "shell/window.h"
#include "station/activity.h"
#include "station/machine_watch.h"
#include "station/port_report.h"
#include "station/row_index.h"
#include "station/station_texts.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int COMMAND_CLOSE = 1035;
constexpr const char* TERMINAL_PROGRAM = "hexlane-terminal";  // beside this program, else in the PATH

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

// The user's answer for a file that is open in the editor: Yes closes it. Gives false for No.
bool editor_gives_file(int slot) {
    if (!editor_has_file(slot))
        return true;
    if (show_dnc_box(DncBox::CLOSE_EDITED_FILE) != 0)
        return false;
    send_message(child[0].main_window, WM_COMMAND, COMMAND_CLOSE, 0);
    return true;
}

// The same, but a file that stays open (Cancel at the question about its changes) counts as a No.
bool file_is_free(int slot) {
    return editor_gives_file(slot) && !editor_has_file(slot);
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
    if (transfer_state[slot].file_name[0] != '\0' && may_be_sent(slot) && file_is_free(slot))
        return 1;
    FileDialog dialog;
    while (ask_file_to_send(&dialog)) {
        take_file(slot, dialog.path);
        if (may_be_sent(slot) && file_is_free(slot))
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

// The last look ahead of the file's end.
bool is_closed_in_editor(int slot) {
    if (!editor_has_file(slot))
        return true;
    show_dnc_box(DncBox::COMMUNICATE_ACTIVE_FILE);
    return false;
}

int choose_file_to_receive(int slot) {
    if (transfer_state[slot].file_name[0] != '\0' && may_be_received(slot) && is_closed_in_editor(slot))
        return 1;
    FileDialog dialog;
    while (ask_file_to_receive(&dialog)) {
        take_file(slot, dialog.path);
        if (editor_gives_file(slot) && may_be_received(slot) && is_closed_in_editor(slot))
            return 1;
    }
    return 0;
}

// A port that a dialog given up has left open is closed: each transfer opens it afresh, with the machine's
// settings as they are then. One whose transfer has just ended tells so.
void close_idle_port(int slot) {
    const int8_t status = transfer_state[slot].status;
    if (status == SEND_DONE || status == RECEIVE_DONE)
        close_port_and_report(slot);
    else
        close_port(slot);
}

// Makes the slot quiet. Its port is closed already: a write that is still running reads the buffers.
void drop_transfer(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    close_received_file(slot);
    transfer_state[slot].status = PORT_IDLE;
    reset_transfer(slot);
}

// A receive that has not begun is given up: its file is closed, and its receipt written.
void leave_receive_standby(int slot) {
    {
        const LockGuard guard(port_slot[slot].step_lock);
        if (transfer_state[slot].status != RECEIVE_STANDBY)
            return;
        transfer_state[slot].status = PORT_IDLE;
        close_received_file(slot);
    }
}

// Opens the slot's port as a test and closes it again. 0 after a message.
int test_port(int slot) {
    if (!open_port(slot)) {
        show_connection_failed();
        return 0;
    }
    close_port(slot);
    return 1;
}

void give_up_send(int slot) {
    take_file(slot, "");
    {
        const LockGuard guard(port_slot[slot].step_lock);
        transfer_state[slot].status = PORT_IDLE;
    }
    close_port_and_report(slot);
    drop_transfer(slot);
}

// Whether the file can still be sent, and a row still begins at the chosen start point. 0 after a message.
int look_at_file(int slot) {
    const TransferState& t = transfer_state[slot];
    const int64_t size = file_size_of(slot);
    if (size == 0 || size > INT32_MAX) {
        show_dnc_box(size == 0 ? DncBox::NO_DATA : DncBox::TOO_LARGE_TO_SEND);
        return 0;
    }
    if (row_is_there(t.file_name, t.start_offset))
        return 1;
    show_dnc_box(DncBox::START_POINT_GONE);
    return 0;
}

// What Send Properties ends in: opens the port and prepares the send, or gives it up. The port of a queued
// send lets the machine's request through from its opening on; one that comes ahead of the preparation waits
// for it.
void end_send_properties(int slot) {
    TransferState& t = transfer_state[slot];
    const bool wanted = t.status == SEND_STANDBY;
    t.status = wanted && !send_now ? SEND_STANDBY : PORT_IDLE;
    t.start_now = send_now;
    if (!open_port(slot)) {
        drop_transfer(slot);
        show_connection_failed();
        return;
    }
    if (!wanted || !look_at_file(slot)) {
        give_up_send(slot);
        return;
    }
    if (!prepare_send(slot)) {
        show_dnc_box(DncBox::NO_DATA);
        give_up_send(slot);
        return;
    }
    begin_log_entry(slot, true);
    tell_log_failure();
    if (!send_continuous)
        t.start_now = 0;
    set_ui_timer(UI_TIMER_SLOW);
}

// Send Properties and what follows, for a file that may be sent and a port that is closed.
void ask_and_send(int slot) {
    drop_transfer(slot);
    TransferState& t = transfer_state[slot];
    t.bytes_done = 0;
    t.total_bytes = static_cast<int32_t>(file_size_of(slot));
    t.status = SEND_STANDBY;
    send_slot = slot;
    show_send_properties();
    end_send_properties(slot);
}

// Ends a transfer ahead of Send This, if the user agrees: the disconnect question is put while bytes are
// going over the line.
bool free_slot(int slot) {
    if (!slot_is_busy(slot))
        return true;
    if (show_dnc_box(DncBox::TERMINATE_PORT) != 0)
        return false;
    if (slot_is_busy(slot)) {
        if (!close_port_and_report(slot))
            return false;
        drop_transfer(slot);
    }
    return true;
}

// Gives the changes of the active file to the disk, or drops them, and closes it. False when it stays open.
bool close_document_for_send(int slot) {
    if (child[0].modified) {
        const SaveAnswer answer = ask_save();
        if (answer == SaveAnswer::CANCEL)
            return false;
        if (answer == SaveAnswer::YES)
            command_save();
        if (answer == SaveAnswer::YES && child[0].modified)
            return false;
        take_file(slot, child[0].file_path);  // it may have been saved under another name
    }
    if (!may_be_sent(slot))
        return false;
    child[0].modified = 0;
    send_message(child[0].main_window, WM_COMMAND, COMMAND_CLOSE, 0);
    return !child[0].file_open;
}

// A terminal of the shop's own, where nobody else can have put it there; otherwise the one that comes along.
const char* terminal_to_start() {
    char doubt[DOUBT_SIZE];
    if (terminal_may_run(doubt))
        return directories.terminal_path;
    if (doubt[0] != '\0') {
        warn_on_terminal(doubt);
        note_in_log(doubt);
        tell_log_failure();
    }
    return TERMINAL_PROGRAM;
}

}  // namespace

bool press_send(int slot) {
    if (transfer_state[slot].status == SEND_STANDBY) {
        begin_sending(slot);
        set_ui_timer(UI_TIMER_SLOW);
        return true;
    }
    leave_receive_standby(slot);
    if (slot_is_busy(slot))
        return false;
    close_idle_port(slot);
    if (!test_port(slot) || !choose_file_to_send(slot))
        return false;
    ask_and_send(slot);
    return slot_is_busy(slot);
}

void press_receive(int slot) {
    if (slot_is_busy(slot))
        return;
    close_idle_port(slot);
    if (!open_port(slot)) {
        show_receive_connection_failed();
        return;
    }
    // The line may have gone behind the questions; that has been told then.
    if (!choose_file_to_receive(slot) || !port_slot[slot].connected)
        return;
    begin_log_entry(slot, false);
    tell_log_failure();
    if (!port_slot[slot].connected)
        return;  // gone behind the box that the log can't be written
    if (!prepare_receive(slot)) {
        const char* reason = file_error_text(last_file_error());
        drop_log_entry(slot);
        tell_log_failure();
        show_dnc_box(DncBox::CANNOT_MAKE_FILE, transfer_state[slot].file_name, reason);
        return;
    }
    set_ui_timer(UI_TIMER_SLOW);
}

void press_stop(int slot) {
    if (slot_is_busy(slot)) {
        if (show_dnc_box(DncBox::STOP_PORT) != 0)
            return;
        const LockGuard guard(port_slot[slot].step_lock);
        if (slot_is_busy(slot)) {  // it may have come to its end behind the question
            close_received_file(slot);
            transfer_state[slot].status = PORT_IDLE;
        }
    }
    if (port_slot[slot].connected)
        close_port_and_report(slot);
    drop_transfer(slot);
}

void press_file(int slot) {
    if (slot_is_busy(slot))
        return;
    FileDialog dialog;
    while (ask_file_to_send(&dialog)) {
        char before[PATH_SIZE];
        copy_text(before, sizeof before, transfer_state[slot].file_name);
        take_file(slot, dialog.path);
        if (file_is_free(slot))
            return;
        take_file(slot, before);
    }
    transfer_state[slot].status = PORT_IDLE;
}

// The terminal opens the port itself. The other row's idle port may be the same line.
void press_terminal(int slot) {
    if (slot_is_busy(slot))
        return;
    if (!store_current_machine(slot_machine[slot]))
        return;
    for (int any = 0; any < SLOT_COUNT; any++) {
        if (!slot_is_busy(any))
            close_idle_port(any);
    }
    if (!start_program(terminal_to_start(), nullptr, nullptr, nullptr))
        show_dnc_box(DncBox::NO_TERMINAL);
}

void command_send_this() {
    constexpr int slot = 0;
    if (!free_slot(slot))
        return;
    close_idle_port(slot);
    if (!test_port(slot))
        return;
    take_file(slot, child[0].file_path);
    if (!close_document_for_send(slot))
        return;
    ask_and_send(slot);
    set_ui_timer(UI_TIMER_SLOW);
    update_menus();
}

}  // namespace hexlane
