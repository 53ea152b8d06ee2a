// text_area.cpp: painting the grid and its caret; mouse, keys and text. The scroll bar is in
// text_scrolling.cpp.

#include "platform/qt/text_area.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <QCursor>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QStyleHints>

#include "platform/qt/dispatch.h"

namespace hexlane::platform {

namespace {

std::map<WindowHandle, TextArea*> text_areas;  // by surface

int mouse_flags(const QMouseEvent* event) {
    int flags = 0;
    flags |= event->buttons() & Qt::LeftButton ? MK_LBUTTON : 0;
    flags |= event->buttons() & Qt::RightButton ? MK_RBUTTON : 0;
    flags |= event->modifiers() & Qt::ShiftModifier ? MK_SHIFT : 0;
    flags |= event->modifiers() & Qt::ControlModifier ? MK_CONTROL : 0;
    return flags;
}

int clamp_to_16_bits(int units) {
    return std::clamp(units, -0x8000, 0x7FFF);
}

}  // namespace

TextArea::TextArea(QWidget* parent) : QWidget(parent), bar(new QScrollBar(Qt::Vertical, parent)) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::IBeamCursor);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAccessibleName(QStringLiteral("Program text"));
    make_scroll_bar();
}

TextArea::~TextArea() {
    text_areas.erase(surface_handle);
    remove_window(surface_handle);
}

void TextArea::set_surface(WindowHandle handle) {
    text_areas.erase(surface_handle);
    surface_handle = handle;
    text_areas[handle] = this;
}

TextArea* find_text_area(WindowHandle surface) {
    const auto found = text_areas.find(surface);
    return found == text_areas.end() ? nullptr : found->second;
}

bool TextArea::measure() {
    if (devicePixelRatioF() == cells.ratio) {
        return false;
    }
    make_cell_font(&cells, devicePixelRatioF(), logicalDpiY());
    update();
    return true;
}

int TextArea::units_across(int logical) const {
    return static_cast<int>(logical * cells.ratio) * CELL_WIDTH / cells.width;
}

int TextArea::units_down(int logical) const {
    return static_cast<int>(logical * cells.ratio) * CELL_HEIGHT / cells.height;
}

int TextArea::logical_width(int cols) const {
    return static_cast<int>(std::ceil(cols * cells.width / cells.ratio));
}

int TextArea::logical_height(int rows) const {
    return static_cast<int>(std::floor(rows * cells.height / cells.ratio));
}

void TextArea::units_at(const QPoint& global, int* x, int* y) const {
    const QPointF place = mapFromGlobal(QPointF(global)) * cells.ratio;
    *x = static_cast<int>(std::floor(place.x() * CELL_WIDTH / cells.width));
    *y = static_cast<int>(std::floor(place.y() * CELL_HEIGHT / cells.height));
}

QRect TextArea::logical_rectangle(const QRect& device) const {
    const QPointF corner = QPointF(device.topLeft()) / cells.ratio;
    const QSizeF size = QSizeF(device.size()) / cells.ratio;
    return QRectF(corner, size).toAlignedRect().adjusted(-1, -1, 1, 1);
}

void TextArea::show_drawn_rows() {
    if (grid.first_dirty > grid.last_dirty) {
        return;
    }
    const int rows = grid.last_dirty - grid.first_dirty + 1;
    update(logical_rectangle(
        {0, grid.first_dirty * cells.height, grid.cols * cells.width, rows * cells.height}));
    grid.first_dirty = 0;
    grid.last_dirty = -1;
}

QRect TextArea::visible_caret() const {
    return focused && grid_caret_visible(&grid) ? caret_rectangle(cells, grid) : QRect();
}

void TextArea::show_caret_change(const QRect& before) {
    const QRect now = visible_caret();
    if (now == before) {
        return;
    }
    update(logical_rectangle(before));
    update(logical_rectangle(now));
    restart_blinking();
}

// A caret that has just moved is on show, so that it can be followed.
void TextArea::restart_blinking() {
    const int flash_ms = QGuiApplication::styleHints()->cursorFlashTime();
    blink_on = true;
    if (focused && flash_ms > 1) {
        blinking.start(flash_ms / 2, this);
    } else {
        blinking.stop();
    }
}

void TextArea::timerEvent(QTimerEvent* event) {
    if (event->timerId() == blinking.timerId()) {
        blink_on = !blink_on;
        update(logical_rectangle(visible_caret()));
    } else {
        QWidget::timerEvent(event);
    }
}

void TextArea::set_focused(bool has_focus) {
    const QRect before = visible_caret();
    focused = has_focus;
    show_caret_change(before);
    restart_blinking();
}

void TextArea::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Qt::white);
    use_device_pixels(&painter, cells.ratio);
    const int top = static_cast<int>(std::floor(event->rect().top() * cells.ratio)) - 1;
    const int bottom = static_cast<int>(std::ceil((event->rect().bottom() + 1) * cells.ratio)) + 1;
    paint_cells(&painter, cells, grid, top / cells.height, bottom / cells.height);
    if (blink_on && !visible_caret().isEmpty()) {
        painter.setCompositionMode(QPainter::CompositionMode_Difference);  // shows on any paper
        painter.fillRect(visible_caret(), Qt::white);
    }
}

// The menu's letters with Alt are Qt's; every other key is the program's, whatever else would like it.
bool TextArea::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        !(static_cast<QKeyEvent*>(event)->modifiers() & Qt::AltModifier)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

// Tab belongs to the program, but in a view it moves on.
bool TextArea::focusNextPrevChild(bool next) {
    return target.pane != 0 && QWidget::focusNextPrevChild(next);
}

// The main window's caret follows the focus as the program knows it: it stays when a menu takes the keyboard.
void TextArea::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    if (target.pane != 0) {
        set_focused(true);
    }
}

void TextArea::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    let_go();
    if (target.pane != 0) {
        set_focused(false);
    }
}

void TextArea::keyPressEvent(QKeyEvent* event) {
    event->setAccepted(press_key(target, event));
}

void TextArea::keyReleaseEvent(QKeyEvent* event) {
    event->setAccepted(release_key(target, event));
}

void TextArea::inputMethodEvent(QInputMethodEvent* event) {
    take_text(target, event->commitString());
    event->accept();
}

QVariant TextArea::inputMethodQuery(Qt::InputMethodQuery query) const {
    switch (query) {
    case Qt::ImEnabled:
        return true;
    case Qt::ImHints:
        return static_cast<int>(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase | Qt::ImhMultiLine);
    case Qt::ImCursorRectangle:
        return logical_rectangle(caret_rectangle(cells, grid));
    default:
        return QWidget::inputMethodQuery(query);
    }
}

int64_t TextArea::place_parameter(const QPoint& global) const {
    int x = 0;
    int y = 0;
    units_at(global, &x, &y);
    return make_parameter(clamp_to_16_bits(x), clamp_to_16_bits(y));
}

void TextArea::send_mouse(uint32_t message, const QMouseEvent* event) {
    note_modifiers(event->modifiers());
    send_input(target, message, mouse_flags(event), place_parameter(event->globalPosition().toPoint()));
}

void TextArea::let_go() {
    let_go_of_keys(target);
    if (button_down) {
        button_down = false;
        send_input(target, WM_NCLBUTTONUP, 0, place_parameter(QCursor::pos()));
    }
}

void TextArea::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        button_down = true;
        send_mouse(WM_LBUTTONDOWN, event);
    } else if (event->button() == Qt::RightButton && target.pane != 0) {
        send_mouse(WM_RBUTTONDOWN, event);
    }
}

// While the button is held Qt sends the moves outside the window here too.
void TextArea::mouseMoveEvent(QMouseEvent* event) {
    send_mouse(WM_MOUSEMOVE, event);
}

void TextArea::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && button_down) {
        button_down = false;
        send_mouse(rect().contains(event->position().toPoint()) ? WM_LBUTTONUP : WM_NCLBUTTONUP, event);
    } else if (event->button() == Qt::RightButton && target.pane != 0) {
        send_mouse(WM_RBUTTONUP, event);
    }
}

}  // namespace hexlane::platform
