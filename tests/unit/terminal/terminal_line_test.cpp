// The terminal's line against a machine at the far end of a pty.

#include "terminal/terminal_line.h"

#include "unit/serial/serial_fixture.h"

namespace hexlane {
namespace {

using platform::Machine;
using platform::wait_for;

class TerminalLineRun : public testing::Test {
protected:
    TerminalLineRun() { platform::line_set_device(1, machine.device.c_str()); }

    bool open() {
        platform::LineSettings settings = platform::plain_settings(115200);
        settings.software_handshake = true;
        return line.open(1, settings);
    }
    bool receives(std::size_t size) {
        return wait_for([&] {
            got += line.take_received();
            return got.size() >= size;
        });
    }

    Machine machine;
    std::atomic<int> told{0};
    TerminalLine line{[this] { told++; }};
    std::string got;
};

// Each is longer than the ring and than one write.
TEST_F(TerminalLineRun, BytesPassBothWaysAtTheSameTimeWhole) {
    std::string out;
    std::string in;
    for (int i = 0; i < 9000; i++) {
        out += static_cast<char>('A' + i % 23);
        in += static_cast<char>('a' + i % 25);
    }
    ASSERT_TRUE(open());
    line.send(out);
    std::thread sender([&] { machine.send(in); });
    EXPECT_TRUE(receives(in.size()));
    sender.join();
    EXPECT_TRUE(machine.take_until(out.size()));
    EXPECT_TRUE(wait_for([&] { return line.bytes_sent() == static_cast<int64_t>(out.size()); }));
    EXPECT_EQ(got, in);
    EXPECT_EQ(machine.got, out);
    EXPECT_EQ(line.bytes_waiting(), 0);
    EXPECT_EQ(line.close(), 0);
}

TEST_F(TerminalLineRun, CloseGivesTheBytesThatTheMachineHasNotTaken) {
    ASSERT_TRUE(open());
    line.send("first");
    ASSERT_TRUE(wait_for([&] { return line.bytes_sent() == 5; }));
    machine.send("\x13!");  // the line is held before the character behind it is seen
    ASSERT_TRUE(receives(1));
    line.send(std::string(2000, 'x'));
    ASSERT_TRUE(wait_for([&] { return line.is_held(); }));
    EXPECT_EQ(line.close(), 2000);
    EXPECT_EQ(machine.take(), "first");
    EXPECT_EQ(line.bytes_sent(), 5);
    EXPECT_EQ(line.bytes_waiting(), 0);
    ASSERT_TRUE(open());
    line.send("again");
    EXPECT_TRUE(wait_for([&] { return machine.take() == "firstagain"; }));
}

TEST_F(TerminalLineRun, WhatHasComeInOutlivesTheClosing) {
    ASSERT_TRUE(open());
    machine.send("READY");
    ASSERT_TRUE(wait_for([&] { return told > 0; }));
    line.close();
    EXPECT_TRUE(receives(1));
    EXPECT_EQ(got, std::string("READY").substr(0, got.size()));
}

TEST_F(TerminalLineRun, AHangUpIsToldAndTheLineCanBeOpenedAfresh) {
    ASSERT_TRUE(open());
    EXPECT_FALSE(line.has_gone());
    machine.hang_up();
    EXPECT_TRUE(wait_for([&] { return line.has_gone(); }));
    EXPECT_TRUE(wait_for([&] { return told > 0; }));
    line.send("lost");
    EXPECT_EQ(line.close(), 4);
    EXPECT_FALSE(open());
    EXPECT_STRNE(platform::line_problem_text(), "");
    Machine other;
    platform::line_set_device(1, other.device.c_str());
    ASSERT_TRUE(open());
    EXPECT_FALSE(line.has_gone());
    other.send("back");
    EXPECT_TRUE(receives(4));
    EXPECT_EQ(got, "back");
    line.close();
}

}  // namespace
}  // namespace hexlane
