// threads.cpp: worker threads and locks over pthreads. This file holds the operations of threads.h and
// nothing else, so that a program with threads of its own never links it.

#include "platform/threads.h"

#include "platform/posix/threads_hook.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr int MAX_THREADS = 8;
constexpr int MAX_LOCKS = 16;
constexpr std::chrono::milliseconds SERVE_PERIOD{2};

struct Worker {
    bool taken;
    bool ended;  // `run` has returned
    pthread_t thread;
    int64_t (*run)(int64_t argument);
    int64_t argument;
    ThreadPriority priority;
};

std::mutex table_lock;  // guards all of this
std::condition_variable worker_ended;
Worker workers[MAX_THREADS];
bool lock_taken[MAX_LOCKS];

std::mutex locks[MAX_LOCKS];

// Linux gives a niceness to each thread.
void wish_priority(ThreadPriority priority) {
    if (priority == ThreadPriority::NORMAL) {
        return;
    }
    const int niceness = priority == ThreadPriority::HIGHEST ? -10 : 5;
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness);
}

void* run_worker(void* record) {
    auto* worker = static_cast<Worker*>(record);
    wish_priority(worker->priority);
    worker->run(worker->argument);
    const std::lock_guard guard(table_lock);
    worker->ended = true;
    worker_ended.notify_all();
    return nullptr;
}

// Signals are the main thread's business. Needs table_lock.
int create_thread(Worker* worker) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    const int error = pthread_create(&worker->thread, nullptr, run_worker, worker);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return error == 0 ? 1 : 0;
}

Worker* worker_of(ThreadHandle thread) {
    const std::lock_guard guard(table_lock);
    return thread >= 1 && thread <= MAX_THREADS && workers[thread - 1].taken ? &workers[thread - 1] : nullptr;
}

void serve_until_ended(const Worker& worker) {
    std::unique_lock guard(table_lock);
    while (!worker_ended.wait_for(guard, SERVE_PERIOD, [&worker] { return worker.ended; })) {
        guard.unlock();
        serve_sent_messages();
        guard.lock();
    }
}

}  // namespace

ThreadHandle thread_start(int64_t (*run)(int64_t argument), int64_t argument, ThreadPriority priority) {
    const std::lock_guard guard(table_lock);
    for (int i = 0; i < MAX_THREADS; i++) {
        if (workers[i].taken) {
            continue;
        }
        workers[i] = {true, false, {}, run, argument, priority};
        if (create_thread(&workers[i])) {
            return i + 1;
        }
        workers[i].taken = false;
        break;
    }
    return NO_THREAD;
}

void thread_join(ThreadHandle thread) {
    Worker* worker = worker_of(thread);
    if (worker == nullptr) {
        return;
    }
    const bool on_main_thread = gettid() == getpid();
    if (on_main_thread && serve_sent_messages != nullptr) {
        serve_until_ended(*worker);
    }
    pthread_join(worker->thread, nullptr);
    const std::lock_guard guard(table_lock);
    worker->taken = false;
}

LockHandle lock_make() {
    const std::lock_guard guard(table_lock);
    for (int i = 0; i < MAX_LOCKS; i++) {
        if (!lock_taken[i]) {
            lock_taken[i] = true;
            return i + 1;
        }
    }
    return NO_LOCK;
}

void lock_free(LockHandle lock) {
    if (lock != NO_LOCK) {
        const std::lock_guard guard(table_lock);
        lock_taken[lock - 1] = false;
    }
}

void lock_take(LockHandle lock) {
    locks[lock - 1].lock();
}

void lock_give(LockHandle lock) {
    locks[lock - 1].unlock();
}

}  // namespace hexlane::platform
