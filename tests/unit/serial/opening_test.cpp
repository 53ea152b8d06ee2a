// COM numbers and devices, opening for us alone, why an opening fails, and the driver's settings.

#include "../platform/temp_folder.h"
#include "serial_fixture.h"

#include <asm/termbits.h>
#include <csignal>
#include <cstring>
#include <grp.h>
#include <sys/file.h>
#include <sys/fsuid.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace hexlane::platform {
namespace {

std::string device_of(int port) {
    char name[PATH_SIZE];
    line_device(port, name, sizeof name);
    return name;
}

class Ports : public TempFolder {
protected:
    Ports() {
        setenv("HEXLANE_HOME", folder.c_str(), 1);
        line_set_device(1, "");
        line_set_device(2, "");
    }
    ~Ports() override {
        unsetenv("HEXLANE_COM2");
        unsetenv("HEXLANE_HOME");
    }
};

TEST_F(Ports, TheRunThenTheEnvironmentThenTheFileTellTheDevice) {
    EXPECT_EQ(device_of(1), "/dev/ttyS0");
    EXPECT_EQ(device_of(4), "/dev/ttyS3");
    write("ports", "# machines\n\n  com2\t/dev/serial/by id/x  # the mill\nCOM1 /dev/a\n");
    EXPECT_EQ(device_of(1), "/dev/a");
    EXPECT_EQ(device_of(2), "/dev/serial/by id/x");
    EXPECT_EQ(device_of(3), "/dev/ttyS2");
    setenv("HEXLANE_COM2", "/dev/ttyUSB7", 1);
    EXPECT_EQ(device_of(2), "/dev/ttyUSB7");
    line_set_device(2, "./machine");
    EXPECT_EQ(device_of(2), "./machine");
    line_set_device(2, "");
    EXPECT_EQ(device_of(2), "/dev/ttyUSB7");
    EXPECT_EQ(device_of(0), "");
    EXPECT_EQ(device_of(5), "");
}

// What a row means for COM1 and COM2: the device, or what the problem says.
TEST_F(Ports, ARowThatCannotBeReadIsNeverPassedOver) {
    const std::string unreadable = "ports, row 2: no port can be read";
    const std::string twice = "ports, row 2: the port has a row above";
    const std::string long_name(2 * PATH_SIZE, 'x');
    const struct {
        std::string rows, com1, com2;
    } cases[] = {{"COM1=/dev/a\ncom2: /dev/b", "/dev/a", "/dev/b"},
                 {"COM1 = /dev/a b\r\n", "/dev/a b", "/dev/ttyS1"},
                 {"COM1 /dev/a\nCOM2", "/dev/a", unreadable},
                 {"COM1 /dev/a\nCOM2 = # none", "/dev/a", unreadable},
                 {"COM1 /dev/a\nCOM2/dev/b", "/dev/a", unreadable},
                 {"COM1 /dev/a\n2 /dev/b", "/dev/a", unreadable},
                 {"COM1 /dev/a\nCOM12 /dev/b", "/dev/a", unreadable},
                 {"COM1 /dev/a\nCOM5 /dev/b\nCOM2 /dev/c", "/dev/a", "/dev/c"},
                 {"COM1 /dev/a\nCOM1 /dev/b", twice, "/dev/ttyS1"},
                 {"COM1 /dev/a\nCOM2 /" + long_name + "\n", "/dev/a", unreadable},
                 {"\xFF\xFE\nC\nCOM1 /dev/a", "/dev/a", "ports, row 1: no port can be read"}};
    for (const auto& c : cases) {
        write("ports", c.rows);
        for (const int port : {1, 2}) {
            SCOPED_TRACE(c.rows + " COM" + std::to_string(port));
            const std::string device = device_of(port);
            const std::string& wanted = port == 1 ? c.com1 : c.com2;
            EXPECT_NE((device.empty() ? line_problem_text() : device).find(wanted), std::string::npos)
                << device << line_problem_text();
            EXPECT_EQ(device.empty(), wanted[0] != '/');
        }
    }
    line_set_device(1, "/dev/mine");  // nobody asks the file then
    EXPECT_EQ(line_set_device(1, long_name.c_str()), 0);
    EXPECT_EQ(device_of(1), "/dev/mine");
    std::filesystem::remove(path("ports"));
    std::filesystem::create_directory(path("ports"));
    EXPECT_EQ(device_of(2), "");
    EXPECT_NE(std::string(line_problem_text()).find(path("ports") + " can't be read"), std::string::npos);
    setenv("HEXLANE_COM2", long_name.c_str(), 1);
    EXPECT_EQ(device_of(2), "");
}

TEST(Settings, AnyRateIsSetAndReadBack) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    for (const uint32_t rate : {110u, 300u, 9600u, 14400u, 56000u, 115200u, 250000u}) {
        ASSERT_EQ(line_configure(line, plain_settings(rate)), 1) << rate << line_problem_text();
        LineSettings real{};
        ASSERT_EQ(line_settings(line, &real), 1);
        EXPECT_EQ(real.baud_rate, rate);
        termios2 driver;
        ASSERT_EQ(ioctl(machine.pty, TCGETS2, &driver), 0);
        EXPECT_EQ(driver.c_ospeed, rate);
        EXPECT_EQ(driver.c_ispeed, rate);
    }
    EXPECT_EQ(line_configure(line, plain_settings(0)), 0);
    EXPECT_NE(std::string(line_problem_text()).find("can't run at 0 bits"), std::string::npos);
    line_close(line);
}

TEST(Settings, TheDriverGetsTheHandshake) {
    const struct {
        bool hardware, software;
        uint8_t xon, xoff;
        bool in_driver;  // XON/XOFF
    } rows[] = {{false, false, 0x11, 0x13, false},
                {false, true, 0x11, 0x13, true},
                {false, true, 0x11, 0x93, true},
                {false, true, 0x00, 0x93, false},
                {true, false, 0x11, 0x13, false}};
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.hardware << row.software << int{row.xon} << int{row.xoff});
        LineSettings settings = plain_settings(9600);
        settings.hardware_handshake = row.hardware;
        settings.software_handshake = row.software;
        settings.xon_char = row.xon;
        settings.xoff_char = row.xoff;
        ASSERT_EQ(line_configure(line, settings), 1);
        termios2 driver;
        ASSERT_EQ(ioctl(machine.pty, TCGETS2, &driver), 0);
        EXPECT_EQ(driver.c_iflag, row.in_driver ? static_cast<tcflag_t>(IXON | IXOFF) : 0u);
        EXPECT_EQ((driver.c_cflag & CRTSCTS) != 0, row.hardware);
        EXPECT_EQ(driver.c_lflag, 0u);
        EXPECT_EQ(driver.c_oflag, 0u);
        if (row.in_driver) {
            EXPECT_EQ(driver.c_cc[VSTART], row.xon);
            EXPECT_EQ(driver.c_cc[VSTOP], row.xoff);
        }
    }
    line_close(line);
}

void expect_problem(const std::string& part) {
    EXPECT_EQ(line_open(1), NO_LINE);
    EXPECT_NE(std::string(line_problem_text()).find(part), std::string::npos) << line_problem_text();
}

TEST(Opening, AFailureIsToldWithItsDeviceAndReason) {
    Machine dead;
    dead.hang_up();
    const struct {
        const char* device;
        const char* part;
    } rows[] = {{"/dev/no-such-line", "/dev/no-such-line is not there"},
                {dead.device.c_str(), dead.device.c_str()},
                {"/dev/null", "/dev/null is not a serial line"},
                {"/tmp", "/tmp is not a serial line"},
                {"/etc/passwd", "not a serial line"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.device);
        line_set_device(1, row.device);
        expect_problem(row.part);
    }
    EXPECT_EQ(line_open(9), NO_LINE);
}

TEST(Opening, WithoutPermissionTheGroupThatHasItIsNamed) {
    const uid_t user = geteuid();
    Machine machine;
    const char* device = machine.device.c_str();
    line_set_device(1, device);
    // The owner is refused by the mode. Root is refused nothing, so it is somebody else for as long as that.
    if (user == 0) {
        ASSERT_EQ(chown(device, 0, 20), 0);
        setfsuid(65534);
    }
    struct stat entry;
    ASSERT_EQ(stat(device, &entry), 0);
    const group* has_it = getgrgid(entry.st_gid);
    ASSERT_NE(has_it, nullptr);
    const std::string group_name = has_it->gr_name;
    const auto change_mode = [&](mode_t mode) {
        const uid_t now = static_cast<uid_t>(setfsuid(user));
        EXPECT_EQ(chmod(device, mode), 0);
        setfsuid(now);
    };
    change_mode(0060);
    expect_problem("group " + group_name + ",");
    change_mode(0000);
    expect_problem("No permission to use " + machine.device + ".");
    setfsuid(user);
    change_mode(0600);
    const LineHandle line = line_open(1);
    EXPECT_NE(line, NO_LINE);
    EXPECT_STREQ(line_problem_text(), "");
    line_close(line);
}

// A process of its own that has the machine's line open until it is ended: locked, only open, or, only open,
// as the machine itself does, whose side of the pty it has too.
enum class Part { LOCKED, OPEN, MACHINE };

class Holder {
public:
    Holder(const Machine& machine, Part part) {
        int ready[2];
        if (pipe(ready) != 0 || (pid = fork()) < 0) {
            std::abort();
        }
        if (pid == 0) {
            if (part != Part::MACHINE) {
                close(machine.pty);
            }
            const int tty = open(machine.device.c_str(), O_RDWR | O_NOCTTY);
            if (tty < 0 || (part == Part::LOCKED && flock(tty, LOCK_EX | LOCK_NB) != 0) ||
                ::write(ready[1], "x", 1) != 1) {
                _exit(1);
            }
            for (;;) {
                pause();
            }
        }
        close(ready[1]);
        char byte;
        EXPECT_EQ(::read(ready[0], &byte, 1), 1);
        close(ready[0]);
    }
    Holder(const Holder&) = delete;
    ~Holder() {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    pid_t pid;
};

TEST(Opening, TheProcessThatHasTheLineIsNamedAndKeepsIt) {
    Machine machine;
    line_set_device(1, machine.device.c_str());
    const Holder simulator(machine, Part::MACHINE);
    for (const Part part : {Part::LOCKED, Part::OPEN}) {
        SCOPED_TRACE(static_cast<int>(part));
        const Holder holder(machine, part);
        expect_problem("in use by process " + std::to_string(holder.pid) + " (serial_test)");
        termios2 form;
        int exclusive = 1;
        ASSERT_EQ(ioctl(machine.pty, TCGETS2, &form), 0);
        EXPECT_NE(form.c_lflag & ICANON, 0u);
        const int another = open(machine.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_EQ(ioctl(another, TIOCGEXCL, &exclusive), 0);
        EXPECT_EQ(exclusive, 0);
        close(another);
    }
    const LineHandle line = line_open(1);
    EXPECT_NE(line, NO_LINE) << line_problem_text();
    line_close(line);
}

TEST(Opening, ALineIsOursAloneUntilItCloses) {
    Machine machine;
    const int before = open(machine.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const LineHandle line = open_line(machine, 9600);
    line_set_device(2, machine.device.c_str());
    EXPECT_EQ(line_open(2), NO_LINE);
    EXPECT_STREQ(line_problem_text(), (machine.device + " is in use by this program already.").c_str());
    EXPECT_NE(flock(before, LOCK_EX | LOCK_NB), 0);
    int exclusive = 0;
    ASSERT_EQ(ioctl(before, TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 1);
    line_close(line);
    ASSERT_EQ(ioctl(before, TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 0);
    EXPECT_EQ(flock(before, LOCK_EX | LOCK_NB), 0);
    close(before);
    line_set_device(2, "");
}

TEST(Opening, NothingIsWaitingInANewLine) {
    Machine machine;
    const int before = open(machine.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    machine.send("old\n");
    pollfd file = {before, POLLIN, 0};
    ASSERT_EQ(poll(&file, 1, 5000), 1);
    const LineHandle line = open_line(machine, 9600);
    machine.send("new");
    uint32_t events = 0;
    char got[16];
    ASSERT_EQ(line_wait_event(line, &events), 1);
    const int count = line_read(line, got, sizeof got);
    EXPECT_EQ(std::string(got, static_cast<std::size_t>(count)), "new");
    line_close(line);
    close(before);
}

}  // namespace
}  // namespace hexlane::platform
