// pointer.cpp: the pointer's shape and place, and the window's edges beside it.
// The screen that the program sees has the text area's corner at a fixed place: edges and pointer are only
// ever compared with each other, and so they stay right when the window is moved, on any mix of screens, and
// on displays that do not tell where a window is.

#include <QApplication>
#include <QCursor>

#include "platform/desktop.h"
#include "platform/qt/application.h"
#include "platform/qt/main_window.h"
#include "platform/qt/pointer.h"
#include "platform/surface.h"

namespace hexlane::platform {

namespace {

// Far enough from zero that no pointer above or left of the window has a negative place.
constexpr int SCREEN_LEFT = 1024 * CELL_WIDTH;
constexpr int SCREEN_TOP = 1024 * CELL_HEIGHT;

// Title and menu count as three rows, whatever they take: the text begins below them.
constexpr int HEADER_ROWS = 3;

PointerShape pointer_shape = PointerShape::TEXT;

void show_shape(PointerShape shape) {
    if (shape == PointerShape::WAIT) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (MainWindow* window = main_window()) {
        window->text->setCursor(shape == PointerShape::TEXT ? Qt::IBeamCursor : Qt::ArrowCursor);
    }
}

}  // namespace

PointerShape set_pointer_shape(PointerShape shape) {
    const PointerShape before = pointer_shape;
    if (shape == before) {
        return before;
    }
    if (before == PointerShape::WAIT) {
        QApplication::restoreOverrideCursor();
    }
    pointer_shape = shape;
    show_shape(shape);
    flush_display();
    return before;
}

void suspend_wait_pointer() {
    if (pointer_shape == PointerShape::WAIT) {
        QApplication::restoreOverrideCursor();
    }
}

void resume_wait_pointer() {
    if (pointer_shape == PointerShape::WAIT) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    }
}

void pointer_position(int* x, int* y) {
    *x = SCREEN_LEFT;
    *y = SCREEN_TOP;
    if (const MainWindow* window = main_window()) {
        window->text->units_at(QCursor::pos(), x, y);
        *x += SCREEN_LEFT;
        *y += SCREEN_TOP;
    }
}

void window_edges(WindowHandle window, int* top, int* bottom) {
    *top = SCREEN_TOP - HEADER_ROWS * CELL_HEIGHT;
    *bottom = SCREEN_TOP;
    const MainWindow* asked = main_window();
    if (asked != nullptr && asked->handle == window) {
        *bottom += asked->text->units_down(asked->centralWidget()->height());
    }
}

// Qt sends the moves of a held button to the widget where it was pressed, so there is nothing to take or to
// give back.
void set_capture(WindowHandle) {}
void release_capture() {}

}  // namespace hexlane::platform
