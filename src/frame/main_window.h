// main_window.h: the one window procedure of the program and the small services of the main window.
// Main thread only.
#pragma once

#include "platform/desktop.h"
#include "platform/messages.h"

namespace hexlane {

// Messages of our own; those of the transfers are in dnc/port_engine.h.
using platform::HANDOVER_MESSAGE;
using platform::OPEN_REQUEST_MESSAGE;
constexpr uint32_t STORE_FAULT_MESSAGE = 0x8001;  // a commit or segment write failed: tell the user
constexpr uint32_t FILE_CHECK_MESSAGE = 0x8002;   // the window has got the focus: look at the active file

int64_t main_window_proc(platform::WindowHandle window, uint32_t message, int64_t first, int64_t second);

// Hides or shows the caret and keeps a flag, so that repeated calls do nothing. While a block is on show the
// caret stays hidden.
void set_caret_visible(bool visible);

// Places the caret at caret_col and caret_row.
void place_caret_now();

// Keeps the caret on a row of the document and of the view. Gives whether its row has changed.
bool bound_caret();

// Brings a caret that a deletion or an Enter would leave behind the last row back to it, on its screen row,
// and notes that in caret_past_end (edit/keyboard.h).
void hold_caret_in_document();

// Runs WM_PAINT at once: commits, draws every visible row, the scroll bar and the position.
void repaint_now();

// The hourglass: gives the pointer it replaced, to be given back to end_wait.
platform::PointerShape begin_wait();
void end_wait(platform::PointerShape pointer);

// Paints every text row blank: the look of the window with no file.
void blank_client(platform::WindowHandle window);

}  // namespace hexlane
