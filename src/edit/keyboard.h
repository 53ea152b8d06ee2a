// keyboard.h: from key presses to edits of the document. Served only while a file is open. Main thread only.
//
// An edit changes row_text and its cells on the screen, and marks the row pending; it reaches the store when
// the caret leaves the row or somebody else needs row_text. An edit that the store cannot take (a fault that
// has not been made good, a row that cannot be read) is refused with a beep and changes nothing.
#pragma once

namespace hexlane {

// Caret movement, Insert and Delete; Shift and Ctrl are asked of held_key. Movement, Insert and Delete
// commit a pending row first; other keys do nothing here.
void handle_key_down(int key);

// Backspace, Tab, Enter, Esc and text, `repeat` times over. Any other character only marks the row pending
// and the document modified.
void handle_char(int code, int repeat);

// The caret would have gone behind the last row: Enter in overwrite mode there, or a deletion that took the
// end row. Whoever wants to know clears it first.
extern bool caret_past_end;

// Brings a caret that a deletion or an Enter would leave behind the last row back to it, on its screen row,
// and notes that in caret_past_end.
void hold_caret_in_document();

// A window procedure's rule: a key down with a block on show first deletes the block, unless it is one of
// these: Shift, Ctrl, Esc, Page Up to Down, the function keys.
bool key_keeps_block(int key);

}  // namespace hexlane
