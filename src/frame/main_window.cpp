// main_window.cpp: the window procedure as a table of messages, and the services of the main window.

#include "frame/main_window.h"

#include <algorithm>

#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "edit/block_commands.h"
#include "edit/held_keys.h"
#include "edit/keyboard.h"
#include "edit/mouse.h"
#include "files/file_commands.h"
#include "files/file_guard.h"
#include "frame/commands.h"
#include "frame/menus.h"
#include "frame/transfer_watch.h"
#include "macros/macro_table.h"
#include "macros/recording.h"
#include "platform/surface.h"
#include "platform/views.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "shell/status_line.h"
#include "shell/ui_timer.h"
#include "shell/window.h"
#include "station/port_report.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

namespace {

// Commands, boxes and questions that are running, one inside the other. Files handed over by second starts
// wait until the outermost is done: they must not change the document under a command that is asking about
// it.
int running_depth = 0;
bool handover_waits = false;
bool open_request_waits = false;

void post_waiting(bool* waits, uint32_t message) {
    if (*waits)
        post_message(child[0].main_window, message, 0, 0);
    *waits = false;
}

struct Running {
    Running() { running_depth++; }
    ~Running() {
        if (--running_depth > 0)
            return;
        post_waiting(&open_request_waits, OPEN_REQUEST_MESSAGE);
        post_waiting(&handover_waits, HANDOVER_MESSAGE);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
};

int64_t on_create(WindowHandle, int64_t, int64_t) {
    child[0].char_width = CELL_WIDTH;
    child[0].char_height = CELL_HEIGHT;
    block_clear();
    return 0;
}

int64_t on_destroy(WindowHandle, int64_t, int64_t) {
    post_quit(0);
    return 0;
}

void set_scroll_bar(WindowHandle window) {
    set_scroll_range(window, 0, child[0].file_open ? child[0].vscroll_max : 0);
    child[0].vscroll_pos = child[0].file_open ? scroll_position_of(child[0].current_row) : 0;
    set_scroll_position(window, child[0].vscroll_pos);
}

int64_t on_size(WindowHandle window, int64_t, int64_t second) {
    int top = 0;
    int bottom = 0;
    window_edges(window, &top, &bottom);
    child[0].window_top = top / child[0].char_height;
    child[0].window_bottom = bottom / child[0].char_height;
    child[0].client_width = static_cast<int16_t>(signed_low(second));
    child[0].client_height = static_cast<int16_t>(signed_high(second));
    child[0].window_cols = std::max(child[0].client_width / child[0].char_width, 1);
    child[0].window_rows = std::max(child[0].client_height / child[0].char_height - 3, 1);
    child[0].caret_row = std::min(child[0].caret_row, child[0].window_rows);
    if (window_has_focus(window))
        place_caret_now();
    update_scroll_values();
    set_scroll_bar(window);
    view_parent_resized(window);
    repaint_now();
    return 0;
}

int64_t on_set_focus(WindowHandle window, int64_t, int64_t) {
    set_caret_visible(false);
    destroy_caret(window);
    create_caret(window, child[0].char_width - 6, child[0].char_height);
    if (!child[0].file_open)
        return 0;
    commit_pending();
    place_caret_now();
    show_position();
    fetch_row(child[0].current_row);
    set_caret_visible(true);
    if (running_depth == 0)
        post_message(window, FILE_CHECK_MESSAGE, 0, 0);
    return 0;
}

int64_t on_kill_focus(WindowHandle, int64_t, int64_t) {
    if (child[0].file_open)
        commit_pending();
    return 0;
}

int64_t on_paint(WindowHandle window, int64_t, int64_t) {
    if (!child[0].file_open) {
        set_scroll_bar(window);
        blank_client(window);
        update_menus();
        return 0;
    }
    commit_pending();
    set_scroll_bar(window);
    paint_view();
    show_position();
    place_caret_now();
    set_caret_visible(true);
    return 0;
}

// While a macro is recorded the status line goes on saying so.
void show_edit_mode() {
    if (!macros.recording)
        show_status(STATUS_EDIT_MODE);
}

int64_t on_key_down(WindowHandle window, int64_t first, int64_t second) {
    if (!child[0].file_open)
        return 0;
    record_event(WM_KEYDOWN, first, second);
    const int key = static_cast<int>(first);
    if (child[0].block_active && !key_keeps_block(key))
        send_message(window, WM_COMMAND, COMMAND_DELETE, 0);
    handle_key_down(key);
    show_edit_mode();
    return 0;
}

int64_t on_key_up(WindowHandle, int64_t first, int64_t second) {
    if (!child[0].file_open)
        return 0;
    record_event(WM_KEYUP, first, second);
    update_menus();
    return 0;
}

int64_t on_char(WindowHandle, int64_t first, int64_t second) {
    if (!child[0].file_open)
        return 0;
    record_event(WM_CHAR, first, second);
    handle_char(static_cast<int>(first), std::max(low_word(second), 1));
    show_status(STATUS_EDIT_MODE);
    return 0;
}

// An edit is in the table before a command sees the document. A message from a control takes no further step.
int64_t on_command(WindowHandle, int64_t first, int64_t second) {
    Running running;
    commit_pending();
    if (low_word(second) == 0)
        run_command(low_word(first));
    return 0;
}

int64_t on_close(WindowHandle, int64_t, int64_t) {
    Running running;
    commit_pending();
    close_program();
    return 0;
}

int64_t on_open_request(WindowHandle, int64_t, int64_t) {
    if (running_depth > 0)
        open_request_waits = true;
    else
        open_request();
    return 0;
}

int64_t on_handover(WindowHandle, int64_t, int64_t) {
    if (running_depth > 0)
        handover_waits = true;
    else
        take_handovers();
    return 0;
}

int64_t on_store_fault(WindowHandle, int64_t, int64_t) {
    Running running;
    show_store_fault();
    return 0;
}

int64_t on_file_check(WindowHandle, int64_t, int64_t) {
    if (running_depth > 0)
        return 0;
    Running running;
    check_active_file();
    return 0;
}

// A drag with the pointer outside of the window scrolls. In the slow use the icon that tells of a transfer
// goes, and with nothing to wait for so does the timer.
int64_t on_timer(WindowHandle, int64_t, int64_t) {
    if (drag_timer_running() && child[0].block_active) {
        int x = 0;
        int y = 0;
        pointer_position(&x, &y);
        drag_scroll(x, y);
    }
    if (slow_timer_running())
        watch_transfers();
    return 0;
}

int64_t on_transfer_done(WindowHandle, int64_t first, int64_t second) {
    finish_transfer(static_cast<int>(first), second);
    return 0;
}

int64_t on_transfer_failed(WindowHandle, int64_t first, int64_t second) {
    finish_failed_transfer(static_cast<int>(first), second);
    return 0;
}

int64_t on_vscroll(WindowHandle, int64_t first, int64_t) {
    if (!child[0].file_open)
        return 0;
    block_dismiss();
    handle_vscroll(low_word(first), high_word(first));
    show_edit_mode();
    return 0;
}

int64_t on_hscroll(WindowHandle, int64_t first, int64_t) {
    if (child[0].file_open)
        handle_hscroll(low_word(first));
    return 0;
}

int64_t on_menu_select(WindowHandle window, int64_t first, int64_t second) {
    view_menu_hint(window, first, second);
    return 0;
}

// Nothing falls due while a pass of a macro runs, and a run of short passes must not put off the tick that
// looks after the ports: the clicks of a macro leave the timer alone.
void use_timer(int use) {
    if (!keys_are_played())
        set_ui_timer(use);
}

int64_t on_mouse_down(WindowHandle, int64_t first, int64_t second) {
    if (!child[0].file_open)
        return 0;
    record_event(WM_LBUTTONDOWN, first, second);
    handle_mouse_down(static_cast<int>(first), signed_low(second), signed_high(second));
    show_edit_mode();
    use_timer(UI_TIMER_DRAG);
    return 0;
}

int64_t on_mouse_move(WindowHandle, int64_t first, int64_t second) {
    if (child[0].file_open)
        handle_mouse_move(static_cast<int>(first), signed_low(second), signed_high(second));
    return 0;
}

// A release outside of the client area is recorded as any other: a press without one would hold the button
// for the rest of a pass.
int64_t on_mouse_up(WindowHandle, int64_t first, int64_t second) {
    if (!child[0].file_open)
        return 0;
    record_event(WM_LBUTTONUP, first, second);
    handle_mouse_up(signed_low(second), signed_high(second));
    use_timer(UI_TIMER_SLOW);
    release_capture();
    update_menus();
    return 0;
}

int64_t on_menus(WindowHandle, int64_t, int64_t) {
    work_out_menus();
    return 0;
}

struct MessageEntry {
    uint32_t message;
    int64_t (*handle)(WindowHandle window, int64_t first, int64_t second);
};

// To serve a further message: one line here.
constexpr MessageEntry MESSAGES[] = {
    {WM_KEYDOWN, on_key_down},
    {WM_CHAR, on_char},
    {WM_KEYUP, on_key_up},
    {WM_PAINT, on_paint},
    {WM_COMMAND, on_command},
    {WM_TIMER, on_timer},
    {WM_MOUSEMOVE, on_mouse_move},
    {WM_LBUTTONDOWN, on_mouse_down},
    {WM_LBUTTONUP, on_mouse_up},
    {WM_NCLBUTTONUP, on_mouse_up},
    {WM_VSCROLL, on_vscroll},
    {WM_HSCROLL, on_hscroll},
    {WM_MENUSELECT, on_menu_select},
    {WM_SETFOCUS, on_set_focus},
    {WM_KILLFOCUS, on_kill_focus},
    {WM_SIZE, on_size},
    {WM_CLOSE, on_close},
    {WM_CREATE, on_create},
    {WM_DESTROY, on_destroy},
    {TRANSFER_DONE_MESSAGE, on_transfer_done},
    {TRANSFER_FAILED_MESSAGE, on_transfer_failed},
    {OPEN_REQUEST_MESSAGE, on_open_request},
    {HANDOVER_MESSAGE, on_handover},
    {STORE_FAULT_MESSAGE, on_store_fault},
    {FILE_CHECK_MESSAGE, on_file_check},
    {MENUS_MESSAGE, on_menus},
};

}  // namespace

int64_t main_window_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    for (const MessageEntry& entry : MESSAGES) {
        if (entry.message == message)
            return entry.handle(window, first, second);
    }
    return 0;
}

}  // namespace hexlane
