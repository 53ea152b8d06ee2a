// Writes: pacing, EV_TXEMPTY, a stop by the machine, purging, and drivers that tell more than a pty does.

#include "platform/posix/serial_drain.h"
#include "platform/posix/serial_driver.h"
#include "platform/threads.h"
#include "serial_fixture.h"

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace hexlane::platform {
namespace {

std::string pattern(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; i++) {
        bytes += static_cast<char>('A' + i % 26);
    }
    return bytes;
}

TEST(Sending, BytesLeaveAtTheLinesRateAndEmptyComesWhenAllHaveLeft) {
    const struct {
        uint32_t rate;
        uint8_t byte_size, parity, stop_bits;
        int bits;  // of a character
    } rows[] = {{9600, 8, PARITY_NONE, STOP_BITS_ONE, 10},
                {19200, 7, PARITY_EVEN, STOP_BITS_TWO, 11},
                {14400, 8, PARITY_ODD, STOP_BITS_TWO, 12}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rate);
        Machine machine;
        const LineHandle line = open_line(machine, row.rate);
        LineSettings settings = plain_settings(row.rate);
        settings.byte_size = row.byte_size;
        settings.parity = row.parity;
        settings.stop_bits = row.stop_bits;
        ASSERT_EQ(line_configure(line, settings), 1) << line_problem_text();
        const std::string bytes = pattern(150);
        const double char_ms = 1000.0 * row.bits / row.rate;

        const auto start = Clock::now();
        Worker worker(line);
        ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
        EXPECT_EQ(line_write(line, bytes.data(), 1), 0) << "a second write while one runs";
        while (!worker.saw(EV_TXEMPTY) && ms_since(start) < 5000) {
            const auto arrived = static_cast<double>(machine.take().size());
            const double ahead = arrived - ms_since(start) / char_ms;
            EXPECT_LE(ahead, std::max(20 / char_ms, 8.0) + 1) << "too much in flight";
            std::this_thread::sleep_for(1ms);
        }
        const double took = ms_since(start);
        EXPECT_GE(took, 150 * char_ms);
        EXPECT_LE(took, 150 * char_ms + 1000);
        EXPECT_EQ(machine.take(), bytes);
        EXPECT_EQ(line_written(line), 150);
        EXPECT_FALSE(line_held(line));
        line_set_mask(line, 0);
        wait_for([&] { return worker.last_result == 1; });
        line_close(line);
    }
}

TEST(Sending, AStopOfTheMachineIsObeyedAndCostsNothing) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    const std::string bytes = pattern(200);
    {
        Worker worker(line);
        ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
        ASSERT_TRUE(machine.take_until(60));
        EXPECT_FALSE(line_held(line));
        machine.send("\x13");
        const std::size_t at_stop = machine.take().size();
        ASSERT_TRUE(wait_for([&] { return line_held(line); }));
        EXPECT_LE(machine.take().size(), at_stop + 64);
        expect_asleep(worker.id);
        EXPECT_LE(machine.take().size(), at_stop + 64);
        EXPECT_TRUE(line_held(line));
        EXPECT_FALSE(worker.saw(EV_TXEMPTY));

        machine.send("\x11");
        EXPECT_TRUE(machine.take_until(bytes.size()));
        EXPECT_TRUE(worker.waits_for(EV_TXEMPTY));
        EXPECT_FALSE(worker.saw(EV_RXCHAR)) << "XON or XOFF has reached the program";
        expect_asleep(worker.id);  // an idle line costs nothing either
    }
    EXPECT_EQ(machine.got, bytes);
    line_close(line);
}

TEST(Sending, WhatWasToldAsSentArrivesThoughTheMachineStopsTheNextWrite) {
    const PacingOff off;
    for (const bool purged : {false, true}) {
        SCOPED_TRACE(purged);
        Machine machine;
        const LineHandle line = open_line(machine, 9600);
        const std::string bytes = pattern(8000);  // more than the far side takes in ahead of a read
        {
            Worker worker(line);
            ASSERT_EQ(line_write(line, bytes.data(), 8000), 1);
            ASSERT_TRUE(worker.waits_for(EV_TXEMPTY));
            machine.send("\x13");
            ASSERT_EQ(line_write(line, "next", 4), 1);
            ASSERT_TRUE(wait_for([&] { return line_held(line); }));
        }
        if (purged) {
            line_purge(line);
        }
        line_close(line);
        EXPECT_EQ(machine.take().substr(0, 8000), bytes);
    }
}

// ---- A driver with a queue, a shift register and modem lines, moved by the test ---------------------------

std::atomic<int> driver_queue{0};
std::atomic<int> most_queued{0};
std::atomic<int> register_empty{1};
std::atomic<int> cts_line{1};
std::atomic<int> cts_looks{0};

ssize_t queue_write(int, const void*, std::size_t count) {
    driver_queue += static_cast<int>(count);
    most_queued = std::max(most_queued.load(), driver_queue.load());
    return static_cast<ssize_t>(count);
}

class ToldQueue : public testing::Test {
protected:
    ToldQueue() {
        driver_queue = 0;
        most_queued = 0;
        register_empty = 1;
        cts_line = 1;
        cts_looks = 0;
        line_driver = {queue_write, [](int) { return driver_queue.load(); },
                       [](int) { return register_empty.load(); },
                       [](int) {
                           cts_looks++;
                           return cts_line.load();
                       },
                       TTY_DRIVER.error_counts};
        line = open_line(machine, 9600);
    }
    ~ToldQueue() override {
        line_close(line);
        line_driver = TTY_DRIVER;
    }
    void use_hardware_handshake() {
        LineSettings settings = plain_settings(9600);
        settings.hardware_handshake = true;
        ASSERT_EQ(line_configure(line, settings), 1);
    }
    // What a driver does when it goes on: it signals room. A pty does so at an XON.
    void signal_room() { machine.send("\x13\x11"); }

    Machine machine;
    LineHandle line = NO_LINE;
    std::string bytes = pattern(100);
};

TEST_F(ToldQueue, EmptyWaitsForTheQueueAndTheShiftRegister) {
    Worker worker(line);
    register_empty = 0;
    ASSERT_EQ(line_write(line, bytes.data(), 10), 1);
    ASSERT_TRUE(wait_for([] { return driver_queue == 10; }));
    ASSERT_TRUE(wait_for([&] { return line_held(line); }));
    EXPECT_FALSE(worker.saw(EV_TXEMPTY));
    driver_queue = 0;
    signal_room();
    ASSERT_TRUE(wait_for([&] { return !line_held(line); }));
    std::this_thread::sleep_for(30ms);  // long behind the rate: only the register is still busy
    EXPECT_FALSE(worker.saw(EV_TXEMPTY));
    register_empty = 1;
    EXPECT_TRUE(worker.waits_for(EV_TXEMPTY));
}

// As a worker: with all signals blocked.
TEST(Sending, AWaitForTheChipOfAnAdapterEndsInTime) {
    static int chip[2];
    static int (*const take_byte)(int) = [](int file) {
        char byte;
        return static_cast<int>(::read(file, &byte, 1));
    };
    ASSERT_EQ(pipe(chip), 0);
    const auto asks = [](int64_t) {
        constexpr int64_t MINUTE = 60'000'000'000;
        EXPECT_EQ(end_in_time(take_byte, chip[0], 5'000'000), 0) << "the machine holds the line";
        EXPECT_EQ(::write(chip[1], "x", 1), 1);
        EXPECT_EQ(end_in_time(take_byte, chip[0], MINUTE), 1);
        EXPECT_EQ(end_in_time(take_byte, -1, MINUTE), 1) << "what can't be asked holds nothing";
        return int64_t{0};
    };
    thread_join(thread_start(asks, 0, ThreadPriority::NORMAL));
    close(chip[0]);
    close(chip[1]);
}

TEST_F(ToldQueue, AHeldQueueIsNotFilledUpAndCostsNothing) {
    Worker worker(line);
    ASSERT_EQ(line_write(line, bytes.data(), 100), 1);
    ASSERT_TRUE(wait_for([&] { return line_held(line); }));
    expect_asleep(worker.id);
    EXPECT_LE(most_queued, 20);
    EXPECT_EQ(line_written(line), 0) << "what waits with the driver would be dropped by a close";
    driver_queue -= 3;
    EXPECT_EQ(line_written(line), 3);
    // It goes on: a few bytes at a time leave the driver.
    EXPECT_TRUE(wait_for([&] {
        driver_queue = std::max(0, driver_queue - 4);
        signal_room();
        return worker.saw(EV_TXEMPTY);
    }));
    EXPECT_EQ(line_written(line), 100);
    EXPECT_LE(most_queued, 20);
    EXPECT_EQ(cts_looks, 0) << "software handshake has no use for modem lines";
}

TEST_F(ToldQueue, ClearToSendIsLookedAtOnlyWhileAWriteRuns) {
    use_hardware_handshake();
    Worker worker(line);
    machine.send("x");
    ASSERT_TRUE(worker.waits_for(EV_RXCHAR));
    EXPECT_EQ(cts_looks, 0);
    ASSERT_EQ(line_write(line, bytes.data(), 10), 1);
    ASSERT_TRUE(wait_for([] { return cts_looks > 0; }));
    EXPECT_FALSE(worker.saw(EV_CTS)) << "no change yet";
    cts_line = 0;
    EXPECT_TRUE(worker.waits_for(EV_CTS));
    driver_queue = 0;
    EXPECT_TRUE(worker.waits_for(EV_TXEMPTY));
    expect_asleep(worker.id);
}

TEST_F(ToldQueue, ALineWithoutModemLinesIsAskedOnce) {
    use_hardware_handshake();
    cts_line = -1;
    Worker worker(line);
    ASSERT_EQ(line_write(line, bytes.data(), 10), 1);
    ASSERT_TRUE(wait_for([&] { return line_held(line); }));
    expect_asleep(worker.id);
    EXPECT_EQ(cts_looks, 1);
}

}  // namespace
}  // namespace hexlane::platform
