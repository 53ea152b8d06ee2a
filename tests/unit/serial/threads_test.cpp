// Workers and locks.

#include "platform/posix/threads_hook.h"
#include "platform/threads.h"
#include "serial_fixture.h"

namespace hexlane::platform {
namespace {

std::atomic<int> runs{0};
std::atomic<bool> sending{false};
std::atomic<int> served{0};

TEST(Threads, AreStartedJoinedAndTheirPlacesUsedAgain) {
    runs = 0;
    for (int round = 0; round < 20; round++) {
        ThreadHandle threads[3];
        for (int i = 0; i < 3; i++) {
            threads[i] = thread_start(
                [](int64_t argument) {
                    runs += static_cast<int>(argument);
                    return int64_t{0};
                },
                i + 1, static_cast<ThreadPriority>(i));
            ASSERT_NE(threads[i], NO_THREAD);
        }
        for (const ThreadHandle thread : threads) {
            thread_join(thread);
            thread_join(thread);  // a handle that is free means nothing
        }
    }
    EXPECT_EQ(runs, 120);
}

TEST(Threads, TooManyAreRefused) {
    sending = true;
    std::vector<ThreadHandle> threads;
    const auto wait = [](int64_t) {
        wait_for([] { return !sending; });
        return int64_t{0};
    };
    for (ThreadHandle thread; (thread = thread_start(wait, 0, ThreadPriority::NORMAL)) != NO_THREAD;) {
        threads.push_back(thread);
        ASSERT_LT(threads.size(), 100u);
    }
    EXPECT_GE(threads.size(), 2u);
    sending = false;
    for (const ThreadHandle thread : threads) {
        thread_join(thread);
    }
}

// A worker that sends a message ends only when the main thread has handled it.
TEST(Threads, AJoinOnTheMainThreadServesSentMessages) {
    served = 0;
    sending = true;
    serve_sent_messages = [] {
        if (sending) {
            served++;
            sending = false;
        }
    };
    const ThreadHandle thread = thread_start(
        [](int64_t) {
            wait_for([] { return !sending; });
            return int64_t{0};
        },
        0, ThreadPriority::HIGHEST);
    thread_join(thread);
    EXPECT_EQ(served, 1);
    serve_sent_messages = nullptr;
}

TEST(Locks, KeepOthersOutAndAreFreedForReuse) {
    static LockHandle lock;
    static int counter;
    counter = 0;
    for (int round = 0; round < 100; round++) {
        lock = lock_make();
        ASSERT_NE(lock, NO_LOCK);
        const auto count = [](int64_t) {
            for (int i = 0; i < 50; i++) {
                const LockGuard guard(lock);
                counter++;
            }
            return int64_t{0};
        };
        const ThreadHandle first = thread_start(count, 0, ThreadPriority::NORMAL);
        const ThreadHandle second = thread_start(count, 0, ThreadPriority::NORMAL);
        thread_join(first);
        thread_join(second);
        lock_free(lock);
    }
    EXPECT_EQ(counter, 10'000);
    std::vector<LockHandle> locks;
    for (LockHandle next; (next = lock_make()) != NO_LOCK;) {
        locks.push_back(next);
        ASSERT_LT(locks.size(), 1000u);
    }
    for (const LockHandle each : locks) {
        lock_free(each);
    }
    EXPECT_GE(locks.size(), 4u);
}

}  // namespace
}  // namespace hexlane::platform
