// Workers and locks.

#include "platform/threads.h"
#include "serial_fixture.h"

namespace hexlane::platform {
namespace {

std::atomic<int> runs{0};
std::atomic<bool> waiting{false};

TEST(Threads, AreRefusedWhenAllPlacesAreTakenAndThoseAreUsedAgain) {
    const auto work = [](int64_t argument) {
        wait_for([] { return !waiting; });
        runs += static_cast<int>(argument);
        return int64_t{0};
    };
    for (int round = 0; round < 3; round++) {
        runs = 0;
        waiting = true;
        std::vector<ThreadHandle> threads;
        for (ThreadHandle thread;
             (thread = thread_start(work, 7, static_cast<ThreadPriority>(round))) != NO_THREAD;) {
            threads.push_back(thread);
            ASSERT_LT(threads.size(), 100u);
        }
        EXPECT_GE(threads.size(), 2u);
        waiting = false;
        for (const ThreadHandle thread : threads) {
            thread_join(thread);
            thread_join(thread);  // a handle that is free means nothing
        }
        EXPECT_EQ(runs, 7 * static_cast<int>(threads.size()));
    }
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
