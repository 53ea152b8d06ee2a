// main_window.h: the one main window: menu bar, text area with its scroll bar, and the status line below.
// The client area that the program is told of is the text area's width by the height of text area and status
// line together; the status line stands on the two lowest cell rows of it. Main thread only.
#pragma once

#include <QMainWindow>

#include "platform/desktop.h"
#include "platform/qt/text_area.h"

namespace hexlane::platform {

// Rows of cells that the text leaves free at the bottom for the status line.
constexpr int STATUS_ROWS = 2;

class MainWindow final : public QMainWindow {
public:
    explicit MainWindow(const MainWindowSpec& spec);

    WindowHandle handle = NO_WINDOW;
    TextArea* text = nullptr;
    bool on_show = false;  // has been shown, so that sizes are told

    // Puts a child view at the bottom.
    void set_status_line(QWidget* view);

    // Places the parts and tells the program when the client area has another size in units.
    void lay_out();

    // The first show: WM_SIZE, WM_PAINT and WM_SETFOCUS.
    void show_first();

    // The focus as the program knows it. A modal view takes and gives it by itself, whatever the display
    // says.
    bool has_program_focus() const { return program_focus; }
    void gain_focus();
    void lose_focus();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void tell_size(int width, int height);

    QWidget* status_line = nullptr;
    bool program_focus = false;
    int told_width = -1;   // units
    int told_height = -1;  // units
};

// nullptr before it is made and after destroy_window.
MainWindow* main_window();

}  // namespace hexlane::platform
