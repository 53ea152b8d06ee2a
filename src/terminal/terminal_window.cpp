#include "terminal/terminal_window.h"

#include "dnc/control_names.h"
#include "dnc/machine_table.h"
#include "platform/text.h"
#include "terminal/machine_line.h"

#include <QCheckBox>
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
#include <QVBoxLayout>

namespace hexlane {

using namespace platform;

namespace {

constexpr std::size_t HISTORY_SIZE = 256 * 1024;  // bytes
constexpr int VIEW_ROWS = 20000;                  // the oldest go
constexpr int COUNTER_PERIOD_MS = 250;
constexpr int DELETE = 127;
constexpr int WIDTH = 760;
constexpr int HEIGHT = 520;

QString machine_name(int machine) {
    char name[MACHINE_NAME_SIZE];
    copy_text(name, sizeof name, machine_table[machine].name);
    return QString::fromUtf8(name);
}

QString port_name(int port) {
    char device[PATH_SIZE];
    line_device(port, device, sizeof device);
    return QStringLiteral("COM%1 (%2)").arg(port).arg(QString::fromUtf8(device));
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
    message_label->setWordWrap(true);
    message_label->hide();
    counter_label = new QLabel;
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
    column->addWidget(make_tool_row());
    column->addWidget(counter_label);
}

QWidget* TerminalWindow::make_send_row() {
    auto* row = new QWidget;
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    text_field = new QLineEdit;
    text_field->setPlaceholderText(QStringLiteral("Text to send"));
    end_of_block_box = new QCheckBox(QStringLiteral("with end of &block"));
    end_of_block_box->setChecked(true);
    send_button = new QPushButton(QStringLiteral("&Send"));
    control_list = new QComboBox;
    for (int control = 0; control <= DELETE; control = control == 31 ? DELETE : control + 1) {
        const char* name = control == DELETE ? "DEL" : CONTROL_NAMES[control];
        if (control_byte(code, control) >= 0) {
            control_list->addItem(QStringLiteral("%1  %2").arg(control, 3).arg(QLatin1String(name)), control);
        }
    }
    control_button = new QPushButton(QStringLiteral("Send c&ontrol"));
    connect(text_field, &QLineEdit::returnPressed, this, [this] { send_text(); });
    connect(send_button, &QPushButton::clicked, this, [this] { send_text(); });
    connect(control_button, &QPushButton::clicked, this, [this] { send_control(); });
    cells->addWidget(text_field, 1);
    cells->addWidget(end_of_block_box);
    cells->addWidget(send_button);
    cells->addWidget(control_list);
    cells->addWidget(control_button);
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
    if (line.open(port_of(settings), line_settings_of(settings))) {
        tell(QString());
    } else {
        tell(QStringLiteral("%1 cannot be opened. %2")
                 .arg(port_name(port_of(settings)), QString::fromUtf8(line_problem_text())));
    }
    show_port();
}

void TerminalWindow::close_line() {
    line.close();
    show_port();
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
    for (QWidget* control : {static_cast<QWidget*>(send_button), static_cast<QWidget*>(control_button)}) {
        control->setEnabled(open);
    }
    show_counters();
}

void TerminalWindow::tell(const QString& what) {
    message_label->setText(what);
    message_label->setVisible(!what.isEmpty());
}

// ---- Receiving ---------------------------------------------------------------------------------------

void TerminalWindow::take_received() {
    const std::string bytes = line.take_received();
    received_bytes += static_cast<int64_t>(bytes.size());
    if (capture.isOpen() && !bytes.empty()) {
        const auto size = static_cast<qint64>(bytes.size());
        if (capture.write(bytes.data(), size) != size || !capture.flush()) {
            const QString reason = capture.errorString();
            end_capture();
            tell(QStringLiteral("The capture has ended: %1.").arg(reason));
        }
    }
    history += bytes;
    show_bytes(bytes);
    if (history.size() > HISTORY_SIZE) {
        history.erase(0, history.size() - HISTORY_SIZE);
    }
    if (line.has_gone() && !gone_told) {
        gone_told = true;
        close_line();
        tell(QStringLiteral("%1 has gone: the adapter was unplugged or the line was hung up.")
                 .arg(port_name(port_of(machine_table[machine]))));
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
    LineErrors counts = {};
    const QString errors = !line.is_open() ? QStringLiteral("line closed")
                           : line.errors(&counts)
                               ? QStringLiteral("errors: %1 parity, %2 framing, %3 overrun")
                                     .arg(counts.parity)
                                     .arg(counts.framing)
                                     .arg(counts.overrun)
                               : QStringLiteral("errors: not counted by this line");
    const int64_t waiting = line.bytes_waiting();
    const QString state = waiting == 0     ? QString()
                          : line.is_held() ? QStringLiteral(", %1 held by the machine").arg(waiting)
                                           : QStringLiteral(", %1 waiting").arg(waiting);
    const QString captured =
        capture.isOpen() ? QStringLiteral("   captured to %1: %2").arg(capture.fileName()).arg(capture.size())
                         : QString();
    counter_label->setText(QStringLiteral("received: %1   sent: %2%3   %4%5")
                               .arg(received_bytes)
                               .arg(line.bytes_sent())
                               .arg(state, errors, captured));
}

// ---- Sending -----------------------------------------------------------------------------------------

void TerminalWindow::send_text() {
    if (!line.is_open()) {
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
    tell(lost == 0 ? QString()
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
    if (!capture.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        tell(QStringLiteral("%1 cannot be written: %2.").arg(path, capture.errorString()));
        return;
    }
    capture_button->setText(QStringLiteral("End &capture"));
    show_counters();
}

void TerminalWindow::end_capture() {
    capture.close();
    capture_button->setText(QStringLiteral("&Capture to a file..."));
    show_counters();
}

}  // namespace hexlane
