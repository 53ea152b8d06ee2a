// block_buffer.h: deleting the block, and the records of what was cut and copied. Main thread only.
#pragma once

#include "input/block.h"

namespace hexlane {

extern Block cut_block;
extern Block copy_block;

void clear_cut_block();
void clear_copy_block();

// Command 1011: deletes the block; with none, the Delete key acts on the character at the caret.
void command_delete();

// Fetches current_row, removes the columns of `block`, commits, sets `modified`.
void delete_within_row(int32_t row);

}  // namespace hexlane
