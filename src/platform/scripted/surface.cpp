// surface.cpp: the text areas in memory: cells, caret and scroll bar of the main window and of panes. Calls
// for a window that is not there draw nothing, as on any desktop.

#include "platform/surface.h"

#include "platform/scripted/desktop_state.h"

namespace hexlane::platform {

void draw_text(WindowHandle window, int x, int y, const char* text, int count, Color ink, Color paper) {
    if (CellGrid* grid = find_grid(window)) {
        grid_draw(grid, x, y, text, count, ink, paper);
    }
}

void create_caret(WindowHandle window, int width, int height) {
    if (CellGrid* grid = find_grid(window)) {
        grid->caret_made = true;
        grid->caret_shows = 0;
        grid->caret_width = width;
        grid->caret_height = height;
    }
}

void destroy_caret(WindowHandle window) {
    if (CellGrid* grid = find_grid(window)) {
        grid->caret_made = false;
    }
}

void place_caret(WindowHandle window, int x, int y) {
    if (CellGrid* grid = find_grid(window)) {
        grid->caret_x = x;
        grid->caret_y = y;
    }
}

void hide_caret(WindowHandle window) {
    if (CellGrid* grid = find_grid(window)) {
        grid->caret_shows--;
    }
}

void show_caret(WindowHandle window) {
    if (CellGrid* grid = find_grid(window)) {
        grid->caret_shows++;
    }
}

void set_scroll_range(WindowHandle window, int low, int high) {
    if (CellGrid* grid = find_grid(window)) {
        grid->scroll_low = low;
        grid->scroll_high = high;
    }
}

void set_scroll_position(WindowHandle window, int position) {
    if (CellGrid* grid = find_grid(window)) {
        grid->scroll_position = position;
    }
}

}  // namespace hexlane::platform
