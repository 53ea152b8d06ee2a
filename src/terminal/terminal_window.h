// terminal_window.h: the terminal's one window: what comes in, what is sent, capture to a file, counters.
// Whatever fails is told in a line of the window, one line for each thing that can, until that thing is tried
// again. Main thread only.
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

protected:
    // The port is closed, and the capture with its last bytes. A capture that fails in that moment keeps the
    // window up once, so that it is told.
    void closeEvent(QCloseEvent* event) override;

private:
    // What a message is about.
    enum class About { PORT, CAPTURE, SENDING };
    static constexpr int ABOUT_COUNT = 3;

    void make_controls();
    QWidget* make_send_row();
    QWidget* make_control_row();
    QWidget* make_tool_row();
    void open_line();
    void close_line();
    void show_port();

    void take_received();
    void take_bytes();
    void capture_bytes(const std::string& bytes);
    void show_bytes(std::string_view bytes);
    void show_all_again();
    void show_counters();

    void send_text();
    void send_control();
    void send_bytes(const std::string& bytes, int lost);
    void start_capture();
    void end_capture(QString reason = QString());
    void toggle_capture();
    void show_capture();
    void tell(About about, const QString& what);

    int machine;
    TerminalCode code;
    TerminalLine line;
    std::string history;         // the last HISTORY_SIZE bytes, for showing them in the other form
    int64_t shown_bytes = 0;     // since the view was cleared
    int64_t received_bytes = 0;  // since the window opened
    bool gone_told = false;
    QString messages[ABOUT_COUNT];
    QFile capture;
    int64_t captured_bytes = 0;
    bool capture_failed = false;  // the last one
    QTimer counter_timer;

    QLabel* port_label;
    QLabel* message_label;
    QLabel* counter_label;
    QLabel* capture_label;
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
