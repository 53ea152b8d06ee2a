// search.h: the commands that look for a place in the document: a text, a row, a line number. Each runs from
// the menu to its end, with small dialogs inside the walk; the document is read row by row, so a search takes
// no more memory than an edit. Needs: a file is open, no row pending, the caret hidden. Main thread only.
#pragma once

namespace hexlane {

void command_find();                 // 1015
void command_find_and_replace();     // 1012
void command_move_to_row();          // 1013
void command_move_to_line_number();  // 1014

// Program start: no text has been searched for yet.
void reset_search();

}  // namespace hexlane
