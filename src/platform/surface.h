// surface.h: the text area of a window as a grid of cells with a caret and a vertical scroll bar.
// Positions are in units: a cell is CELL_WIDTH by CELL_HEIGHT units in every back end, and a desktop scales
// units to its font and screen. A byte is shown by the Windows-1252 table, controls as a glyph of the font.
// A window keeps its grid: an exposed window is redrawn from it by the back end alone. Main thread only.
// Back ends: qt/ and scripted/, both over common/cell_grid.
#pragma once

#include "platform/messages.h"

#include <cstdint>

namespace hexlane::platform {

constexpr int CELL_WIDTH = 8;    // units
constexpr int CELL_HEIGHT = 16;  // units

using Color = uint32_t;  // 0x00BBGGRR
constexpr Color BLACK = 0x000000;
constexpr Color WHITE = 0xFFFFFF;

// Draws `count` bytes in a row, the first one's left upper corner at (x, y). Parts outside the window are
// clipped; a count of zero or less draws nothing.
void draw_text(WindowHandle window, int x, int y, const char* text, int count, Color ink, Color paper);

// The caret of the window: a solid block. It is made hidden; hide and show count, as in begin and end: it
// shows while the shows since its making outnumber the hides.
void create_caret(WindowHandle window, int width, int height);
void destroy_caret(WindowHandle window);
void place_caret(WindowHandle window, int x, int y);
void hide_caret(WindowHandle window);
void show_caret(WindowHandle window);

// The vertical scroll bar. A range of 0 to 0 shows an idle bar.
void set_scroll_range(WindowHandle window, int low, int high);
void set_scroll_position(WindowHandle window, int position);

}  // namespace hexlane::platform
