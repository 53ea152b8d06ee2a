// selection_internal.h: what Shift makes of a movement key: the block grows or shrinks with the caret.
// Each operation runs when the caret has moved and gets the place that it came from; without a block it
// begins one there. It leaves the ends in any order and paints nothing: extend_block does both. The steps to
// the ends of a row show the caret's page in the scroll bar, as a repaint would. For the keyboard's files and
// the drag.
#pragma once

#include "shell/block.h"

namespace hexlane {

// Where the caret is, as an end of a block.
BlockEnd caret_place();

using ExtendBlock = void (*)(const BlockEnd& from);

void extend_left(const BlockEnd& from);
void extend_right(const BlockEnd& from);
void extend_to_row_start(const BlockEnd& from);
void extend_to_row_end(const BlockEnd& from);
void extend_to_document_start(const BlockEnd& from);
void extend_to_document_end(const BlockEnd& from);
void extend_up(const BlockEnd& from);
void extend_down(const BlockEnd& from);
void extend_page_up(const BlockEnd& from);
void extend_page_down(const BlockEnd& from);

// A movement key with Shift: moves the caret, lets `extend` fit the block, puts its ends in order, and shows
// what has come of it.
void extend_block(void (*move)(), ExtendBlock extend);

}  // namespace hexlane
