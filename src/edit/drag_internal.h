// drag_internal.h: the block while the mouse drags it. Private to mouse.cpp and drag.cpp.
#pragma once

#include <cstdint>

namespace hexlane {

// Begins a block at the caret and takes the mouse.
void begin_drag();

// The pointer of a running drag has come to a cell of the client area; outside the text's columns nothing
// happens, below its last row the view scrolls.
void drag_to_cell(int32_t col, int32_t row);

}  // namespace hexlane
