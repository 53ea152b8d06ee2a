// line_test.cpp: the scripted serial line on its clock: when bytes leave and come, what the machine's stops
// do, which events the worker hears of, and how opens fail. What it shares with a real line is in
// line_conformance.h.

#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <string>

namespace hexlane::platform {
namespace {

constexpr int PORT = 1;
constexpr uint32_t ALL = EV_RXCHAR | EV_RXFLAG | EV_TXEMPTY | EV_CTS;
constexpr char XOFF = 0x13;
constexpr char XON = 0x11;
constexpr int64_t CHAR_US = 1000;  // at 10000 bits a second, 8, N, 1

// What the worker saw, one "TIME:EVENTS" each, in ms and hexadecimal.
std::string heard;
int delay_behind_empty = 0;  // ms that the worker holds itself
int64_t last_result = -1;

int64_t listen(int64_t handle) {
    const auto line = static_cast<LineHandle>(handle);
    uint32_t events = 0;
    while ((last_result = line_wait_event(line, &events)) == 1 && events != 0) {
        char text[32];
        std::snprintf(text, sizeof text, "%s%g:%x", heard.empty() ? "" : " ",
                      static_cast<double>(clock_us()) / 1000, events);
        heard += text;
        if ((events & EV_TXEMPTY) != 0 && delay_behind_empty != 0) {
            heard += " held" + std::to_string(line_delay(line, delay_behind_empty));
        }
    }
    return last_result;
}

std::string taken() {
    const std::string all = heard;
    heard.clear();
    return all;
}

class LineTest : public ::testing::Test {
protected:
    void SetUp() override {
        reset_desktop();
        heard.clear();
        delay_behind_empty = 0;
        for (int port = 1; port <= PORT_COUNT; port++) {
            line_set_device(port, ("/dev/machine" + std::to_string(port)).c_str());
        }
    }

    void open(bool hardware = false) {
        settings = {10000, 8, PARITY_NONE, STOP_BITS_ONE, hardware, !hardware, XON, XOFF, 0x06};
        line = line_open(PORT);
        ASSERT_NE(line, NO_LINE) << line_problem_text();
        ASSERT_EQ(line_configure(line, settings), 1) << line_problem_text();
        line_set_mask(line, ALL);
        worker = thread_start(listen, line, ThreadPriority::HIGHEST);
    }
    void close() {
        line_set_mask(line, 0);
        thread_join(worker);
        line_purge(line);
        line_close(line);
    }
    std::string read() const {
        char bytes[RECEIVE_RING];
        const int count = line_read(line, bytes, sizeof bytes);
        return std::string(bytes, static_cast<std::size_t>(count));
    }

    LineHandle line = NO_LINE;
    LineSettings settings = {};
    ThreadHandle worker = NO_THREAD;
};

TEST_F(LineTest, BytesLeaveAtTheRateAndEmptyComesBehindTheDrain) {
    open();
    set_line_drain(PORT, 2500);
    ASSERT_EQ(line_write(line, "ABCDE", 5), 1);
    EXPECT_EQ(line_write(line, "X", 1), 0);  // one runs
    EXPECT_EQ(take_sent(PORT), "");
    advance_clock(3);
    EXPECT_EQ(take_sent(PORT), "ABC");
    advance_clock(100);
    const std::vector<SentByte> sent = take_sent_bytes(PORT);
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(sent[1].at_us, 5 * CHAR_US);
    EXPECT_EQ(taken(), "7.5:4");
    EXPECT_EQ(line_written(line), 5);
    EXPECT_FALSE(line_held(line));
    EXPECT_EQ(line_write(line, "", 0), 1);  // over at once, but for the drain
    advance_clock(10);
    EXPECT_EQ(taken(), "105.5:4");
    close();
    EXPECT_EQ(last_result, 1);
}

TEST_F(LineTest, CharacterTimeFollowsTheSettings) {
    const struct {
        uint32_t rate;
        uint8_t byte_size, parity, stop_bits;
        int64_t us;
    } cases[] = {{9600, 8, PARITY_NONE, STOP_BITS_ONE, 1041},
                 {1200, 7, PARITY_EVEN, STOP_BITS_TWO, 9166},
                 {300, 7, PARITY_NONE, STOP_BITS_ONE, 30000}};
    open();
    for (const auto& c : cases) {
        settings.baud_rate = c.rate;
        settings.byte_size = c.byte_size;
        settings.parity = c.parity;
        settings.stop_bits = c.stop_bits;
        ASSERT_EQ(line_configure(line, settings), 1);
        const int64_t start = clock_us();
        line_write(line, "A", 1);
        EXPECT_TRUE(advance_until([] { return !line_facts(PORT).writing; }, 1000));
        EXPECT_NEAR(static_cast<double>(clock_us() - start), static_cast<double>(c.us), 1) << c.rate;
    }
    set_line_rate(PORT, 19200);  // what the driver makes of it
    settings.baud_rate = 14400;
    line_configure(line, settings);
    line_settings(line, &settings);
    EXPECT_EQ(settings.baud_rate, 19200U);
    close();
}

TEST_F(LineTest, BytesComeAtTheRateOrAtOnceAndTheEventCharacterIsNoted) {
    open();
    feed_line(PORT, std::string("a\x06", 2), 5000);
    feed_line_at_once(PORT, "bcd", 20000);
    advance_clock(30);
    EXPECT_EQ(taken(), "6:1 7:3 20:1");
    EXPECT_EQ(line_queue_length(line), 5);
    EXPECT_EQ(read(), "a\x06"
                      "bcd");
    close();
}

TEST_F(LineTest, FullRingHoldsTheMachineByHardwareHandshake) {
    open(true);
    feed_line_at_once(PORT, std::string(RECEIVE_RING, 'x') + "ab\x06");
    advance_clock(50);
    EXPECT_EQ(line_queue_length(line), RECEIVE_RING);
    EXPECT_EQ(taken(), "0:1");
    EXPECT_EQ(read(), std::string(RECEIVE_RING, 'x'));
    feed_line(PORT, "c");
    advance_clock(50);
    EXPECT_EQ(taken(), "51:1 52:1 53:3 54:1");  // at the line's rate
    EXPECT_EQ(read(), "ab\x06"
                      "c");
    LineErrors errors = {};
    EXPECT_EQ(line_errors(line, &errors), 1);
    EXPECT_EQ(errors.overrun, 0U);
    close();
}

TEST_F(LineTest, FullRingWithoutHandshakeCountsWhatItDrops) {
    open();
    settings.xon_char = 0;
    ASSERT_EQ(line_configure(line, settings), 1);
    feed_line_at_once(PORT, std::string(RECEIVE_RING, 'x') + "lost\x06");
    advance_clock(1);
    EXPECT_EQ(taken(), "0:1");
    EXPECT_EQ(read(), std::string(RECEIVE_RING, 'x'));
    LineErrors errors = {};
    EXPECT_EQ(line_errors(line, &errors), 1);
    EXPECT_EQ(errors.overrun, 5U);
    close();
}

// The driver obeys XOFF and XON and keeps them from the program, but for the bytes that are in its FIFO.
TEST_F(LineTest, MachineStopsTheLineByXoff) {
    open();
    set_line_fifo(PORT, 3);
    play_machine(PORT, [](uint8_t byte) {
        if (byte == 'D') {
            feed_line_at_once(PORT, std::string(1, XOFF));
            feed_line_at_once(PORT, std::string(1, XON), 50'000);
        }
    });
    line_write(line, "ABCDEFGHIJ", 10);
    advance_clock(13);
    EXPECT_EQ(take_sent(PORT), "ABCDEFG");  // three in flight
    EXPECT_TRUE(line_facts(PORT).stopped);
    EXPECT_EQ(line_facts(PORT).unsent, 3);
    EXPECT_FALSE(line_held(line));
    advance_clock(5);  // more than ten character times without a byte
    EXPECT_TRUE(line_held(line));
    advance_clock(100);
    EXPECT_EQ(take_sent(PORT), "HIJ");
    EXPECT_EQ(taken(), "57:4");
    EXPECT_EQ(line_queue_length(line), 0);
    close();
}

TEST_F(LineTest, ClearToSendStopsAndIsToldWhileAWriteRuns) {
    open(true);
    set_line_fifo(PORT, 1);
    pump_messages();
    set_line_cts(PORT, false);  // nobody hears of it
    set_line_cts(PORT, true);
    feed_line_at_once(PORT, std::string(1, XOFF));  // a byte like others
    line_write(line, "ABCD", 4);
    advance_clock(2);
    set_line_cts(PORT, false);
    advance_clock(20);
    EXPECT_EQ(take_sent(PORT), "ABC");
    EXPECT_TRUE(line_held(line));
    set_line_cts(PORT, true);
    advance_clock(10);
    EXPECT_EQ(take_sent(PORT), "D");
    EXPECT_EQ(taken(), "0:1 2:8 22:8 23:4");
    close();
}

TEST_F(LineTest, DelayHoldsTheWorkerWhileTheLineGoesOn) {
    open();
    delay_behind_empty = 40;
    line_write(line, "A", 1);
    feed_line_at_once(PORT, "x", 10'000);
    advance_clock(30);
    EXPECT_EQ(taken(), "1:4");
    EXPECT_EQ(line_queue_length(line), 1);
    advance_clock(11);
    EXPECT_EQ(taken(), " held1 41:1");
    close();
}

TEST_F(LineTest, OpensFailForReasonsThatAreTold) {
    open();
    line_set_device(2, "/dev/machine1");
    EXPECT_EQ(line_open(2), NO_LINE);  // the same device under another number
    EXPECT_STREQ(line_problem_text(), "/dev/machine1 is in use by this program already.");
    refuse_line_settings(PORT, true);
    EXPECT_EQ(line_configure(line, settings), 0);
    EXPECT_STREQ(line_problem_text(), "/dev/machine1 does not take these settings.");
    close();
    refuse_line(PORT, "Add the user to the group dialout.");
    EXPECT_EQ(line_open(PORT), NO_LINE);
    EXPECT_STREQ(line_problem_text(), "Add the user to the group dialout.");
    EXPECT_EQ(line_open(PORT_COUNT + 1), NO_LINE);
    EXPECT_EQ(line_open(0), NO_LINE);
}

TEST_F(LineTest, BytesForAClosedPortAreLostAndDtrFollowsTheProgram) {
    feed_line_at_once(PORT, "lost");
    advance_clock(1);
    open();
    line_set_dtr(line, true);
    EXPECT_TRUE(line_facts(PORT).dtr);
    advance_clock(1);
    EXPECT_EQ(line_queue_length(line), 0);
    EXPECT_EQ(taken(), "");
    close();
    EXPECT_FALSE(line_facts(PORT).dtr);
    EXPECT_FALSE(line_facts(PORT).open);
}

}  // namespace
}  // namespace hexlane::platform
