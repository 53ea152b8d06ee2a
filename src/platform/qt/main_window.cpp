// main_window.cpp: the main window's parts, its size in units, focus and scroll bar, and its desktop calls.

#include "platform/qt/main_window.h"

#include <algorithm>

#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

#include "platform/qt/application.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/keyboard.h"
#include "platform/qt/menu.h"
#include "platform/qt/modal.h"
#include "platform/qt/pump.h"
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
    setCentralWidget(client);
    text->setFocus();
    text->measure();
    const int across = text->bar->sizeHint().width();
    client->setMinimumSize(text->logical_width(LEAST_COLS) + across, text->logical_height(LEAST_ROWS));
}

bool MainWindow::eventFilter(QObject* object, QEvent* event) {
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
    const int across = text->bar->sizeHint().width();
    const int text_width = std::max(client.width() - across, 0);
    text->setGeometry(0, 0, text_width, text_height);
    text->bar->setGeometry(text_width, 0, across, text_height);
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
    const QSize wanted(text->logical_width(FIRST_COLS) + text->bar->sizeHint().width(),
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
    if (!on_show || program_focus || isMinimized()) {
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
    text->let_go();
    text->set_focused(false);
    call_window(handle, WM_KILLFOCUS, 0, 0);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    const bool of_focus =
        event->type() == QEvent::ActivationChange || event->type() == QEvent::WindowStateChange;
    if (!of_focus || modal_is_up()) {
        return;
    }
    if (isActiveWindow() && !isMinimized()) {
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
    if (command_is_pumping()) {
        event->ignore();
        return;
    }
    call_window(handle, WM_CLOSE, 0, 0);
    event->setAccepted(the_window == nullptr);
}

WindowHandle create_main_window(const MainWindowSpec* spec) {
    if (the_window != nullptr) {
        return NO_WINDOW;
    }
    the_window = new MainWindow(*spec);
    the_window->handle = add_window(spec->procedure);
    the_window->text->set_surface(the_window->handle);
    the_window->text->target = {the_window->handle, 0, spec->accelerators, spec->accelerator_count};
    build_menu(the_window->menuBar(), *spec, the_window->handle);
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
