// The terminal's window, its buttons pressed and its labels read in one process with the machine that it
// talks to. Runs on no display (QT_QPA_PLATFORM=offscreen); what it looks like is the other desktop runs'
// matter.

#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "platform/posix/serial_driver.h"
#include "terminal/terminal_window.h"

#include "unit/serial/serial_fixture.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDialog>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <ctime>
#include <filesystem>
#include <set>
#include <stdexcept>

namespace hexlane {
namespace {

using platform::Machine;

constexpr int LIMIT_MS = 20'000;

// Serves events until the condition is true; the window's own timer brings one at least every quarter of a
// second.
template <typename Condition>
bool comes_true(const Condition& condition) {
    const QDeadlineTimer limit(LIMIT_MS);
    while (!condition()) {
        if (limit.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

double processor_ms() {
    timespec used;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return 1e3 * static_cast<double>(used.tv_sec) + 1e-6 * static_cast<double>(used.tv_nsec);
}

std::set<int> threads() {
    std::set<int> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        found.insert(std::stoi(entry.path().filename()));
    return found;
}

long long run_time_of_all(const std::set<int>& ids) {
    long long time = 0;
    for (const int id : ids)
        time += platform::run_time_of(id);
    return time;
}

QByteArray bytes_of(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class Terminal : public testing::Test {
protected:
    Terminal() {
        set_machine_defaults();
        slot_machine[0] = 0;
        platform::line_set_device(1, machine.device.c_str());
    }
    ~Terminal() override { platform::line_driver = platform::TTY_DRIVER; }

    void show() {
        const std::set<int> others = threads();
        window = std::make_unique<TerminalWindow>(0);
        window->show();
        workers = threads();
        for (const int id : others)
            workers.erase(id);
    }

    // The widget of that kind whose text begins so. Its test ends where there is none.
    template <typename Widget>
    Widget* labelled(const QString& label) {
        for (auto* found : window->findChildren<Widget*>()) {
            if (found->text().remove(QLatin1Char('&')).startsWith(label))
                return found;
        }
        throw std::runtime_error("nothing is labelled " + label.toStdString());
    }
    QPushButton* button(const QString& label) { return labelled<QPushButton>(label); }
    QCheckBox* box(const QString& label) { return labelled<QCheckBox>(label); }
    void press(const QString& label) { button(label)->click(); }
    // Whether a visible label has the words in it.
    bool tells(const QString& words) {
        for (const auto* label : window->findChildren<QLabel*>()) {
            if (!label->isHidden() && label->text().contains(words))
                return true;
        }
        return false;
    }
    QString view_text() { return window->findChild<QPlainTextEdit*>()->toPlainText(); }
    QLineEdit* text_field() { return window->findChild<QLineEdit*>(); }
    void type(const QString& text) {
        text_field()->setText(text);
        emit text_field()->returnPressed();
    }
    bool machine_gets(const std::string& bytes) {
        return comes_true([&] { return machine.take().size() >= bytes.size(); }) && machine.got == bytes;
    }

    // Capture to a file, with that name for its dialog, and Yes for its question about a file that is there.
    void capture_to(const QString& path) {
        QObject answering;
        // A timer of its own for each look: Qt keeps one that is being served from firing again.
        std::function<void()> look = [&] {
            QTimer::singleShot(20, &answering, look);
            QWidget* top = QApplication::activeModalWidget();
            if (auto* question = qobject_cast<QMessageBox*>(top); question != nullptr) {
                question->button(QMessageBox::Yes)->click();
            } else if (auto* dialog = qobject_cast<QDialog*>(top); dialog != nullptr) {
                dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
                dialog->accept();
            }
        };
        look();
        press(QStringLiteral("Capture"));
    }
    // No event is served meanwhile, so that the line's thread has the bytes and the window has not.
    void send_to_the_line_alone(const std::string& bytes) {
        ASSERT_FALSE(workers.empty());
        const long long before = run_time_of_all(workers);
        machine.send(bytes);
        ASSERT_TRUE(platform::wait_for([&] { return run_time_of_all(workers) > before; }));
        for (const int id : workers)
            platform::expect_asleep(id);
    }
    QString scratch(const char* name) { return folder.filePath(QString::fromUtf8(name)); }

    Machine machine;
    QTemporaryDir folder;
    std::unique_ptr<TerminalWindow> window;
    std::set<int> workers;  // threads that began with the window: the line's is one of them
};

TEST_F(Terminal, TypedTextGoesOutWithTheEndOfBlockUnlessThatIsOff) {
    show();
    type(QStringLiteral("G1 X5"));
    ASSERT_TRUE(machine_gets("G1 X5\r\n"));
    EXPECT_EQ(text_field()->selectedText(), QStringLiteral("G1 X5"));
    box(QStringLiteral("with end of block"))->click();
    text_field()->setText(QStringLiteral("M0"));
    press(QStringLiteral("Send"));
    EXPECT_TRUE(machine_gets("G1 X5\r\nM0"));
    EXPECT_TRUE(comes_true([&] { return tells(QStringLiteral("sent: 9 ")); }));
}

TEST_F(Terminal, EveryControlCharacterCanBeSent) {
    show();
    auto* list = window->findChild<QComboBox*>();
    ASSERT_EQ(list->count(), 33);
    EXPECT_EQ(list->itemText(17), QStringLiteral("DC1 (17)"));
    std::string wanted;
    for (int i = 0; i < list->count(); i++) {
        list->setCurrentIndex(i);
        press(QStringLiteral("Send control"));
        wanted += static_cast<char>(list->itemData(i).toInt());
    }
    EXPECT_EQ(wanted.back(), '\x7F');
    EXPECT_TRUE(machine_gets(wanted));
}

TEST_F(Terminal, EiaOffersTheControlCharactersThatItHas) {
    machine_table[0].data_type = DATA_EIA;
    show();
    auto* list = window->findChild<QComboBox*>();
    EXPECT_LT(list->count(), 33);
    EXPECT_EQ(list->findData(1), -1);
    list->setCurrentIndex(list->findData(10));
    press(QStringLiteral("Send control"));
    EXPECT_TRUE(machine_gets("\x80"));
}

TEST_F(Terminal, CharactersWithoutACodeAreToldAndTheRestIsSent) {
    show();
    type(QStringLiteral("G1 \u0416X"));
    EXPECT_TRUE(tells(QStringLiteral("were left out")));
    type(QStringLiteral("M0"));
    EXPECT_FALSE(tells(QStringLiteral("were left out")));
}

TEST_F(Terminal, HexadecimalShowsTheSameBytesAndGoesBack) {
    show();
    machine.send("\x02READY\r\n\x17\x06");
    const QString named = QStringLiteral("<STX>READY<CR><LF>\n<ETB><ACK>");
    ASSERT_TRUE(comes_true([&] { return view_text() == named; })) << view_text().toStdString();
    box(QStringLiteral("Hexadecimal"))->click();
    EXPECT_EQ(view_text(), QStringLiteral("02 52 45 41 44 59 0D 0A 17 06 "));
    machine.send("0123456");
    EXPECT_TRUE(comes_true([&] {
        return view_text() == QStringLiteral("02 52 45 41 44 59 0D 0A 17 06 30 31 32 33 34 35\n36 ");
    })) << view_text().toStdString();
    box(QStringLiteral("Hexadecimal"))->click();
    EXPECT_EQ(view_text(), named + QStringLiteral("0123456"));
    press(QStringLiteral("Clear"));
    EXPECT_EQ(view_text(), QString());
}

TEST_F(Terminal, ErrorsAreCountedFromTheOpeningOfThePortOn) {
    static platform::LineErrors counted;
    counted = {7, 5, 1};
    platform::line_driver.error_counts = [](int, platform::LineErrors* errors) {
        *errors = counted;
        return 1;
    };
    show();
    EXPECT_TRUE(tells(QStringLiteral("errors: 0 parity, 0 framing, 0 overrun")));
    counted = {9, 6, 4};
    EXPECT_TRUE(comes_true([&] { return tells(QStringLiteral("errors: 2 parity, 1 framing, 3 overrun")); }));
    press(QStringLiteral("Close port"));
    EXPECT_TRUE(tells(QStringLiteral("port closed")));
    press(QStringLiteral("Open port"));
    EXPECT_TRUE(tells(QStringLiteral("errors: 0 parity, 0 framing, 0 overrun")));
}

TEST_F(Terminal, CloseLetsThePortGoAndOpenTakesItBack) {
    show();
    EXPECT_TRUE(tells(QStringLiteral(": open, ")));
    EXPECT_EQ(platform::line_open(1), platform::NO_LINE) << "the window has it";
    press(QStringLiteral("Close port"));
    EXPECT_TRUE(tells(QStringLiteral(": closed, ")));
    EXPECT_FALSE(button(QStringLiteral("Send control"))->isEnabled());
    type(QStringLiteral("M0"));
    EXPECT_TRUE(tells(QStringLiteral("Nothing was sent: the port is closed.")));
    const platform::LineHandle other = platform::line_open(1);
    ASSERT_NE(other, platform::NO_LINE);
    press(QStringLiteral("Open port"));
    EXPECT_TRUE(tells(QStringLiteral("COM1 can't be opened.")));
    EXPECT_TRUE(tells(QStringLiteral("in use")));
    platform::line_close(other);
    press(QStringLiteral("Open port"));
    EXPECT_FALSE(tells(QStringLiteral("can't be opened")));
    EXPECT_TRUE(button(QStringLiteral("Send control"))->isEnabled());
    type(QStringLiteral("M1"));
    EXPECT_TRUE(machine_gets("M1\r\n"));
}

TEST_F(Terminal, APortThatIsNotThereIsToldAndCanBeTriedAgain) {
    const QByteArray nowhere = scratch("nowhere").toUtf8();
    platform::line_set_device(1, nowhere.constData());
    show();
    EXPECT_TRUE(tells(QStringLiteral("COM1 can't be opened. %1 is not there.").arg(scratch("nowhere"))));
    EXPECT_FALSE(button(QStringLiteral("Send"))->isEnabled());
    platform::line_set_device(1, machine.device.c_str());
    press(QStringLiteral("Open port"));
    EXPECT_FALSE(tells(QStringLiteral("can't be opened")));
    machine.send("READY");
    EXPECT_TRUE(comes_true([&] { return view_text() == QStringLiteral("READY"); }));
}

TEST_F(Terminal, AnUnpluggedLineIsToldAndCostsNothing) {
    const std::size_t threads_before = threads().size();
    show();
    machine.send("LAST");
    ASSERT_TRUE(comes_true([&] { return view_text() == QStringLiteral("LAST"); }));
    machine.hang_up();
    ASSERT_TRUE(comes_true([&] { return tells(QStringLiteral("has gone: ")); }));
    EXPECT_EQ(view_text(), QStringLiteral("LAST"));
    EXPECT_TRUE(tells(QStringLiteral(": closed, ")));
    EXPECT_FALSE(button(QStringLiteral("Send"))->isEnabled());
    EXPECT_LE(threads().size(), threads_before) << "the line's thread is there still";
    const double before = processor_ms();
    QElapsedTimer second;
    second.start();
    EXPECT_TRUE(comes_true([&] { return second.hasExpired(1000); }));
    EXPECT_LT(processor_ms() - before, 250);
}

TEST_F(Terminal, BytesThatAHeldLineDropsAreTold) {
    show();
    machine.send("\x13!");
    ASSERT_TRUE(comes_true([&] { return view_text() == QStringLiteral("!"); }));
    type(QStringLiteral("G1 X5"));
    EXPECT_TRUE(comes_true([&] { return tells(QStringLiteral("7 held by the machine")); }));
    press(QStringLiteral("Close port"));
    EXPECT_TRUE(tells(QStringLiteral("The last 7 bytes were not sent")));
}

TEST_F(Terminal, ACaptureHoldsWhatComesInUntilItsEnd) {
    QFile old(scratch("captured.nc"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("what stood there before, longer than what comes");
    old.close();
    show();
    machine.send("BEFORE ");
    ASSERT_TRUE(comes_true([&] { return view_text() == QStringLiteral("BEFORE "); }));
    capture_to(scratch("captured.nc"));
    EXPECT_TRUE(tells(QStringLiteral("captured to %1: 0").arg(scratch("captured.nc"))));
    std::string wanted("\0\r\n\xFF", 4);
    machine.send(wanted);
    ASSERT_TRUE(comes_true([&] { return tells(QStringLiteral("captured.nc: 4")); }));
    press(QStringLiteral("End capture"));
    EXPECT_FALSE(tells(QStringLiteral("captured to")));
    machine.send(" BEHIND");
    ASSERT_TRUE(comes_true([&] { return view_text().endsWith(QStringLiteral("BEHIND")); }));
    EXPECT_EQ(bytes_of(scratch("captured.nc")).toStdString(), wanted);
}

TEST_F(Terminal, ClosingTheWindowPutsTheLastBytesIntoTheCapture) {
    show();
    capture_to(scratch("captured.nc"));
    machine.send("PART");
    ASSERT_TRUE(comes_true([&] { return tells(QStringLiteral("captured.nc: 4")); }));
    send_to_the_line_alone("S");
    EXPECT_TRUE(window->close());
    EXPECT_EQ(bytes_of(scratch("captured.nc")), QByteArray("PARTS"));
}

TEST_F(Terminal, ACaptureThatFailsAtTheCloseKeepsTheWindowUpOnce) {
    show();
    capture_to(QStringLiteral("/dev/full"));
    send_to_the_line_alone("S");
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(tells(QStringLiteral("The capture to /dev/full has ended: No space left")));
    EXPECT_EQ(view_text(), QStringLiteral("S"));
    EXPECT_TRUE(window->close());
}

TEST_F(Terminal, AFullDiskEndsTheCaptureAndIsToldUntilTheNext) {
    show();
    capture_to(QStringLiteral("/dev/full"));
    EXPECT_TRUE(tells(QStringLiteral("captured to /dev/full: 0")));
    machine.send("READY");
    ASSERT_TRUE(comes_true(
        [&] { return tells(QStringLiteral("The capture to /dev/full has ended: No space left")); }));
    EXPECT_TRUE(tells(QStringLiteral("It holds the first 0 bytes")));
    EXPECT_EQ(view_text(), QStringLiteral("READY")) << "what came in is on show";
    type(QStringLiteral("M0"));
    EXPECT_TRUE(tells(QStringLiteral("No space left"))) << "sending does not take the message away";
    capture_to(scratch("captured.nc"));
    EXPECT_FALSE(tells(QStringLiteral("No space left")));
    machine.send("!");
    EXPECT_TRUE(comes_true([&] { return bytes_of(scratch("captured.nc")) == "!"; }));
}

TEST_F(Terminal, ACaptureThatCannotBeMadeIsTold) {
    show();
    capture_to(scratch("no-folder/captured.nc"));
    EXPECT_TRUE(tells(QStringLiteral("captured.nc can't be written: No such file")));
    EXPECT_FALSE(tells(QStringLiteral("captured to")));
    EXPECT_TRUE(button(QStringLiteral("Capture to a file")) != nullptr);
}

TEST_F(Terminal, ACaptureOutlivesAnUnpluggedLine) {
    show();
    capture_to(scratch("captured.nc"));
    machine.send("ONE");
    ASSERT_TRUE(comes_true([&] { return tells(QStringLiteral("captured.nc: 3")); }));
    machine.hang_up();
    ASSERT_TRUE(comes_true([&] { return tells(QStringLiteral("has gone: ")); }));
    Machine other;
    platform::line_set_device(1, other.device.c_str());
    press(QStringLiteral("Open port"));
    EXPECT_FALSE(tells(QStringLiteral("has gone: ")));
    other.send("TWO");
    EXPECT_TRUE(comes_true([&] { return bytes_of(scratch("captured.nc")) == "ONETWO"; }));
}

}  // namespace
}  // namespace hexlane

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
