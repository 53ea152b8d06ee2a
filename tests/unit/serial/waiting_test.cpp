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
        uint32_t events = 0;
        EXPECT_EQ(line_wait_event(line, &events), 0) << "a closed line";
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
    constexpr uint32_t RATE = 110;  // hours, if it were kept
    Machine machines[2];
    std::string received[2];
    std::vector<std::thread> threads;
    std::string to_machine[2];
    std::string to_program[2];
    LineHandle lines[2];
    for (int i = 0; i < 2; i++) {
        for (std::size_t byte = 0; byte < SIZE; byte++) {
            to_machine[i] += static_cast<char>(byte * 7 + byte / 91 + static_cast<std::size_t>(i));
            to_program[i] += static_cast<char>(byte * 5 + byte / 77 + static_cast<std::size_t>(i));
        }
        lines[i] = open_line(machines[i], RATE, i + 1);
        ASSERT_EQ(line_configure(lines[i], plain_settings(RATE)), 1);  // no handshake: any byte may pass
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
