// person_internal.h: what the files person*.cpp share: the text area that an act goes to, and why an act
// can't apply. Main thread only.
#pragma once

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/person.h"

namespace hexlane::platform {

// The text area that takes keys, mouse and scroll bar: that of the main window, or a pane of the topmost
// view.
struct InputTarget {
    WindowHandle window = NO_WINDOW;  // whose procedure hears of it
    int pane = 0;                     // control id; 0 for the main window
    WindowHandle surface = NO_WINDOW;
};

InputTarget main_window_target();

// Sends a message of keys, mouse or scroll bar; a pane's id goes into the upper half of `first`.
void send_input(const InputTarget& target, uint32_t message, int64_t first, int64_t second);

// Why the main window can't take an act now; empty when it can.
Refusal main_window_refuses(const char* what);

// Whoever clicks on a window brings it to the front. Gives false when something modal came up for that, which
// takes the click.
bool click_reaches_window();

// The topmost thing that is up, if it is a view; nullptr otherwise.
View* top_view();

// The pane that a script names, in the topmost view.
Refusal find_pane(const ControlName& name, InputTarget* target);

// The pane of the topmost view that has the focus, else the first one that can be used.
Refusal pane_in_use(const char* what, InputTarget* target);

// Moves the focus in the topmost view to one of its controls. A field that is left with a bad value tells so
// and keeps it: gives false, and the act ends. A button looks at all fields; a cancel button at none.
bool focus_moves_to(const ControlSpec* to);

// A key in a view that is not its pane's: Enter, Esc, Tab, the letter of a mnemonic.
Refusal press_key_in_view(int key, int modifiers);

}  // namespace hexlane::platform
