// main_window.cpp: the main window's parts, its size in units, focus and scroll bar, and its desktop calls.

#include "platform/qt/main_window.h"

#include <algorithm>

#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QWheelEvent>
#include <QWindow>

#include "platform/qt/application.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/keyboard.h"
#include "platform/qt/menu.h"
#include "platform/qt/modal.h"
#include "platform/qt/view_window.h"

namespace hexlane::platform {

namespace {

constexpr int FIRST_COLS = 100;  // client area of a new window, in cells
constexpr int FIRST_ROWS = 36;
constexpr int LEAST_COLS = 20;
constexpr int LEAST_ROWS = 5;

MainWindow* the_window = nullptr;

MainWindow* window_of(WindowHandle window) {
    return the_window != nullptr && the_window->handle == window ? the_window : nullptr;
}

}  // namespace

MainWindow* main_window() {
    return the_window;
}

MainWindow::MainWindow(const MainWindowSpec& spec) {
    setObjectName(QString::fromUtf8(spec.class_name));
    setWindowTitle(QString::fromUtf8(spec.title));
    setContextMenuPolicy(Qt::NoContextMenu);
    auto* client = new QWidget(this);
    client->installEventFilter(this);
    text = new TextArea(client);
    make_scroll_bar(client);
    setCentralWidget(client);
    text->setFocus();
    text->measure();
    const int across = bar->sizeHint().width();
    client->setMinimumSize(text->logical_width(LEAST_COLS) + across, text->logical_height(LEAST_ROWS));
}

void MainWindow::make_scroll_bar(QWidget* client) {
    bar = new QScrollBar(Qt::Vertical, client);
    bar->setRange(0, 0);
    bar->setPageStep(1);
    bar->setTracking(false);  // the thumb acts when it is let go
    bar->setFocusPolicy(Qt::NoFocus);
    bar->setContextMenuPolicy(Qt::NoContextMenu);
    bar->setAccessibleName(QStringLiteral("Position in the program"));
    bar->installEventFilter(this);
    connect(bar, &QScrollBar::actionTriggered, this, &MainWindow::scroll);
    connect(bar, &QScrollBar::sliderReleased, this, [this] {
        call_window(handle, WM_VSCROLL, make_parameter(SB_THUMBPOSITION, bar->sliderPosition()), 0);
    });
}

// The program moves the thumb; the bar only tells what was asked of it.
void MainWindow::scroll(int action) {
    struct Request {
        int action;
        int request;
    };
    static constexpr Request REQUESTS[] = {
        {QAbstractSlider::SliderSingleStepSub, SB_LINEUP},
        {QAbstractSlider::SliderSingleStepAdd, SB_LINEDOWN},
        {QAbstractSlider::SliderPageStepSub, SB_PAGEUP},
        {QAbstractSlider::SliderPageStepAdd, SB_PAGEDOWN},
        {QAbstractSlider::SliderToMinimum, SB_TOP},
        {QAbstractSlider::SliderToMaximum, SB_BOTTOM},
    };
    for (const Request& line : REQUESTS) {
        if (line.action == action) {
            bar->setSliderPosition(bar->value());
            call_window(handle, WM_VSCROLL, line.request, 0);
            return;
        }
    }
}

bool MainWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == bar && event->type() == QEvent::Wheel) {
        text->scroll_by_wheel(static_cast<QWheelEvent*>(event));
        return true;
    }
    if (object == centralWidget() && event->type() == QEvent::Resize) {
        lay_out();
    }
    return QMainWindow::eventFilter(object, event);
}

void MainWindow::set_status_line(QWidget* view) {
    status_line = view;
    view->setParent(centralWidget());
    view->show();
    lay_out();
}

// The status line spans the window, below the scroll bar too. A row of the text that fits only in part stays
// white.
void MainWindow::lay_out() {
    text->measure();
    const QSize client = centralWidget()->size();
    const int status_height = std::min(text->logical_height(STATUS_ROWS), client.height());
    const int text_height = client.height() - status_height;
    const int across = bar->sizeHint().width();
    const int text_width = std::max(client.width() - across, 0);
    text->setGeometry(0, 0, text_width, text_height);
    bar->setGeometry(text_width, 0, across, text_height);
    if (status_line != nullptr) {
        status_line->setGeometry(0, text_height, client.width(), status_height);
    }
    if (on_show) {
        tell_size(text->units_across(text_width), text->units_down(client.height()));
    }
}

void MainWindow::tell_size(int width, int height) {
    if (width == told_width && height == told_height) {
        return;
    }
    told_width = width;
    told_height = height;
    grid_resize(&text->grid, width / CELL_WIDTH, std::max(height / CELL_HEIGHT - STATUS_ROWS, 0));
    call_window(handle, WM_SIZE, 0, make_parameter(width, height));
    call_window(handle, WM_PAINT, 0, 0);
    text->show_drawn_rows();
}

void MainWindow::show_first() {
    const QSize room = screen()->availableSize() * 9 / 10;
    const QSize wanted(text->logical_width(FIRST_COLS) + bar->sizeHint().width(),
                       text->logical_height(FIRST_ROWS) + menuBar()->sizeHint().height());
    resize(wanted.boundedTo(room));
    show();
    connect(windowHandle(), &QWindow::screenChanged, this, [this] { lay_out(); });
    on_show = true;
    lay_out();
    gain_focus();
    activateWindow();
}

void MainWindow::gain_focus() {
    if (!on_show || program_focus) {
        return;
    }
    program_focus = true;
    call_window(handle, WM_SETFOCUS, 0, 0);
    text->set_focused(true);
}

void MainWindow::lose_focus() {
    if (!program_focus) {
        return;
    }
    program_focus = false;
    forget_held_keys();
    text->set_focused(false);
    call_window(handle, WM_KILLFOCUS, 0, 0);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || modal_is_up()) {
        return;
    }
    if (isActiveWindow()) {
        gain_focus();
    } else {
        lose_focus();
    }
}

void MainWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (on_show) {
        call_window(handle, WM_MOVE, 0, make_parameter(event->pos().x(), event->pos().y()));
    }
}

// The program closes the window itself when it has asked what there is to ask.
void MainWindow::closeEvent(QCloseEvent* event) {
    call_window(handle, WM_CLOSE, 0, 0);
    event->setAccepted(the_window == nullptr);
}

WindowHandle create_main_window(const MainWindowSpec* spec) {
    if (the_window != nullptr) {
        return NO_WINDOW;
    }
    the_window = new MainWindow(*spec);
    the_window->handle = add_window(spec->procedure);
    the_window->text->window = the_window->handle;
    build_menu(the_window->menuBar(), *spec, the_window->handle);
    set_key_window(the_window->handle, spec->accelerators, spec->accelerator_count);
    watch_instance_socket();
    if (call_window(the_window->handle, WM_CREATE, 0, 0) == -1) {
        destroy_window(the_window->handle);
    }
    return the_window != nullptr ? the_window->handle : NO_WINDOW;
}

void show_window(WindowHandle window, ShowWindow how) {
    MainWindow* shown = window_of(window);
    if (shown == nullptr) {
        return;
    }
    if (how == ShowWindow::MINIMIZED) {
        shown->showMinimized();
    } else if (!shown->on_show) {
        shown->show_first();
    } else {
        shown->setWindowState(shown->windowState() & ~Qt::WindowMinimized);
        shown->show();
    }
}

// Under a modal view the person can only go on in that one, so it comes up too.
void raise_window(WindowHandle window) {
    MainWindow* raised = window_of(window);
    if (raised == nullptr) {
        return;
    }
    raised->raise();
    raised->activateWindow();
    if (QWidget* modal = top_modal()) {
        modal->raise();
        modal->activateWindow();
    }
}

// Deleted from the event loop alone: the call often comes from inside one of the window's own events.
void destroy_window(WindowHandle window) {
    MainWindow* gone = window_of(window);
    if (gone == nullptr) {
        return;
    }
    gone->hide();
    call_window(window, WM_DESTROY, 0, 0);
    remove_window(window);
    set_key_window(NO_WINDOW, nullptr, 0);
    forget_menu();
    forget_child_view();
    the_window = nullptr;
    gone->deleteLater();
}

void set_window_title(WindowHandle window, const char* title) {
    if (MainWindow* named = window_of(window)) {
        named->setWindowTitle(QString::fromUtf8(title));
    }
}

bool window_has_focus(WindowHandle window) {
    const MainWindow* asked = window_of(window);
    return asked != nullptr && asked->has_program_focus();
}

}  // namespace hexlane::platform
