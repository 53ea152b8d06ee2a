// window.h: the small services of the main window, for every room. What only the roof can do goes to its
// window as a message, so that no room here knows the one that answers. Main thread only.
#pragma once

#include "platform/desktop.h"
#include "platform/messages.h"

namespace hexlane {

// Messages of our own to the main window; those of the transfers are in dnc/port_engine.h.
using platform::HANDOVER_MESSAGE;
using platform::OPEN_REQUEST_MESSAGE;
constexpr uint32_t STORE_FAULT_MESSAGE = 0x8001;  // a commit or segment write failed: tell the user
constexpr uint32_t FILE_CHECK_MESSAGE = 0x8002;   // the window has got the focus: look at the active file
constexpr uint32_t MENUS_MESSAGE = 0x8004;        // work out afresh what can be chosen

// Hides or shows the caret and keeps a flag, so that repeated calls do nothing. While a block is on show the
// caret stays hidden.
void set_caret_visible(bool visible);

// Places the caret at caret_col and caret_row.
void place_caret_now();

// Keeps the caret on a row of the document and of the view. Gives whether its row has changed.
bool bound_caret();

// Runs WM_PAINT at once: commits, draws every visible row, the scroll bar and the position.
void repaint_now();

// Works the state of every menu entry out afresh, at once. Call after each change of what the rules read.
void update_menus();

// The hourglass: gives the pointer it replaced, to be given back to end_wait.
platform::PointerShape begin_wait();
void end_wait(platform::PointerShape pointer);

// Paints every text row blank: the look of the window with no file.
void blank_client(platform::WindowHandle window);

}  // namespace hexlane
