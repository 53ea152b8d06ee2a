// playback.cpp: the dialog that chooses a macro, one pass of it, and the two dialogs that run passes.

#include "macros/playback.h"

#include "edit/held_keys.h"
#include "edit/keyboard.h"
#include "macros/macro_list.h"
#include "macros/macro_table.h"
#include "macros/macro_texts.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/keys.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "store/store_fault.h"

#include <algorithm>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

// ---- One pass ----------------------------------------------------------------------------------------

constexpr uint32_t RECORDED_MESSAGES[] = {WM_KEYDOWN, WM_KEYUP, WM_CHAR, WM_LBUTTONDOWN, WM_LBUTTONUP};

// Only a damaged file holds another message, and that is not sent.
bool is_recorded_message(uint32_t message) {
    return std::find(std::begin(RECORDED_MESSAGES), std::end(RECORDED_MESSAGES), message) !=
           std::end(RECORDED_MESSAGES);
}

// A Backspace sent a key of its own, which was recorded behind it and comes again by itself.
bool brings_next_event(const MacroEvent& event) {
    return event.message == WM_CHAR && event.wparam == VK_BACK;
}

// The press that has had no release yet.
struct HeldButton {
    bool down;
    uint32_t place;
};

void play_event(const MacroEvent& event, HeldButton* button) {
    if (!is_recorded_message(event.message))
        return;
    if (event.message == WM_KEYDOWN || event.message == WM_KEYUP)
        note_played_key(event.wparam, event.message == WM_KEYDOWN);
    if (event.message == WM_LBUTTONDOWN || event.message == WM_LBUTTONUP)
        *button = {event.message == WM_LBUTTONDOWN, event.lparam};
    send_message(child[0].main_window, event.message, event.wparam, event.lparam);
}

// Nothing is held in front of a pass and behind it, whatever the file says.
void play_pass() {
    HeldButton button = {false, 0};
    caret_past_end = false;
    begin_played_keys();
    for (int32_t i = 0; i < macros.event_count; ++i) {
        const MacroEvent event = get_macro_event(macros.block, i);
        play_event(event, &button);
        if (brings_next_event(event))
            ++i;
    }
    if (button.down)
        send_message(child[0].main_window, WM_LBUTTONUP, 0, button.place);
    end_played_keys();
    commit_pending();
}

// Plays a pass. Gives whether it did: it does not when the last one would have carried the caret behind the
// last row, or when the store takes no edits.
bool play_next_pass() {
    if (caret_past_end || !edits_allowed())
        return false;
    play_pass();
    return true;
}

// ---- Continuous run ----------------------------------------------------------------------------------

constexpr int RUN_TIMER = 1;
constexpr int RUN_PERIOD = 5;  // ms
constexpr int16_t STOP_BUTTON = 1;

constexpr ControlSpec RUN_CONTROLS[] = {
    {STOP_BUTTON, ControlKind::BUTTON, "&Stop", 0, 0, 1, 1, 24, CONTROL_DEFAULT | CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec RUN_VIEW = {"IDD_RUN_MACRO", "Macro Run", 0, RUN_CONTROLS, 1, 300, 80};

void end_run(ViewHandle view) {
    kill_timer(view, RUN_TIMER);
    view_end(view, 0);
}

// A tick that comes due during a pass waits until it has ended, so the Stop button always acts between two.
int64_t run_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    switch (message) {
    case WM_INITDIALOG:
        start_timer(window, RUN_TIMER, RUN_PERIOD);
        return 1;
    case WM_TIMER:
        if (!play_next_pass())
            end_run(window);
        return 0;
    case WM_COMMAND:
    case WM_CLOSE:
        end_run(window);
        return 0;
    default:
        return view_default(window, message, first, second);
    }
}

// ---- Step run ----------------------------------------------------------------------------------------

constexpr int16_t STEP_BUTTON = 1;

constexpr ControlSpec STEP_CONTROLS[] = {
    {STEP_BUTTON, ControlKind::BUTTON, "&Step", 0, 0, 1, 1, 12, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 0, 1, 1, 1, 12, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec STEP_VIEW = {"IDD_STEP_MACRO", "Run Macro", 0, STEP_CONTROLS, 2, 300, 80};

int64_t step_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG)
        return 1;
    if (message == WM_COMMAND && low_word(first) == STEP_BUTTON) {
        if (!play_next_pass())
            view_end(window, 0);
        return 0;
    }
    return view_default(window, message, first, second);
}

// ---- Play dialog -------------------------------------------------------------------------------------

constexpr int16_t CONTINUOUS_BUTTON = 1;
constexpr int16_t STEP_THROUGH_BUTTON = 3;
constexpr int16_t DELETE_BUTTON = 4;

constexpr ControlSpec PLAY_CONTROLS[] = {
    {MACRO_LIST, ControlKind::LIST, "", 0, 0, 5, 1, MACRO_NAME_SIZE, 0, nullptr},
    {CONTINUOUS_BUTTON, ControlKind::BUTTON, "Run &Continuously", 0, 1, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {STEP_THROUGH_BUTTON, ControlKind::BUTTON, "&Step Through", 1, 1, 1, 1, 0, 0, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 2, 1, 1, 1, 0, CONTROL_CANCEL, nullptr},
    {DELETE_BUTTON, ControlKind::BUTTON, "&Delete Macro", 3, 1, 1, 1, 0, 0, nullptr},
};
constexpr ViewSpec PLAY_VIEW = {"IDD_PLAY_MACRO", "Play Macro", 0, PLAY_CONTROLS, 5};

// Whether the macro is in memory now; if not, a box tells why.
bool load_macro(int32_t entry) {
    const MacroRead result = read_macro(entry);
    const FileError reason = last_file_error();
    char path[PATH_SIZE];
    macro_file_path(entry, path);
    if (result == MacroRead::FAILED)
        show_macro_box(MacroBox::NOT_READ, path, file_error_text(reason));
    if (result == MacroRead::DAMAGED)
        show_macro_box(MacroBox::DAMAGED, path);
    return result == MacroRead::DONE;
}

// The result of the view is the play mode: 0 for none, or the button. With a macro that cannot be read the
// view stays.
void choose_play_mode(ViewHandle view, int button) {
    const int32_t picked = view_selection(view, MACRO_LIST);
    if (picked < 0 || picked >= macros.count)
        return;
    if (!load_macro(picked))
        return;
    macros.active = picked;
    view_end(view, button);
}

int64_t play_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG) {
        fill_macro_list(window, 0);
        return 1;
    }
    const int control = message == WM_COMMAND ? low_word(first) : 0;
    if (control == CONTINUOUS_BUTTON || control == STEP_THROUGH_BUTTON) {
        choose_play_mode(window, control);
        return 0;
    }
    if (control == DELETE_BUTTON) {
        if (ask_to_delete_macro(window) && macros.count == 0) {
            update_menus();
            view_end(window, 0);
        }
        return 0;
    }
    return view_default(window, message, first, second);
}

}  // namespace

void command_play_macro() {
    const int mode = show_view(&PLAY_VIEW, play_proc);
    if (mode == 0)
        return;
    set_caret_visible(false);
    caret_past_end = false;
    if (mode == CONTINUOUS_BUTTON)
        show_view(&RUN_VIEW, run_proc);
    else
        show_view(&STEP_VIEW, step_proc);
}

}  // namespace hexlane
