// cell_grid.h: the text area of one window in memory, for every desktop: cells, caret, scroll bar values.
// Owns no window; a desktop draws from it. Main thread only.
#pragma once

#include "platform/surface.h"

#include <cstdint>
#include <vector>

namespace hexlane::platform {

struct Cell {
    uint8_t byte;  // shown by code_page.h
    Color ink;
    Color paper;
};

struct CellGrid {
    int cols = 0;
    int rows = 0;
    std::vector<Cell> cells;  // rows * cols, row by row

    int caret_x = 0, caret_y = 0;  // units
    int caret_width = 0, caret_height = 0;
    bool caret_made = false;
    int caret_shows = 0;  // shows less hides since it was made; it is made hidden, at 0

    int scroll_low = 0, scroll_high = 0, scroll_position = 0;

    // Cell rows touched since they were taken by the desktop: first_dirty > last_dirty means none.
    int first_dirty = 0, last_dirty = -1;
};

// Gives the grid a new size; cells that stay keep their content, new ones are blank, black on white.
void grid_resize(CellGrid* grid, int cols, int rows);

// draw_text of surface.h: x and y in units, clipped to the grid. Positions inside a cell are rounded down.
void grid_draw(CellGrid* grid, int x, int y, const char* text, int count, Color ink, Color paper);

bool grid_caret_visible(const CellGrid* grid);

}  // namespace hexlane::platform
