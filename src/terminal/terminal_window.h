// terminal_window.h: the terminal's one window: what comes in, what is sent, capture to a file, counters.
// Main thread only.
#pragma once

#include "terminal/byte_text.h"
#include "terminal/terminal_line.h"

#include <QFile>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace hexlane {

class TerminalWindow final : public QWidget {
public:
    // For a machine of machine_table, from 0. Opens the port; a port that cannot be opened is told in the
    // window.
    explicit TerminalWindow(int machine);

private:
    void make_controls();
    QWidget* make_send_row();
    QWidget* make_tool_row();
    void open_line();
    void close_line();
    void show_port();

    void take_received();
    void show_bytes(std::string_view bytes);
    void show_all_again();
    void show_counters();

    void send_text();
    void send_control();
    void send_bytes(const std::string& bytes, int lost);
    void start_capture();
    void end_capture();
    void toggle_capture();
    void tell(const QString& what);

    int machine;
    TerminalCode code;
    TerminalLine line;
    std::string history;         // the last HISTORY_SIZE bytes, for showing them in the other form
    int64_t shown_bytes = 0;     // since the view was cleared
    int64_t received_bytes = 0;  // since the window opened
    bool gone_told = false;
    QFile capture;
    QTimer counter_timer;

    QLabel* port_label;
    QLabel* message_label;
    QLabel* counter_label;
    QPlainTextEdit* view;
    QLineEdit* text_field;
    QCheckBox* end_of_block_box;
    QComboBox* control_list;
    QCheckBox* hex_box;
    QPushButton* send_button;
    QPushButton* control_button;
    QPushButton* port_button;
    QPushButton* capture_button;
};

}  // namespace hexlane
