// text_scrolling.cpp: the scroll bar and the wheel of a text area, as the program's scroll requests.

#include <cstdlib>

#include <QWheelEvent>

#include "platform/qt/text_area.h"

namespace hexlane::platform {

namespace {

constexpr int WHEEL_NOTCH = 120;  // eighths of a degree
constexpr int LINES_PER_NOTCH = 3;

struct Request {
    int action;
    int request;
};
constexpr Request REQUESTS[] = {
    {QAbstractSlider::SliderSingleStepSub, SB_LINEUP}, {QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
    {QAbstractSlider::SliderPageStepSub, SB_PAGEUP},   {QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
    {QAbstractSlider::SliderToMinimum, SB_TOP},        {QAbstractSlider::SliderToMaximum, SB_BOTTOM},
};

}  // namespace

void TextArea::make_scroll_bar() {
    bar->setRange(0, 0);
    bar->setPageStep(1);
    bar->setTracking(false);  // the thumb acts when it is let go
    bar->setFocusPolicy(Qt::NoFocus);
    bar->setContextMenuPolicy(Qt::NoContextMenu);
    bar->setAccessibleName(QStringLiteral("Position in the program"));
    bar->installEventFilter(this);
    connect(bar, &QScrollBar::actionTriggered, this, &TextArea::scroll);
    connect(bar, &QScrollBar::sliderReleased, this,
            [this] { send_scroll(SB_THUMBPOSITION, bar->sliderPosition()); });
}

bool TextArea::eventFilter(QObject* object, QEvent* event) {
    if (object == bar && event->type() == QEvent::Wheel) {
        scroll_by_wheel(static_cast<QWheelEvent*>(event));
        return true;
    }
    return QWidget::eventFilter(object, event);
}

// The program moves the thumb; the bar only tells what was asked of it.
void TextArea::scroll(int action) {
    for (const Request& line : REQUESTS) {
        if (line.action == action) {
            bar->setSliderPosition(bar->value());
            send_scroll(line.request, 0);
            return;
        }
    }
}

// Of a pane, whose id stands where the main window's position does, the second parameter has the position.
void TextArea::send_scroll(int request, int position) {
    if (target.pane != 0) {
        send_input(target, WM_VSCROLL, request, position);
    } else {
        send_input(target, WM_VSCROLL, make_parameter(request, position), 0);
    }
}

void TextArea::scroll_by_wheel(const QWheelEvent* event) {
    constexpr int LINE = WHEEL_NOTCH / LINES_PER_NOTCH;
    wheel_rest += event->angleDelta().y();
    const int lines = wheel_rest / LINE;
    wheel_rest -= lines * LINE;
    for (int i = 0; i < std::abs(lines); i++) {
        send_scroll(lines > 0 ? SB_LINEUP : SB_LINEDOWN, 0);
    }
}

}  // namespace hexlane::platform
