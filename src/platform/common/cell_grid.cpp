// cell_grid.cpp: keeping the cells of a text area, and which of its rows a desktop has to draw again.

#include "platform/common/cell_grid.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

constexpr Cell BLANK_CELL = {' ', BLACK, WHITE};

// Whole cells below `units`, rounded down for negative positions too.
int cell_of(int units, int cell_size) {
    return units >= 0 ? units / cell_size : -((-units + cell_size - 1) / cell_size);
}

void touch_rows(CellGrid* grid, int first, int last) {
    if (grid->first_dirty > grid->last_dirty) {
        grid->first_dirty = first;
        grid->last_dirty = last;
        return;
    }
    grid->first_dirty = std::min(grid->first_dirty, first);
    grid->last_dirty = std::max(grid->last_dirty, last);
}

}  // namespace

void grid_resize(CellGrid* grid, int cols, int rows) {
    cols = std::max(cols, 0);
    rows = std::max(rows, 0);
    if (cols == grid->cols && rows == grid->rows) {
        return;
    }
    std::vector<Cell> cells(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows), BLANK_CELL);
    for (int row = 0; row < std::min(rows, grid->rows); row++) {
        const auto from = grid->cells.begin() + static_cast<std::ptrdiff_t>(row) * grid->cols;
        std::copy_n(from, std::min(cols, grid->cols),
                    cells.begin() + static_cast<std::ptrdiff_t>(row) * cols);
    }
    grid->cells.swap(cells);
    grid->cols = cols;
    grid->rows = rows;
    grid->first_dirty = 0;
    grid->last_dirty = rows - 1;
}

void grid_draw(CellGrid* grid, int x, int y, const char* text, int count, Color ink, Color paper) {
    const int row = cell_of(y, CELL_HEIGHT);
    const int col = cell_of(x, CELL_WIDTH);
    const int first = std::max(0, -col);  // characters left of the window
    const int last = std::min(count, grid->cols - col);
    if (row < 0 || row >= grid->rows || first >= last) {
        return;
    }
    Cell* cells = grid->cells.data() + static_cast<std::ptrdiff_t>(row) * grid->cols + col;
    for (int i = first; i < last; i++) {
        cells[i] = {static_cast<uint8_t>(text[i]), ink, paper};
    }
    touch_rows(grid, row, row);
}

bool grid_caret_visible(const CellGrid* grid) {
    return grid->caret_made && grid->caret_shows > 0;
}

}  // namespace hexlane::platform
