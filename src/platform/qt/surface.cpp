// surface.cpp: the text area's operations on the grid, each followed by what has to be drawn again.

#include "platform/surface.h"

#include "platform/qt/main_window.h"

namespace hexlane::platform {

namespace {

TextArea* area_of(WindowHandle window) {
    MainWindow* found = main_window();
    return found != nullptr && found->handle == window ? found->text : nullptr;
}

// Runs a change of the caret and redraws where it was and is.
template <typename Change>
void change_caret(WindowHandle window, Change change) {
    if (TextArea* area = area_of(window)) {
        const QRect before = area->visible_caret();
        change(&area->grid);
        area->show_caret_change(before);
    }
}

}  // namespace

void draw_text(WindowHandle window, int x, int y, const char* text, int count, Color ink, Color paper) {
    if (TextArea* area = area_of(window)) {
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

void set_scroll_range(WindowHandle window, int low, int high) {
    if (area_of(window) != nullptr) {
        area_of(window)->grid.scroll_low = low;
        area_of(window)->grid.scroll_high = high;
        main_window()->bar->setRange(low, high);
    }
}

void set_scroll_position(WindowHandle window, int position) {
    if (area_of(window) != nullptr) {
        area_of(window)->grid.scroll_position = position;
        main_window()->bar->setValue(position);
    }
}

}  // namespace hexlane::platform
