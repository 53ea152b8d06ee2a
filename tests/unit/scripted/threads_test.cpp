// threads_test.cpp: workers of the scripted desktop: when they run, in which order, and how their messages
// are served.

#include "platform/desktop.h"
#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <string>

namespace hexlane::platform {
namespace {

std::string record;  // of everybody: only one thread runs at a time
WindowHandle window = NO_WINDOW;
LockHandle lock = NO_LOCK;

constexpr uint32_t POSTED = 0x8001;
constexpr uint32_t SENT = 0x8002;
constexpr uint32_t ASKS = 0x8003;

void note(const std::string& what) {
    record += record.empty() ? what : " " + what;
}

int64_t window_proc(WindowHandle, uint32_t message, int64_t first, int64_t second) {
    if (message == POSTED) {
        note("posted" + std::to_string(first));
    } else if (message == SENT) {
        const LockGuard guard(lock);
        note("sent" + std::to_string(first));
        return first + second;
    } else if (message == ASKS) {
        return message_box("Wait?", "Test", BoxIcon::NONE, BUTTONS_YES_NO);
    } else if (message == WM_TIMER) {
        note("timer");
    }
    return 0;
}

class ThreadsTest : public ::testing::Test {
protected:
    void SetUp() override {
        reset_desktop();
        record.clear();
        window = make_test_window(window_proc);
        lock = lock_make();
    }
    void TearDown() override {
        lock_free(lock);
        EXPECT_EQ(unused_answers(), 0);
    }
};

ThreadHandle start(int64_t (*run)(int64_t), int64_t argument = 0) {
    const ThreadHandle thread = thread_start(run, argument, ThreadPriority::HIGHEST);
    EXPECT_NE(thread, NO_THREAD);
    return thread;
}

TEST_F(ThreadsTest, WorkersRunWhenTheProgramWaitsAndInTheOrderOfStarting) {
    const auto work = [](int64_t number) {
        note("worker" + std::to_string(number));
        post_message(window, POSTED, number, 0);
        return int64_t{0};
    };
    const ThreadHandle first = start(work, 1);
    const ThreadHandle second = start(work, 2);
    note("main");
    pump_messages();
    EXPECT_EQ(record, "main worker1 worker2 posted1 posted2");
    thread_join(first);
    thread_join(second);
    thread_join(second);  // a handle that is free means nothing
}

TEST_F(ThreadsTest, SentMessageIsAnsweredWhileTheWorkerWaits) {
    const auto work = [](int64_t number) {
        {
            const LockGuard guard(lock);
            note("asks" + std::to_string(number));
        }
        const int64_t answer = send_message(window, SENT, number, 40);
        note("got" + std::to_string(answer));
        return int64_t{0};
    };
    const ThreadHandle threads[] = {start(work, 1), start(work, 2)};
    post_message(window, POSTED, 9, 0);
    pump_messages();
    EXPECT_EQ(record, "asks1 asks2 sent1 got41 sent2 got42 posted9");
    for (const ThreadHandle thread : threads) {
        thread_join(thread);
    }
}

// Sent messages are served under a join, posted ones and timers are not.
TEST_F(ThreadsTest, JoinServesWhatWorkersSend) {
    start_timer(window, 1, 10);
    post_message(window, POSTED, 1, 0);
    const ThreadHandle thread = start([](int64_t) {
        note("got" + std::to_string(send_message(window, SENT, 1, 1)));
        return int64_t{0};
    });
    thread_join(thread);
    note("joined");
    EXPECT_EQ(record, "sent1 got2 joined");
    pump_messages();
    EXPECT_EQ(record, "sent1 got2 joined posted1");
}

// A box in a handler lets other workers go on, and answers the sender when it closes.
TEST_F(ThreadsTest, BoxInASentMessageHoldsItsSenderAlone) {
    answer_box("No");
    const ThreadHandle asker = start([](int64_t) {
        note("answer" + std::to_string(send_message(window, ASKS, 0, 0)));
        return int64_t{0};
    });
    const ThreadHandle sender = start([](int64_t) {
        note("got" + std::to_string(send_message(window, SENT, 2, 3)));
        return int64_t{0};
    });
    pump_messages();
    EXPECT_EQ(record, "sent2 got5 answer1");
    thread_join(asker);
    thread_join(sender);
}

TEST_F(ThreadsTest, WorkerGoesOnBeforeAnythingElseFallsDue) {
    const LineHandle line = line_open(1);
    line_set_mask(line, EV_RXCHAR);
    const ThreadHandle thread = start(
        [](int64_t handle) {
            for (uint32_t events = 1; events != 0;) {
                line_wait_event(static_cast<LineHandle>(handle), &events);
                note(events != 0 ? "byte" : "ended");
            }
            return int64_t{0};
        },
        line);
    start_timer(window, 1, 100);
    feed_line_at_once(1, "A", 100'000);  // the timer is older
    feed_line_at_once(1, "B", 150'000);
    advance_clock(200);
    EXPECT_EQ(record, "byte timer byte timer");  // the line was opened before the timer was made
    line_set_mask(line, 0);
    EXPECT_EQ(record, "byte timer byte timer");
    thread_join(thread);
    EXPECT_EQ(record, "byte timer byte timer ended");
    line_close(line);
}

void take_twice() {
    lock_take(lock);
    lock_take(lock);
}

void join_for_ever() {
    const LineHandle line = line_open(1);
    line_set_mask(line, EV_RXCHAR);
    thread_join(start(
        [](int64_t handle) {
            uint32_t events = 0;
            return static_cast<int64_t>(line_wait_event(static_cast<LineHandle>(handle), &events));
        },
        line));
}

void wait_on_main_thread() {
    uint32_t events = 0;
    line_wait_event(0, &events);
}

TEST_F(ThreadsTest, WhatWouldHangForEverEndsTheTest) {
    EXPECT_DEATH(take_twice(), "lock_take: the lock is held");
    EXPECT_DEATH(join_for_ever(), "thread_join: the thread waits");
    EXPECT_DEATH(wait_on_main_thread(), "line_wait_event: the main thread");
}

TEST_F(ThreadsTest, WorkerThatATestLeavesBehindIsEnded) {
    const LineHandle line = line_open(2);
    line_set_mask(line, EV_RXCHAR);
    start(
        [](int64_t handle) {
            uint32_t events = 0;
            line_wait_event(static_cast<LineHandle>(handle), &events);
            note("ended" + std::to_string(events) + "-" + std::to_string(send_message(window, SENT, 7, 7)));
            return int64_t{0};
        },
        line);
    pump_messages();
    reset_desktop();
    EXPECT_EQ(record, "ended65536-0");
}

}  // namespace
}  // namespace hexlane::platform
