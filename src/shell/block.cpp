// block.cpp: the record of the selection and its few operations.

#include "shell/block.h"

#include "shell/child.h"
#include "shell/window.h"

#include <algorithm>
#include <utility>

namespace hexlane {

Block block = NO_BLOCK;
Block previous_block = NO_BLOCK;

void block_begin() {
    child[0].block_active = 1;
    set_caret_visible(false);
    block.start = {static_cast<int16_t>(child[0].caret_col), static_cast<int16_t>(child[0].caret_row),
                   child[0].current_row};
}

void block_clear() {
    child[0].block_active = 0;
    set_caret_visible(true);
    block = NO_BLOCK;
    previous_block = NO_BLOCK;
}

void block_swap_ends() {
    child[0].block_active = 1;
    set_caret_visible(false);
    std::swap(block.start, block.end);
}

bool block_holds_rows() {
    return block.end.row >= 0;
}

void block_order_ends() {
    if (!block_holds_rows() || block.end.row >= block.start.row)
        return;
    block_swap_ends();
    block.start.col =
        std::max<int16_t>(block.start.col, 0);  // a step up from column 0 ends in front of a row
}

}  // namespace hexlane
