// test_hooks.h: the desktop in memory, for unit tests that play no script.
// A test plays the person: it lays answers ready before it runs what will ask, and looks at the screen behind
// it. A box, view or file dialog that finds no answer ready ends the test program with its text; nothing ever
// waits. run_message_loop serves what is queued and gives 0 as soon as nothing waits, so that a test can run
// the whole start of the program and go on from there. Main thread only.
#pragma once

#include "platform/common/cell_grid.h"
#include "platform/desktop.h"
#include "platform/views.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace hexlane::platform {

// Takes away every window, view, timer, message, answer and record. For the start of each test.
void reset_desktop();

// ---- Answers of the person ---------------------------------------------------------------------------

// The next message box or view to ask gets this button, by its label without '&'. A label that the box does
// not have ends the test program.
void answer_box(const char* label);

// The next file dialog gets this path (typed as a person would; `filter` -1 leaves the entry as it stands),
// or is cancelled. The questions about creating and overwriting are boxes and take answers of their own.
void answer_file_dialog(const char* path, int filter = -1);
void cancel_file_dialog();

// Boxes that find no answer ready get this button; "" ends that. For runs in which any step may fail.
void answer_other_boxes(const char* label);

// Answers that nobody has asked for yet.
int unused_answers();
void forget_answers();

// ---- What has been shown -----------------------------------------------------------------------------

struct ShownBox {
    std::string text;
    std::string title;
    BoxIcon icon;
    std::string buttons;  // with bars between them
    std::string pressed;  // the answer it got
};
const std::vector<ShownBox>& shown_boxes();
void forget_shown_boxes();

// Everything that a script would have printed of itself (boxes, views, `beep`, `help`, `raised` and so on),
// one line each, in order.
const std::vector<std::string>& shown_lines();
void forget_shown_lines();
int beep_count();

// ---- The main window ---------------------------------------------------------------------------------

// Client area of the main window in cells; 80 by 28 unless told. Sends WM_SIZE and WM_PAINT when it is on
// show.
void set_window_size(int cols, int rows);

// Makes a main window with this procedure and no menu and puts it on show, for tests that need one without
// the whole program.
WindowHandle make_test_window(WindowProcedure procedure);

std::string screen_row(int row);                   // the bytes of a row of cells, blanks at its end removed
Cell screen_cell(int col, int row);                // ends the test program outside the grid
int focused_control(ViewHandle view);              // id, 0 for none
std::string pane_row(WindowHandle pane, int row);  // the same of a view's pane
Cell pane_cell(WindowHandle pane, int col, int row);
bool caret_shown();
int caret_cell_col();  // where the caret stands, hidden or not
int caret_cell_row();
int scroll_range_high();
int scroll_position_now();
std::string window_title();
bool menu_enabled(int id);  // ends the test program when no entry has the id
bool menu_checked(int id);
std::string menu_text(int id);
std::string status_text(int id);  // a field of the status line; empty before it is made
bool status_shown(int id);

// Calls `see` with the text of each control that the program paints without waiting for a message, as long
// runs do; an empty function ends that.
void watch_painted_texts(const std::function<void(const std::string& text)>& see);

// ---- Time, messages and keys -------------------------------------------------------------------------

// Runs posted messages until none is left.
void pump_messages();
bool messages_waiting();

// Does `act` in the program's `count`-th call of pump_one_message from now on.
void at_pump(int count, const std::function<void()>& act);

// Moves the clock on, runs the timers that fall due and what comes and goes over serial lines (line_hooks.h).
void advance_clock(int ms);
bool timer_running(int id);
int timer_period(int id);  // ms, 0 when it is not running

// What key_is_down says until the next call.
void hold_keys(bool shift, bool ctrl);

// One key pressed and let go ("Ctrl+End"), or characters typed, with accelerators and all, into the main
// window.
void press_key(const char* chord);
void type_text(const char* text);

// Where the pointer stands, in cells relative to the client area's corner.
void set_pointer_cell(int col, int row);

}  // namespace hexlane::platform
