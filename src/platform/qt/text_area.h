// text_area.h: the widget that shows the main window's cell grid and takes its keys, text and mouse.
// What has been drawn into the grid comes to the screen with the next events. Main thread only.
#pragma once

#include <QBasicTimer>
#include <QWidget>

#include "platform/common/cell_grid.h"
#include "platform/desktop.h"
#include "platform/qt/cell_painter.h"

namespace hexlane::platform {

class TextArea final : public QWidget {
public:
    explicit TextArea(QWidget* parent);

    CellGrid grid;
    CellFont cells;
    WindowHandle window = NO_WINDOW;  // whose procedure takes keys and mouse

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

    // Three line requests a notch.
    void scroll_by_wheel(const QWheelEvent* event);

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool) override { return false; }  // Tab belongs to the program
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
    void send_mouse(uint32_t message, const QMouseEvent* event);
    QRect logical_rectangle(const QRect& device) const;

    bool focused = false;
    bool blink_on = true;
    bool button_down = false;
    int wheel_rest = 0;  // eighths of a degree that make no line yet
    QBasicTimer blinking;
};

}  // namespace hexlane::platform
