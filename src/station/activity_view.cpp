// activity_view.cpp: the view COMMDLG. Its timer serves the two rows in turn; the rows themselves belong to
// the transfers, which go on when the view is closed.

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer_log.h"
#include "dnc/transfer_state.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/child.h"
#include "shell/ui_timer.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/activity.h"
#include "station/port_report.h"

#include <array>

namespace hexlane {

using namespace platform;

int32_t send_slot = 0;

namespace {

constexpr int TICK_TIMER = 1;
constexpr int TICK_MS = 400;

// Ids of a row's controls: these behind 100 for slot 0 and behind 200 for slot 1.
constexpr int16_t MACHINE_LIST = 1;
constexpr int16_t PORT_TEXT = 2;
constexpr int16_t FILE_TEXT = 3;
constexpr int16_t FILE_BUTTON = 4;
constexpr int16_t STATUS_TEXT = 5;
constexpr int16_t SEND_BUTTON = 6;
constexpr int16_t RECEIVE_BUTTON = 7;
constexpr int16_t STOP_BUTTON = 8;
constexpr int16_t TERMINAL_BUTTON = 9;
constexpr int16_t ROW_IDS = 100;

constexpr int16_t id_of(int slot, int16_t control) {
    return static_cast<int16_t>(ROW_IDS * (slot + 1) + control);
}

constexpr std::size_t NAME_SHOWN_WHOLE = 19;  // characters
constexpr std::size_t NAME_END_SHOWN = 17;

constexpr auto HEADINGS = std::to_array<ControlSpec>({
    {302, ControlKind::TEXT, "Port", 0, 1, 1, 1, 0, 0, nullptr},
    {303, ControlKind::TEXT, "   File Name", 0, 2, 1, 2, 0, 0, nullptr},
    {304, ControlKind::TEXT, "Status", 0, 4, 1, 1, 0, 0, nullptr},
    {301, ControlKind::TEXT, "Machine &Name", 0, 0, 1, 1, 0, 0, nullptr},  // leads to the upper row's list
});

// A letter leads to one row's button.
struct RowLabels {
    const char *file, *send, *receive, *stop, *terminal;
};
constexpr RowLabels UPPER_ROW = {"&File...", "&Send", "&Receive", "S&top", "Ter&minal"};
constexpr RowLabels LOWER_ROW = {"Fi&le...", "S&end", "Re&ceive", "St&op", "Term&inal"};

constexpr auto row_controls(int slot, const RowLabels& label) {
    const auto row = static_cast<uint8_t>(slot + 1);
    return std::to_array<ControlSpec>({
        {id_of(slot, MACHINE_LIST), ControlKind::CHOICE, "", row, 0, 1, 1, 20, 0, nullptr},
        {id_of(slot, PORT_TEXT), ControlKind::TEXT, "", row, 1, 1, 1, 3, CONTROL_SUNKEN, nullptr},
        {id_of(slot, FILE_TEXT), ControlKind::TEXT, "", row, 2, 1, 1, 20, CONTROL_SUNKEN, nullptr},
        {id_of(slot, FILE_BUTTON), ControlKind::BUTTON, label.file, row, 3, 1, 1, 0, 0, nullptr},
        {id_of(slot, STATUS_TEXT), ControlKind::TEXT, "Inactive ...", row, 4, 1, 1, 30, CONTROL_SUNKEN,
         nullptr},
        {id_of(slot, SEND_BUTTON), ControlKind::BUTTON, label.send, row, 5, 1, 1, 0, 0, nullptr},
        {id_of(slot, RECEIVE_BUTTON), ControlKind::BUTTON, label.receive, row, 6, 1, 1, 0, 0, nullptr},
        {id_of(slot, STOP_BUTTON), ControlKind::BUTTON, label.stop, row, 7, 1, 1, 0, 0, nullptr},
        {id_of(slot, TERMINAL_BUTTON), ControlKind::BUTTON, label.terminal, row, 8, 1, 1, 0, 0, nullptr},
    });
}

constexpr auto BACK_BUTTON = std::to_array<ControlSpec>({
    {CANCEL_BUTTON, ControlKind::BUTTON, "Return to E&ditor", 3, 0, 1, 9, 0,
     CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
});

constexpr auto CONTROLS =
    join_controls(HEADINGS, row_controls(0, UPPER_ROW), row_controls(1, LOWER_ROW), BACK_BUTTON);
constexpr ViewSpec ACTIVITY_VIEW = {"COMMDLG", "Communications Activity Screen", 0, CONTROLS.data(),
                                    CONTROLS.size()};

int activity_row = 0;        // the row that the next tick serves
bool activity_busy = false;  // a tick is being served

void enable_row(ViewHandle view, int slot, bool enabled) {
    for (const int16_t button : {FILE_BUTTON, SEND_BUTTON, RECEIVE_BUTTON, TERMINAL_BUTTON})
        view_enable_control(view, id_of(slot, button), enabled);
}

void fill_machines(ViewHandle view, int slot) {
    const int list = id_of(slot, MACHINE_LIST);
    view_clear_list(view, list);
    for (const MachineParams& machine : machine_table) {
        char name[MACHINE_NAME_TEXT_SIZE];
        machine_name(machine, name);
        view_add_to_list(view, list, name);
    }
}

void fill_both_lists(ViewHandle view) {
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        fill_machines(view, slot);
}

// The names in the list stay as they are.
void refresh_row(ViewHandle view, int slot) {
    const int list = id_of(slot, MACHINE_LIST);
    if (view_selection(view, list) != slot_machine[slot])
        view_select(view, list, slot_machine[slot]);
    char port[8];
    format_text(port, sizeof port, "%d", machine_setting(machine_of_slot(slot), Field::PORT_INDEX) + 1);
    put_text(view, id_of(slot, PORT_TEXT), port);
    char name[PATH_SIZE + 2];
    shorten_path(name, sizeof name, transfer_state[slot].file_name, NAME_SHOWN_WHOLE, NAME_END_SHOWN);
    put_text(view, id_of(slot, FILE_TEXT), name);
}

void refresh_rows(ViewHandle view) {
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        refresh_row(view, slot);
}

// A send's bytes so far. bytes_done counts whole writes, and at a slow rate one takes minutes.
struct Sent {
    int64_t bytes;
    int64_t whole;
};

Sent sent_so_far(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    const TransferState& t = transfer_state[slot];
    return {static_cast<int64_t>(t.bytes_done) + bytes_of_running_write(slot),
            static_cast<int64_t>(t.total_bytes) + t.start_offset};
}

// The share of the whole file that has gone out: a send from a start point begins at that point's share.
void format_sending(const Sent& sent, char* text, std::size_t size) {
    const float percent =
        sent.whole <= 0 ? 100.0F : static_cast<float>(sent.bytes) / static_cast<float>(sent.whole) * 100.0F;
    const char* word = percent == 100.0F ? "Sent     " : "Sending     ";
    if (percent < 1.0F)
        format_text(text, size, "%s%1.1f%% ...", word, static_cast<double>(percent));
    else
        format_text(text, size, "%s%d%% ...", word, static_cast<int>(percent));
}

void format_status(int slot, int8_t status, char* text, std::size_t size) {
    const TransferState& t = transfer_state[slot];
    switch (status) {
    case SENDING:
        format_sending(sent_so_far(slot), text, size);
        break;
    case SEND_STANDBY:
        copy_text(text, size, "Send Standby...    ");
        break;
    case SEND_DONE:
        copy_text(text, size, "Sent 100%...    ");
        break;
    case RECEIVING:
        format_text(text, size, "Receiving    %d  bytes...", t.bytes_done.load());
        break;
    case RECEIVE_STANDBY:
        copy_text(text, size, "Receive Standby...    ");
        break;
    case RECEIVE_DONE:
        format_text(text, size, "Received  %d  bytes...", t.bytes_done.load());
        break;
    default:
        copy_text(text, size, "Inactive ...");
    }
}

void show_tip(ViewHandle view, int slot) {
    char tip[2 * PATH_SIZE];
    watch_line(slot);
    format_row_tip(slot, tip, sizeof tip);
    for (int16_t control = PORT_TEXT; control <= TERMINAL_BUTTON; control++)
        view_set_tip(view, id_of(slot, control), tip);
}

void serve_row(ViewHandle view, int slot) {
    show_tip(view, slot);
    const int8_t status = transfer_state[slot].status;
    if (status == XON_SEEN)
        return;
    if (status == RECEIVE_DONE)
        refresh_rows(view);
    enable_row(view, slot, !slot_is_busy(slot));
    if (status == SENDING && sent_so_far(slot).bytes == 0)
        return;  // the text waits for the first byte
    char text[64];
    format_status(slot, status, text, sizeof text);
    put_text(view, id_of(slot, STATUS_TEXT), text);
}

void on_tick(ViewHandle view) {
    if (activity_busy)
        return;
    activity_busy = true;
    activity_row = 1 - activity_row;
    serve_row(view, activity_row);
    activity_busy = false;
}

void on_machine_list(ViewHandle view, int slot) {
    const int selected = view_selection(view, id_of(slot, MACHINE_LIST));
    if (selected < 0 || selected >= MACHINE_COUNT || selected == slot_machine[slot])
        return;
    {
        const LockGuard guard(port_slot[slot].step_lock);
        choose_machine(slot, selected);
    }
    refresh_rows(view);
}

void on_control(ViewHandle view, int slot, int control) {
    switch (control) {
    case MACHINE_LIST:
        on_machine_list(view, slot);
        return;
    case FILE_BUTTON:
        press_file(slot);
        break;
    case SEND_BUTTON:
        if (press_send(slot))
            put_text(view, id_of(slot, STATUS_TEXT), "Send Standby    ");
        break;
    case RECEIVE_BUTTON:
        press_receive(slot);
        break;
    case STOP_BUTTON:
        press_stop(slot);
        break;
    case TERMINAL_BUTTON:
        press_terminal(slot);
        fill_both_lists(view);  // the table may be another program's now
        break;
    default:
        return;
    }
    refresh_rows(view);
}

int64_t activity_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        fill_both_lists(view);
        refresh_rows(view);
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            serve_row(view, slot);
        start_timer(view, TICK_TIMER, TICK_MS);
        return 1;
    }
    if (message == WM_TIMER) {
        on_tick(view);
        return 1;
    }
    const int id = low_word(first);
    if (message == WM_COMMAND && id > ROW_IDS && id < 3 * ROW_IDS) {
        on_control(view, id / ROW_IDS - 1, id % ROW_IDS);
        return 1;
    }
    if (message == WM_CLOSE || (message == WM_COMMAND && id == CANCEL_BUTTON))
        kill_timer(view, TICK_TIMER);
    return view_default(view, message, first, second);
}

}  // namespace

void command_activity() {
    tell_cut_receives();
    show_view(&ACTIVITY_VIEW, activity_proc);
    set_ui_timer(UI_TIMER_SLOW);
    update_menus();
}

}  // namespace hexlane
