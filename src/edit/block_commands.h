// block_commands.h: Cut, Copy, Paste and Delete of the block, and the records of what was cut and copied. The
// editor keeps its block buffer to itself and leaves the system's clipboard alone.
//
// Of whole rows the buffer is a file of records (cut_file.h). Of a part of a row a cut keeps the text, and a
// copy only its place: the text is read from the row as it stands when it is pasted. Main thread only.
#pragma once

#include "shell/block.h"

namespace hexlane {

// What was cut or copied last; at most one of them is set. Of a part of a row the columns are indexes into
// its text. Valid for one document as it was loaded: a load clears both.
extern Block cut_block;
extern Block copy_block;

// What a key, a character, a mouse press and a scroll do to a block on show: takes it off the screen, then
// block_clear, and the menu's entries for it go gray. Commits a pending row first. Does nothing without a
// block.
void block_dismiss();

void clear_cut_block();

// Also ends the block on show.
void clear_copy_block();

// The commands. A pending row has been committed by the caller. A store that takes no edits refuses each with
// a beep. An empty block gives and takes nothing.
void command_cut();    // 1008
void command_copy();   // 1009: the block stays on show
void command_paste();  // 1010: a block on show is deleted first, and if that fails nothing is pasted; the
                       // caret stays in front of what comes in

// 1011: deletes the block; with none, the Delete key acts on the character at the caret.
void command_delete();

}  // namespace hexlane
