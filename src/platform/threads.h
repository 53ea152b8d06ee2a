// threads.h: worker threads and locks. All live in fixed tables; nothing is allocated by the caller.
// Back ends: posix/ (real threads); scripted/ (real threads of which one runs at a time, until it blocks in a
// wait, a send or a sleep, so that a script prints the same always).
#pragma once

#include <cstdint>

namespace hexlane::platform {

using ThreadHandle = int32_t;
constexpr ThreadHandle NO_THREAD = 0;

enum class ThreadPriority : uint8_t { HIGHEST, NORMAL, BELOW_NORMAL };  // a wish; refused ones are ignored

// Runs `run(argument)` on a thread of its own. NO_THREAD on failure.
ThreadHandle thread_start(int64_t (*run)(int64_t argument), int64_t argument, ThreadPriority priority);

// Waits for the thread's end and frees its handle. On the main thread the messages that workers send are
// served meanwhile, so that a worker that is just sending one comes to its end.
void thread_join(ThreadHandle thread);

// Mutexes, not recursive. A lock is never held across a wait, a delay or a sent message.
using LockHandle = int32_t;
constexpr LockHandle NO_LOCK = 0;
LockHandle lock_make();  // NO_LOCK when all are taken
void lock_free(LockHandle lock);
void lock_take(LockHandle lock);
void lock_give(LockHandle lock);

// Holds a lock for a scope.
struct LockGuard {
    explicit LockGuard(LockHandle handle) : lock(handle) { lock_take(lock); }
    ~LockGuard() { lock_give(lock); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;
    LockHandle lock;
};

}  // namespace hexlane::platform
