// line_conformance.h: what every serial line of platform/serial.h does, as tests that run over a pty and on
// the scripted line alike. A program of tests gives the machine's end, and makes one for each test by
// make_line_station.
#pragma once

#include "platform/serial.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace hexlane::platform {

// The machine on COM1.
struct LineStation {
    virtual ~LineStation() = default;
    virtual void feed(const std::string& bytes) = 0;
    virtual const std::string& sent() = 0;  // all that has come to the machine so far
    virtual void hang_up() = 0;
    virtual bool
    wait_for(const std::function<bool()>& condition) = 0;  // lets time pass; a few seconds at most
    virtual void let_pass(int ms) = 0;
};
std::unique_ptr<LineStation> make_line_station();

constexpr uint32_t EVENTS = EV_RXCHAR | EV_RXFLAG | EV_TXEMPTY;
constexpr char TEST_XON = 0x11;
constexpr char TEST_XOFF = 0x13;

// What the worker has seen.
inline std::atomic<uint32_t> events_seen{0};
inline std::atomic<int> wait_result{-1};  // of the wait that ended it
inline std::atomic<int> delay_result{-1};
inline std::atomic<int> worker_delay_ms{0};  // that the worker starts with

inline int64_t watch_line(int64_t handle) {
    const auto line = static_cast<LineHandle>(handle);
    if (worker_delay_ms != 0) {
        delay_result = line_delay(line, worker_delay_ms);
    }
    uint32_t events = 0;
    int result = 0;
    while ((result = line_wait_event(line, &events)) == 1 && events != 0) {
        events_seen |= events;
    }
    wait_result = result;
    return 0;
}

class LineConformance : public ::testing::Test {
protected:
    void SetUp() override {
        station = make_line_station();
        events_seen = 0;
        wait_result = delay_result = -1;
        worker_delay_ms = 0;
    }
    void TearDown() override {
        if (worker != NO_THREAD) {
            end_worker();
        }
        line_close(line);
        line_close(line);  // a handle that is gone means nothing
    }

    void open(bool handshake = false) {
        settings.software_handshake = handshake;
        line = line_open(1);
        ASSERT_NE(line, NO_LINE) << line_problem_text();
        ASSERT_EQ(line_configure(line, settings), 1) << line_problem_text();
        line_set_mask(line, EVENTS);
    }
    void start_worker() { worker = thread_start(watch_line, line, ThreadPriority::HIGHEST); }
    void end_worker() {
        line_set_mask(line, 0);
        thread_join(worker);
        worker = NO_THREAD;
    }
    bool sees(uint32_t event) {
        return station->wait_for([event] { return (events_seen & event) != 0; });
    }
    bool has_queued(int count) {
        return station->wait_for([this, count] { return line_queue_length(line) >= count; });
    }
    std::string read_all() const {
        char bytes[RECEIVE_RING];
        const int count = line_read(line, bytes, sizeof bytes);
        return std::string(bytes, static_cast<std::size_t>(count));
    }

    std::unique_ptr<LineStation> station;
    LineSettings settings = {19200, 8, PARITY_NONE, STOP_BITS_ONE, false, false, TEST_XON, TEST_XOFF, 0x06};
    LineHandle line = NO_LINE;
    ThreadHandle worker = NO_THREAD;
};

TEST_F(LineConformance, BytesComeInWithTheirEvents) {
    open();
    start_worker();
    station->feed(std::string("a\0\xFF", 3));
    EXPECT_TRUE(has_queued(3));
    EXPECT_TRUE(sees(EV_RXCHAR));
    EXPECT_EQ(events_seen, EV_RXCHAR);
    station->feed("\x06");
    EXPECT_TRUE(sees(EV_RXFLAG));
    EXPECT_TRUE(has_queued(4));
    char two[2];
    EXPECT_EQ(line_read(line, two, 2), 2);
    EXPECT_EQ(read_all(), "\xFF\x06");
    EXPECT_EQ(read_all(), "");
}

TEST_F(LineConformance, FullRingStopsTheMachineUntilItHasRoom) {
    open(true);
    start_worker();
    station->feed(std::string(RECEIVE_RING, 'x') + "more\x06");
    EXPECT_TRUE(has_queued(RECEIVE_RING));
    station->let_pass(100);
    EXPECT_EQ(events_seen, EV_RXCHAR);
    EXPECT_EQ(line_queue_length(line), RECEIVE_RING);
    EXPECT_EQ(read_all(), std::string(RECEIVE_RING, 'x'));
    EXPECT_TRUE(has_queued(5));
    EXPECT_TRUE(sees(EV_RXFLAG));
    EXPECT_EQ(read_all(), "more\x06");
}

TEST_F(LineConformance, WriteGoesOutWholeAndIsToldOnce) {
    open();
    start_worker();
    const std::string bytes(200, 'w');
    ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
    EXPECT_EQ(line_write(line, "X", 1), 0);
    EXPECT_TRUE(sees(EV_TXEMPTY));
    EXPECT_EQ(line_written(line), 200);
    EXPECT_TRUE(station->wait_for([&] { return station->sent() == bytes; }));
    EXPECT_FALSE(line_held(line));
    events_seen = 0;
    station->let_pass(50);
    EXPECT_EQ(events_seen, 0U);
}

TEST_F(LineConformance, HandshakeIsTheDriversAndHoldsTheLine) {
    open(true);
    start_worker();
    const std::string bytes(2000, 'w');
    ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
    EXPECT_TRUE(station->wait_for([&] { return station->sent().size() >= 20; }));
    station->feed(std::string(1, TEST_XOFF));
    EXPECT_TRUE(station->wait_for([&] { return line_held(line); }));
    const std::size_t before = station->sent().size();
    EXPECT_LT(before, bytes.size());
    station->let_pass(50);
    EXPECT_EQ(station->sent().size(), before);
    station->feed(std::string(1, TEST_XON));
    EXPECT_TRUE(sees(EV_TXEMPTY));
    EXPECT_TRUE(station->wait_for([&] { return station->sent() == bytes; }));
    EXPECT_EQ(line_queue_length(line), 0);
    EXPECT_EQ(events_seen, EV_TXEMPTY);

    settings.xon_char = 0;  // a send stands by: the characters are bytes like others
    ASSERT_EQ(line_configure(line, settings), 1);
    station->feed({TEST_XOFF, TEST_XON});
    EXPECT_TRUE(has_queued(2));
}

TEST_F(LineConformance, MaskChoosesEventsAndNoneEndsTheWait) {
    open();
    line_set_mask(line, EV_RXFLAG);
    start_worker();
    station->feed("a");
    EXPECT_TRUE(has_queued(1));
    station->let_pass(20);
    EXPECT_EQ(events_seen, 0U);
    line_set_mask(line, EVENTS);  // what came before is told now
    EXPECT_TRUE(sees(EV_RXCHAR));
    end_worker();
    EXPECT_EQ(wait_result, 1);
    start_worker();  // with mask 0 each wait ends at once
    EXPECT_TRUE(station->wait_for([] { return wait_result == 1; }));
}

TEST_F(LineConformance, DelayLastsOrEndsWithMaskNone) {
    open();
    worker_delay_ms = 30;
    start_worker();
    EXPECT_TRUE(station->wait_for([] { return delay_result != -1; }));
    EXPECT_EQ(delay_result, 1);
    end_worker();
    line_set_mask(line, EVENTS);
    worker_delay_ms = 60'000;
    start_worker();
    station->let_pass(20);
    end_worker();
    EXPECT_EQ(delay_result, 0);
}

TEST_F(LineConformance, PurgeDropsTheWriteAndWhatHasCome) {
    open();
    start_worker();
    std::string bytes(5000, 'w');
    ASSERT_EQ(line_write(line, bytes.data(), static_cast<int>(bytes.size())), 1);
    station->feed("abc");
    EXPECT_TRUE(has_queued(3));
    line_purge(line);
    std::fill(bytes.begin(), bytes.end(), '!');  // the buffer is ours again
    EXPECT_EQ(line_queue_length(line), 0);
    station->let_pass(100);
    EXPECT_EQ(events_seen & EV_TXEMPTY, 0U);
    EXPECT_EQ(line_write(line, "X", 1), 1);
    EXPECT_TRUE(sees(EV_TXEMPTY));
    EXPECT_EQ(line_written(line), 1);
    EXPECT_TRUE(station->wait_for([this] { return station->sent().ends_with('X'); }));
    EXPECT_LT(station->sent().size(), bytes.size());
    EXPECT_EQ(station->sent().find('!'), std::string::npos);

    line_set_mask(line, EV_RXFLAG);
    events_seen = 0;
    station->feed("d");
    EXPECT_TRUE(has_queued(1));
    line_purge(line);  // the event that nobody has heard of goes too
    line_set_mask(line, EVENTS);
    station->let_pass(20);
    EXPECT_EQ(events_seen, 0U);
}

TEST_F(LineConformance, PortOpensOnceAndClosedHandlesDoNothing) {
    open();
    EXPECT_EQ(line_open(1), NO_LINE);
    EXPECT_NE(std::string(line_problem_text()).find("in use by this program"), std::string::npos);
    line_close(line);
    EXPECT_EQ(line_configure(line, settings), 0);
    EXPECT_EQ(line_settings(line, &settings), 0);
    EXPECT_EQ(line_write(line, "X", 1), 0);
    EXPECT_EQ(line_queue_length(line), 0);
    line_set_mask(line, EVENTS);
    line_purge(line);
    open();  // and the port is free again
    EXPECT_EQ(line_settings(line, &settings), 1);
    EXPECT_EQ(settings.baud_rate, 19200U);
}

TEST_F(LineConformance, HungUpLineIsToldOnceAndOpensNoMore) {
    open();
    start_worker();
    station->hang_up();
    EXPECT_TRUE(sees(EV_GONE));
    EXPECT_TRUE(station->wait_for([] { return wait_result == 0; }));
    EXPECT_EQ(line_write(line, "X", 1), 0);
    end_worker();
    line_close(line);
    EXPECT_EQ(line_open(1), NO_LINE);
    EXPECT_STRNE(line_problem_text(), "");
}

}  // namespace hexlane::platform
