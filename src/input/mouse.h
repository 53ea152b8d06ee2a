// mouse.h: caret by mouse, and the scroll bars. Served only while a file is open. Main thread only.
#pragma once

namespace hexlane {

// x and y in units, relative to the client area's corner. A press moves the caret to the cell under the
// pointer, with or without text there, and hides it until the button goes up; below the last row it stays on
// that row. A block on show ends. Cells outside the text area are ignored.
void handle_mouse_down(int flags, int x, int y);
void handle_mouse_move(int flags, int x, int y);
void handle_mouse_up(int x, int y);

// From WM_VSCROLL and WM_HSCROLL; `position` is the thumb's, in scroll units. A pending row is committed
// first. The caret keeps its screen row and the document moves under it, as far as there are rows.
void handle_vscroll(int request, int position);

// The view itself never scrolls sideways: a request moves the caret within the window.
void handle_hscroll(int request);

}  // namespace hexlane
