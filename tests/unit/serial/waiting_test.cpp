// What comes in, what ends a wait, delays, and two lines at work at once.

#include "serial_fixture.h"

#include <algorithm>
#include <ctime>
#include <vector>

namespace hexlane::platform {
namespace {

std::string read_ring(LineHandle line, int size) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    bytes.resize(static_cast<std::size_t>(line_read(line, bytes.data(), size)));
    return bytes;
}

// Waits until the ring holds `count` bytes. Gives the events seen.
uint32_t wait_for_bytes(LineHandle line, int count) {
    uint32_t seen = 0;
    while (line_queue_length(line) < count) {
        uint32_t events = 0;
        if (line_wait_event(line, &events) != 1) {
            ADD_FAILURE() << "the line has failed";
            return seen;
        }
        seen |= events;
    }
    return seen;
}

TEST(Receiving, AFullRingKeepsItsBytesAndTakesTheRestWhenItHasRoom) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    std::string bytes;
    for (int i = 0; i < RECEIVE_RING; i++) {
        bytes += static_cast<char>('0' + i % 64);
    }
    machine.send(bytes.substr(0, 3000));
    EXPECT_EQ(wait_for_bytes(line, 3000), EV_RXCHAR);
    machine.send(bytes.substr(3000));
    EXPECT_EQ(wait_for_bytes(line, RECEIVE_RING), EV_RXCHAR);
    machine.send("more\x06");

    // Around the ring's end.
    EXPECT_EQ(read_ring(line, 4000), bytes.substr(0, 4000));
    EXPECT_EQ(wait_for_bytes(line, 96 + 5), EV_RXCHAR | EV_RXFLAG);
    EXPECT_EQ(read_ring(line, 5000), bytes.substr(4000) + "more\x06");
    EXPECT_EQ(line_read(line, bytes.data(), 10), 0);
    line_close(line);
}

TEST(Receiving, AMachineIsStoppedWhileNobodyReadsAndNothingIsLost) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    std::string sent;
    std::string got;
    {
        Worker worker(line);
        pollfd room = {machine.pty, POLLOUT, 0};
        while (sent.size() < 1'000'000 && poll(&room, 1, 300) > 0) {
            const std::string piece(1000, static_cast<char>('A' + sent.size() / 1000 % 26));
            const ssize_t put = ::write(machine.pty, piece.data(), piece.size());
            sent.append(piece, 0, static_cast<std::size_t>(std::max<ssize_t>(put, 0)));
        }
        EXPECT_LT(sent.size(), 1'000'000U);
        EXPECT_EQ(line_queue_length(line), RECEIVE_RING);
        expect_asleep(worker.id);
        wait_for([&] {
            got += read_ring(line, 1500);
            return got.size() >= sent.size();
        });
    }
    EXPECT_TRUE(got == sent);
    line_close(line);
}

TEST(Receiving, EveryByteValuePassesUnchanged) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    ASSERT_EQ(line_configure(line, plain_settings(9600)), 1);
    std::string bytes;
    for (int i = 0; i < 256; i++) {
        bytes += static_cast<char>(i);
    }
    machine.send(bytes);
    wait_for_bytes(line, 256);
    EXPECT_EQ(read_ring(line, 300), bytes);
    line_set_mask(line, EV_TXEMPTY);
    ASSERT_EQ(line_write(line, bytes.data(), 256), 1);
    uint32_t events = 0;
    ASSERT_EQ(line_wait_event(line, &events), 1);
    EXPECT_EQ(machine.take(), bytes);
    line_close(line);
}

TEST(Waiting, OnlyMaskedEventsEndAWait) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    line_set_mask(line, EV_RXFLAG);
    machine.send("abc");
    {
        Worker worker(line);
        wait_for([&] { return line_queue_length(line) == 3; });
        EXPECT_EQ(worker.seen, 0u);
        machine.send("\x06");
        EXPECT_TRUE(worker.waits_for(EV_RXFLAG));
        EXPECT_EQ(worker.seen, EV_RXFLAG);
    }
    line_close(line);
}

TEST(Waiting, MaskZeroEndsTheWaitThatGoesOnAndEachLaterOne) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    {
        Worker worker(line);
        wait_for([&] { return worker.id != 0; });
        line_set_mask(line, 0);
        wait_for([&] { return worker.last_result == 1; });
    }
    machine.send("x");
    uint32_t events = 99;
    EXPECT_EQ(line_wait_event(line, &events), 1);
    EXPECT_EQ(events, 0u);
    line_set_mask(line, EV_RXCHAR);
    EXPECT_EQ(line_wait_event(line, &events), 1);
    EXPECT_EQ(events, EV_RXCHAR);
    line_close(line);
    EXPECT_EQ(line_wait_event(line, &events), 0) << "a closed line";
}

TEST(Waiting, ALineClosesAndOpensAgainWhileTheMachineHoldsIt) {
    Machine machine;
    const int other_side =
        open(machine.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);  // as a simulator does
    const std::string bytes(100, 'x');
    for (int round = 0; round < 3; round++) {
        const LineHandle line = open_line(machine, 9600);
        ASSERT_NE(line, NO_LINE);
        {
            Worker worker(line);
            machine.send("\x13");
            ASSERT_EQ(line_write(line, bytes.data(), 100), 1);
            wait_for([&] { return line_held(line); });
        }
        line_purge(line);
        const auto start = Clock::now();
        line_close(line);
        EXPECT_LT(ms_since(start), 1000);
    }
    close(other_side);
}

TEST(Waiting, AHangUpIsToldOnceWithinASecondWhateverTheLineDoes) {
    for (const std::string state : {"idle", "sending", "held", "delay", "full"}) {
        SCOPED_TRACE(state);
        Machine machine;
        const LineHandle line = open_line(machine, 9600);
        const std::string bytes(4000, 'x');
        std::atomic<double> delay_ended{-1};
        const auto start = Clock::now();
        std::thread delay;
        if (state == "delay") {
            delay = std::thread([&] {
                EXPECT_EQ(line_delay(line, 20'000), 0);
                delay_ended = ms_since(start);
            });
        } else if (state == "full") {
            machine.send(std::string(5000, 'x'));
        } else if (state != "idle") {
            machine.send(state == "held" ? "\x13" : "");
            ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
        }
        {
            std::unique_ptr<Worker> worker;
            if (state != "delay") {
                worker = std::make_unique<Worker>(line);
                wait_for([&] {
                    return worker->id != 0 && (state != "held" || line_held(line)) &&
                           (state != "full" || line_queue_length(line) == RECEIVE_RING);
                });
            }
            const auto closed = Clock::now();
            machine.hang_up();
            if (state == "delay") {
                delay.join();
                worker = std::make_unique<Worker>(line);
            }
            worker->waits_for(EV_GONE);
            EXPECT_LT(ms_since(closed), 1000);
            wait_for([&] { return worker->last_result == 0; });
        }
        uint32_t events = 0;
        line_set_mask(line, ALL_EVENTS);
        EXPECT_EQ(line_wait_event(line, &events), 0);
        EXPECT_EQ(events, 0u);
        EXPECT_EQ(line_write(line, "x", 1), 0);
        EXPECT_FALSE(line_held(line));
        line_close(line);
    }
}

TEST(Waiting, TwoIdleLinesSleep) {
    Machine machines[2];
    const LineHandle lines[] = {open_line(machines[0], 9600, 1), open_line(machines[1], 115200, 2)};
    {
        Worker first(lines[0]);
        Worker second(lines[1]);
        wait_for([&] { return first.id != 0 && second.id != 0; });
        expect_asleep(first.id);
        expect_asleep(second.id);
    }
    line_close(lines[0]);
    line_close(lines[1]);
}

TEST(Delay, HoldsForItsTimeWhileBytesAreHandedOn) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    double least_late = 1000;
    for (int i = 0; i < 20; i++) {
        const int ms = 1 + i % 5;
        const auto start = Clock::now();
        ASSERT_EQ(line_delay(line, ms), 1);
        const double late = ms_since(start) - ms;
        EXPECT_GE(late, 0);
        EXPECT_LT(late, 100) << "even on a busy computer";
        least_late = std::min(least_late, late);
    }
    EXPECT_LT(least_late, 1);

    const std::string bytes(40, 'x');
    ASSERT_EQ(line_write(line, bytes.data(), 40), 1);
    machine.send("\x06");
    EXPECT_EQ(line_delay(line, 80), 1);
    EXPECT_EQ(line_written(line), 40);
    uint32_t events = 0;
    EXPECT_EQ(line_wait_event(line, &events), 1);
    EXPECT_EQ(events, EV_RXCHAR | EV_RXFLAG | EV_TXEMPTY) << "what happened meanwhile is told afterwards";
    line_close(line);
}

TEST(Delay, EndsAtOnceWithMaskZero) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    std::atomic<bool> ended{false};
    std::thread worker([&] {
        EXPECT_EQ(line_delay(line, 60'000), 0);
        ended = true;
    });
    line_set_mask(line, 0);
    EXPECT_TRUE(wait_for([&] { return ended.load(); }));
    worker.join();
    line_close(line);
}

// One side of a transfer: sends all of `out` in pieces and takes what comes, until both are complete.
void transfer(LineHandle line, const std::string& out, std::string* in, std::size_t in_size) {
    std::size_t sent = 0;
    std::size_t piece = 0;
    bool leaving = false;
    while (sent < out.size() || in->size() < in_size) {
        if (!leaving && sent < out.size()) {
            piece = std::min<std::size_t>(5120, out.size() - sent);
            ASSERT_EQ(line_write(line, out.data() + sent, static_cast<int>(piece)), 1);
            leaving = true;
        }
        uint32_t events = 0;
        ASSERT_EQ(line_wait_event(line, &events), 1);
        if ((events & EV_RXCHAR) != 0) {
            *in += read_ring(line, RECEIVE_RING);
        }
        if ((events & EV_TXEMPTY) != 0) {
            ASSERT_EQ(line_written(line), static_cast<int>(piece));
            sent += piece;
            leaving = false;
        }
    }
}

TEST(Waiting, TwoLinesCarryBothDirectionsAtOnce) {
    const PacingOff off;
    constexpr std::size_t SIZE = 150'000;
    Machine machines[2];
    std::string received[2];
    std::vector<std::thread> threads;
    std::string to_machine[2];
    std::string to_program[2];
    LineHandle lines[2];
    for (int i = 0; i < 2; i++) {
        for (std::size_t byte = 0; byte < SIZE; byte++) {
            to_machine[i] +=
                static_cast<char>(' ' + (byte * 7 + byte / 91 + static_cast<std::size_t>(i)) % 90);
            to_program[i] +=
                static_cast<char>(' ' + (byte * 5 + byte / 77 + static_cast<std::size_t>(i)) % 90);
        }
        lines[i] = open_line(machines[i], 115200, i + 1);
        threads.emplace_back([&, i] { transfer(lines[i], to_machine[i], &received[i], SIZE); });
        threads.emplace_back([&, i] {
            for (std::size_t done = 0; done < SIZE || machines[i].take().size() < SIZE;) {
                const std::size_t piece = std::min<std::size_t>(2000, SIZE - done);
                ASSERT_TRUE(machines[i].send(to_program[i].substr(done, piece)));
                done += piece;
                machines[i].take();
            }
        });
    }
    // The main thread looks on, as a screen does.
    wait_for([&] { return line_held(lines[0]) + line_queue_length(lines[1]) + line_written(lines[0]) > 0; });
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < 2; i++) {
        EXPECT_TRUE(machines[i].got == to_machine[i]);
        EXPECT_TRUE(received[i] == to_program[i]);
        line_close(lines[i]);
    }
}

}  // namespace
}  // namespace hexlane::platform
