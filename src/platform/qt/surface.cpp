// surface.cpp: the operations on the grid of a text area, each followed by what has to be drawn again.

#include "platform/surface.h"

#include "platform/qt/text_area.h"

namespace hexlane::platform {

namespace {

// Runs a change of the caret and redraws where it was and is.
template <typename Change>
void change_caret(WindowHandle window, Change change) {
    if (TextArea* area = find_text_area(window)) {
        const QRect before = area->visible_caret();
        change(&area->grid);
        area->show_caret_change(before);
    }
}

}  // namespace

void draw_text(WindowHandle window, int x, int y, const char* text, int count, Color ink, Color paper) {
    if (TextArea* area = find_text_area(window)) {
        grid_draw(&area->grid, x, y, text, count, ink, paper);
        area->show_drawn_rows();
    }
}

void create_caret(WindowHandle window, int width, int height) {
    change_caret(window, [width, height](CellGrid* grid) {
        grid->caret_made = true;
        grid->caret_shows = 0;
        grid->caret_width = width;
        grid->caret_height = height;
    });
}

void destroy_caret(WindowHandle window) {
    change_caret(window, [](CellGrid* grid) {
        grid->caret_made = false;
        grid->caret_shows = 0;
    });
}

void place_caret(WindowHandle window, int x, int y) {
    change_caret(window, [x, y](CellGrid* grid) {
        grid->caret_x = x;
        grid->caret_y = y;
    });
}

void hide_caret(WindowHandle window) {
    change_caret(window, [](CellGrid* grid) { grid->caret_shows--; });
}

void show_caret(WindowHandle window) {
    change_caret(window, [](CellGrid* grid) { grid->caret_shows++; });
}

// A pane has a bar only where there is something to scroll.
void set_scroll_range(WindowHandle window, int low, int high) {
    if (TextArea* area = find_text_area(window)) {
        area->grid.scroll_low = low;
        area->grid.scroll_high = high;
        area->bar->setRange(low, high);
        area->bar->setVisible(area->target.pane == 0 || high > low);
    }
}

void set_scroll_position(WindowHandle window, int position) {
    if (TextArea* area = find_text_area(window)) {
        area->grid.scroll_position = position;
        area->bar->setValue(position);
    }
}

}  // namespace hexlane::platform
