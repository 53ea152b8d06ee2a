// program_end.cpp: WM_CLOSE, from the ports that are still busy and the question about changes to the
// window's end.

#include "dnc/port_engine.h"
#include "dnc/transfer_state.h"
#include "files/file_commands.h"
#include "files/file_guard.h"
#include "files/file_questions.h"
#include "frame/commands.h"
#include "platform/desktop.h"
#include "platform/views.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/ui_timer.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/port_report.h"
#include "store/merge.h"
#include "store/row_table.h"
#include "store/save.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t MINIMIZE_BUTTON = 1;
constexpr uint16_t TEXT_WIDTH = 60;  // characters

constexpr ControlSpec TERMINATE_CONTROLS[] = {
    {101, ControlKind::TEXT,
     "Communications are active. Select Minimize to allow communications to continue in the background. "
     "Select Cancel to return to editor.",
     0, 0, 1, 2, TEXT_WIDTH, 0, nullptr},
    {MINIMIZE_BUTTON, ControlKind::BUTTON, "&Minimize", 1, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED,
     nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 1, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec TERMINATE_VIEW = {"Terminate", "Communications", 0, TERMINATE_CONTROLS, 3};

int64_t terminate_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_COMMAND && low_word(first) == MINIMIZE_BUTTON) {
        view_end(view, 1);
        return 1;
    }
    return view_default(view, message, first, second);
}

// A receive that waits for its first byte holds nothing back.
bool is_transferring() {
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        if (slot_is_busy(slot) && transfer_state[slot].status != RECEIVE_STANDBY)
            return true;
    }
    return false;
}

// With transfers going on the program stays: in the background, without the document, or as it was.
bool is_held_back() {
    if (!is_transferring())
        return false;
    background_requested = show_view(&TERMINATE_VIEW, terminate_proc) == 1;
    if (background_requested) {
        send_message(child[0].main_window, WM_COMMAND, COMMAND_CLOSE, 0);
        show_window(child[0].main_window, ShowWindow::MINIMIZED);
    }
    return true;
}

void release_ports() {
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        close_port(slot);
}

// Yes at the question: 1 when the document is safe on the disk and nothing holds the program back. A receive
// may have begun behind the questions that a save asks.
int save_at_end() {
    const GuardAnswer answer = guard_save();
    if (answer == GuardAnswer::SAVE_AS) {
        command_save_as();
        return !child[0].modified && !is_held_back();
    }
    if (answer == GuardAnswer::STOP || is_held_back())
        return 0;
    const PointerShape pointer = begin_wait();
    const int saved = save_file();
    end_wait(pointer);
    return saved;
}

// Gives 1 when nothing holds the program back any more. A receive may have begun behind the question.
int settle_at_end() {
    if (!child[0].modified)
        return 1;
    const SaveAnswer answer = ask_save();
    if (answer == SaveAnswer::CANCEL || is_held_back())
        return 0;
    if (answer == SaveAnswer::YES)
        return save_at_end();
    if (merge_counts()) {
        close_document();
        undo_merge();
    }
    return 1;
}

}  // namespace

void close_program() {
    if (is_held_back() || !settle_at_end())
        return;
    stop_ui_timer();
    release_ports();
    close_document();
    cleanup_temp_files();
    show_help(HelpRequest::QUIT, 0);
    destroy_window(child[0].main_window);
}

}  // namespace hexlane
