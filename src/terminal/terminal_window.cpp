#include "terminal/terminal_window.h"

#include "dnc/control_names.h"
#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "platform/text.h"
#include "terminal/line_counters.h"
#include "terminal/machine_line.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMetaObject>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStringList>
#include <QVBoxLayout>

namespace hexlane {

using namespace platform;

namespace {

constexpr std::size_t HISTORY_SIZE = 256 * 1024;  // bytes
constexpr int VIEW_ROWS = 20000;                  // the oldest go
constexpr int COUNTER_PERIOD_MS = 250;
constexpr int LAST_CONTROL = 31;
constexpr int DELETE = 127;
constexpr int WIDTH = 760;
constexpr int HEIGHT = 520;

QString machine_name(int machine) {
    char name[MACHINE_NAME_TEXT_SIZE];
    hexlane::machine_name(machine_table[machine], name);
    return QString::fromUtf8(name);
}

QString port_name(int port) {
    char name[PATH_SIZE + 16];
    line_name(port, name, sizeof name);
    return QString::fromUtf8(name);
}

}  // namespace

// The line's thread only queues a call: bytes are taken on the main thread.
TerminalWindow::TerminalWindow(int chosen)
    : machine(chosen), code(code_of(machine_table[chosen])), line([this] {
          QMetaObject::invokeMethod(
              this, [this] { take_received(); }, Qt::QueuedConnection);
      }) {
    setWindowTitle(QStringLiteral("Hexlane Terminal - %1").arg(machine_name(machine)));
    make_controls();
    resize(WIDTH, HEIGHT);
    connect(&counter_timer, &QTimer::timeout, this, [this] { show_counters(); });
    counter_timer.start(COUNTER_PERIOD_MS);
    open_line();
    text_field->setFocus();
}

// ---- Controls ----------------------------------------------------------------------------------------

void TerminalWindow::make_controls() {
    port_label = new QLabel;
    message_label = new QLabel;
    message_label->setTextFormat(Qt::PlainText);
    message_label->setWordWrap(true);
    message_label->hide();
    counter_label = new QLabel;
    capture_label = new QLabel;
    for (QLabel* label : {port_label, capture_label, counter_label}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);  // a long device or file name must not widen the window
    }
    capture_label->hide();
    view = new QPlainTextEdit;
    view->setReadOnly(true);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setMaximumBlockCount(VIEW_ROWS);
    view->setAccessibleName(QStringLiteral("Received"));

    auto* column = new QVBoxLayout(this);
    column->addWidget(port_label);
    column->addWidget(message_label);
    column->addWidget(view, 1);
    column->addWidget(make_send_row());
    column->addWidget(make_control_row());
    column->addWidget(make_tool_row());
    column->addWidget(capture_label);
    column->addWidget(counter_label);
}

QWidget* TerminalWindow::make_send_row() {
    auto* row = new QWidget;
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(QStringLiteral("&Text to send:"));
    text_field = new QLineEdit;
    label->setBuddy(text_field);
    end_of_block_box = new QCheckBox(QStringLiteral("with end of &block"));
    end_of_block_box->setChecked(true);
    send_button = new QPushButton(QStringLiteral("&Send"));
    connect(text_field, &QLineEdit::returnPressed, this, [this] { send_text(); });
    connect(send_button, &QPushButton::clicked, this, [this] { send_text(); });
    cells->addWidget(label);
    cells->addWidget(text_field, 1);
    cells->addWidget(end_of_block_box);
    cells->addWidget(send_button);
    return row;
}

// The names come first, so that typing one in the list finds it.
QWidget* TerminalWindow::make_control_row() {
    auto* row = new QWidget;
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(QStringLiteral("Control cha&racter:"));
    control_list = new QComboBox;
    label->setBuddy(control_list);
    for (int control = 0; control <= DELETE; control = control == LAST_CONTROL ? DELETE : control + 1) {
        const char* name = control == DELETE ? "DEL" : CONTROL_NAMES[control];
        if (control_byte(code, control) >= 0) {
            control_list->addItem(QStringLiteral("%1 (%2)").arg(QLatin1String(name)).arg(control), control);
        }
    }
    control_button = new QPushButton(QStringLiteral("Send c&ontrol"));
    connect(control_button, &QPushButton::clicked, this, [this] { send_control(); });
    cells->addWidget(label);
    cells->addWidget(control_list);
    cells->addWidget(control_button);
    cells->addStretch(1);
    return row;
}

QWidget* TerminalWindow::make_tool_row() {
    auto* row = new QWidget;
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    hex_box = new QCheckBox(QStringLiteral("&Hexadecimal"));
    auto* clear_button = new QPushButton(QStringLiteral("C&lear"));
    capture_button = new QPushButton(QStringLiteral("&Capture to a file..."));
    port_button = new QPushButton;
    connect(hex_box, &QCheckBox::toggled, this, [this] { show_all_again(); });
    connect(clear_button, &QPushButton::clicked, this, [this] {
        history.clear();
        show_all_again();
    });
    connect(capture_button, &QPushButton::clicked, this, [this] { toggle_capture(); });
    connect(port_button, &QPushButton::clicked, this, [this] {
        if (line.is_open()) {
            close_line();
        } else {
            open_line();
        }
    });
    cells->addWidget(hex_box);
    cells->addWidget(clear_button);
    cells->addStretch(1);
    cells->addWidget(capture_button);
    cells->addWidget(port_button);
    return row;
}

// ---- The port ----------------------------------------------------------------------------------------

void TerminalWindow::open_line() {
    const MachineParams& settings = machine_table[machine];
    gone_told = false;
    const bool open = line.open(port_of(settings), line_settings_of(settings));
    tell(About::SENDING, QString());
    tell(About::PORT, open ? QString()
                           : QStringLiteral("COM%1 can't be opened. %2")
                                 .arg(port_of(settings))
                                 .arg(QString::fromUtf8(line_problem_text())));
    show_port();
}

void TerminalWindow::close_line() {
    const int64_t dropped = line.close();
    take_bytes();
    tell(About::SENDING,
         dropped == 0
             ? QString()
             : QStringLiteral("The last %1 bytes were not sent: the port was closed before.").arg(dropped));
    show_port();
}

void TerminalWindow::closeEvent(QCloseEvent* event) {
    const bool capturing = capture.isOpen();
    close_line();
    if (capture.isOpen()) {
        end_capture();
    }
    event->setAccepted(!capturing || !capture_failed);
}

void TerminalWindow::show_port() {
    const MachineParams& settings = machine_table[machine];
    const bool open = line.is_open();
    const uint32_t rate = open ? line.settings().baud_rate : 0;
    port_label->setText(QStringLiteral("%1: %2, %3")
                            .arg(port_name(port_of(settings)),
                                 open ? QStringLiteral("open") : QStringLiteral("closed"),
                                 QString::fromStdString(settings_text(settings, rate))));
    port_button->setText(open ? QStringLiteral("Close &port") : QStringLiteral("Open &port"));
    send_button->setEnabled(open);
    control_button->setEnabled(open);
    show_counters();
}

void TerminalWindow::tell(About about, const QString& what) {
    messages[static_cast<int>(about)] = what;
    QStringList lines;
    for (const QString& message : messages) {
        if (!message.isEmpty()) {
            lines.append(message);
        }
    }
    message_label->setText(lines.join(QLatin1Char('\n')));
    message_label->setVisible(!lines.isEmpty());
}

// ---- Receiving ---------------------------------------------------------------------------------------

void TerminalWindow::take_received() {
    take_bytes();
    if (line.has_gone() && !gone_told) {
        gone_told = true;
        close_line();
        tell(About::PORT,
             QStringLiteral("%1 has gone: the adapter was unplugged or the line was hung up. Open port "
                            "tries again.")
                 .arg(port_name(port_of(machine_table[machine]))));
    }
}

void TerminalWindow::take_bytes() {
    const std::string bytes = line.take_received();
    received_bytes += static_cast<int64_t>(bytes.size());
    capture_bytes(bytes);
    history += bytes;
    show_bytes(bytes);
    if (history.size() > HISTORY_SIZE) {
        history.erase(0, history.size() - HISTORY_SIZE);
    }
}

// New text goes to the end; the view follows unless the person has scrolled up.
void TerminalWindow::show_bytes(std::string_view bytes) {
    if (bytes.empty()) {
        return;
    }
    QScrollBar* bar = view->verticalScrollBar();
    const bool follows = bar->value() == bar->maximum();
    const int before = bar->value();
    const std::string text = hex_box->isChecked() ? hex_text(bytes, shown_bytes) : named_text(code, bytes);
    shown_bytes += static_cast<int64_t>(bytes.size());
    QTextCursor end(view->document());
    end.movePosition(QTextCursor::End);
    end.insertText(QString::fromStdString(text));
    bar->setValue(follows ? bar->maximum() : before);
}

void TerminalWindow::show_all_again() {
    view->clear();
    shown_bytes = 0;
    show_bytes(history);
}

void TerminalWindow::show_counters() {
    LineCounters counters = {};
    counters.received = received_bytes;
    counters.sent = line.bytes_sent();
    counters.waiting = line.bytes_waiting();
    counters.held = line.is_held();
    counters.open = line.is_open();
    counters.counts_errors = line.errors(&counters.errors);
    counter_label->setText(QString::fromStdString(counters_text(counters)));
}

// ---- Sending -----------------------------------------------------------------------------------------

void TerminalWindow::send_text() {
    if (!line.is_open()) {
        tell(About::SENDING, QStringLiteral("Nothing was sent: the port is closed."));
        return;
    }
    int lost = 0;
    std::string bytes = line_bytes(code, text_field->text().toStdString(), &lost);
    if (end_of_block_box->isChecked()) {
        for (const char c : end_of_block_of(machine_table[machine])) {
            const int byte = control_byte(code, static_cast<unsigned char>(c));
            if (byte >= 0) {
                bytes += static_cast<char>(byte);
            }
        }
    }
    send_bytes(bytes, lost);
    text_field->selectAll();
}

void TerminalWindow::send_control() {
    const int byte = control_byte(code, control_list->currentData().toInt());
    send_bytes(std::string(1, static_cast<char>(byte)), 0);
}

void TerminalWindow::send_bytes(const std::string& bytes, int lost) {
    line.send(bytes);
    tell(About::SENDING,
         lost == 0 ? QString()
                   : QStringLiteral("Some characters have no code for this machine and were left out."));
    show_counters();
}

// ---- Capture -----------------------------------------------------------------------------------------

void TerminalWindow::toggle_capture() {
    if (capture.isOpen()) {
        end_capture();
    } else {
        start_capture();
    }
}

void TerminalWindow::start_capture() {
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Capture to a file"), QString(),
                                                      QString(), nullptr, QFileDialog::DontUseNativeDialog);
    if (path.isEmpty()) {
        return;
    }
    capture.setFileName(path);
    captured_bytes = 0;
    capture_failed = !capture.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
    tell(About::CAPTURE, capture_failed
                             ? QStringLiteral("%1 can't be written: %2.").arg(path, capture.errorString())
                             : QString());
    show_capture();
}

void TerminalWindow::capture_bytes(const std::string& bytes) {
    if (!capture.isOpen() || bytes.empty()) {
        return;
    }
    const auto size = static_cast<qint64>(bytes.size());
    for (qint64 done = 0; done < size;) {
        const qint64 written = capture.write(bytes.data() + done, size - done);
        if (written <= 0) {
            end_capture(capture.errorString());
            return;
        }
        done += written;
        captured_bytes += written;
    }
    show_capture();
}

// `reason` says what ends it before the person does.
void TerminalWindow::end_capture(QString reason) {
    capture.close();
    if (reason.isEmpty() && capture.error() != QFileDevice::NoError) {
        reason = capture.errorString();
    }
    capture_failed = !reason.isEmpty();
    if (capture_failed) {
        tell(About::CAPTURE,
             QStringLiteral("The capture to %1 has ended: %2. It holds the first %3 bytes; what came "
                            "in behind them is only in this window.")
                 .arg(capture.fileName(), reason)
                 .arg(captured_bytes));
    }
    show_capture();
}

void TerminalWindow::show_capture() {
    const bool on = capture.isOpen();
    capture_button->setText(on ? QStringLiteral("End &capture") : QStringLiteral("&Capture to a file..."));
    capture_label->setText(QStringLiteral("captured to %1: %2").arg(capture.fileName()).arg(captured_bytes));
    capture_label->setVisible(on);
}

}  // namespace hexlane
