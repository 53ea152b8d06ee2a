// mouse.h: caret and block by mouse, and the scroll bars. Served only while a file is open. Main thread only.
//
// x and y are in units, relative to the client area's corner if nothing else is said; flags are MK_ bits.
#pragma once

namespace hexlane {

// A press moves the caret to the cell under the pointer, with or without text there, and hides it until the
// button goes up; below the last row it stays on that row. A block on show ends. Cells outside the text area
// are ignored.
void handle_mouse_down(int flags, int x, int y);

// With the left button alone held, a move marks a block from the caret's cell to the pointer's: a part of its
// row, and whole rows as soon as the pointer leaves that row or in NC Mode; the pointer's own row is not of
// it. The first move behind an open marks nothing.
void handle_mouse_move(int flags, int x, int y);

// The block stays, unless it is empty.
void handle_mouse_up(int x, int y);

// While the button is held, from a timer, with the pointer's place on the screen: above or below the window
// the view scrolls by one row, and the block grows with it.
void drag_scroll(int x, int y);

// From WM_VSCROLL and WM_HSCROLL; `position` is the thumb's, in scroll units. A pending row is committed
// first. The caret keeps its screen row and the document moves under it, as far as there are rows.
void handle_vscroll(int request, int position);

// The view itself never scrolls sideways: a request moves the caret within the window.
void handle_hscroll(int request);

}  // namespace hexlane
