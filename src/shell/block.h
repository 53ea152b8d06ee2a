// block.h: the selection: a part of one row, or whole rows. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

struct BlockEnd {
    int16_t col;         // display column, -1 unset
    int16_t screen_row;  // -1 unset
    int32_t row;         // document row, -1 unset
};

// With end.row -1 it lies inside row start.row, from start.col up to but not including end.col; otherwise it
// is the whole rows start.row to end.row.
struct Block {
    BlockEnd start;
    BlockEnd end;
};

extern Block block;           // the live selection; block_active in child says that it is on show
extern Block previous_block;  // its copy at the last paint_block_rows

constexpr Block NO_BLOCK = {{-1, -1, -1}, {-1, -1, -1}};

// Starts a block at the caret.
void block_begin();

// Ends it: block_active = 0, caret shown, every field of both records -1.
void block_clear();

// Exchanges start and end; the block is on show.
void block_swap_ends();

// Whole rows, and not a part of one row.
bool block_holds_rows();

// Puts the ends of whole rows in the order of the document. Every step that moves an end closes with it, so
// that whoever uses a block finds start.row <= end.row and start.col >= 0.
void block_order_ends();

}  // namespace hexlane
