// text_area.h: the widget that shows a cell grid, of the main window or of a view's pane, and takes keys,
// text and mouse for it, with its scroll bar. What has been drawn into the grid comes to the screen with the
// next events. Main thread only.
#pragma once

#include <QBasicTimer>
#include <QScrollBar>
#include <QWidget>

#include "platform/common/cell_grid.h"
#include "platform/desktop.h"
#include "platform/qt/cell_painter.h"
#include "platform/qt/keyboard.h"

namespace hexlane::platform {

class TextArea final : public QWidget {
public:
    explicit TextArea(QWidget* parent);
    ~TextArea() override;
    TextArea(const TextArea&) = delete;
    TextArea& operator=(const TextArea&) = delete;

    CellGrid grid;
    CellFont cells;
    InputTarget target;
    QScrollBar* bar;  // beside the area; whoever lays out the area places it too

    // The handle that surface.h knows the area by.
    void set_surface(WindowHandle handle);
    WindowHandle surface() const { return surface_handle; }

    // Takes the font for the screen that the widget is on. Gives whether the cell has another size now.
    bool measure();

    // A length in logical pixels as whole units, and cells as whole logical pixels.
    int units_across(int logical) const;
    int units_down(int logical) const;
    int logical_width(int cols) const;
    int logical_height(int rows) const;

    // A place on the screen in units from the area's corner.
    void units_at(const QPoint& global, int* x, int* y) const;

    // Asks for a redraw of what was drawn since the last one.
    void show_drawn_rows();

    // The caret was made, moved, shown or hidden: `before` is where it was on show, or empty.
    QRect visible_caret() const;
    void show_caret_change(const QRect& before);
    void restart_blinking();

    // The caret shows only while the program believes that it has the focus.
    void set_focused(bool has_focus);

    // Keys and button count as let go, the button outside: what takes the keyboard takes the releases too.
    void let_go();

    // Three line requests a notch.
    void scroll_by_wheel(const QWheelEvent* event);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;  // the wheel over the bar
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override { scroll_by_wheel(event); }
    void timerEvent(QTimerEvent* event) override;

private:
    void make_scroll_bar();
    void scroll(int action);
    void send_scroll(int request, int position);
    void send_mouse(uint32_t message, const QMouseEvent* event);
    int64_t place_parameter(const QPoint& global) const;
    QRect logical_rectangle(const QRect& device) const;

    WindowHandle surface_handle = NO_WINDOW;
    bool focused = false;
    bool blink_on = true;
    bool button_down = false;
    int wheel_rest = 0;  // eighths of a degree that make no line yet
    QBasicTimer blinking;
};

// The text area of a handle, nullptr when there is none.
TextArea* find_text_area(WindowHandle surface);

}  // namespace hexlane::platform
