// threads.cpp: workers that take turns, and locks that only check that nobody has to wait for one.

#include "platform/threads.h"

#include "platform/scripted/message_queue.h"
#include "platform/scripted/record.h"
#include "platform/scripted/workers.h"

#include <pthread.h>
#include <semaphore>
#include <string>

namespace hexlane::platform {

namespace {

constexpr int MAX_THREADS = 8;
constexpr int MAX_LOCKS = 16;

enum class WorkerState : uint8_t { FREE, READY, RUNNING, WAITING, ENDED };

// Changed only by the thread that has the turn.
struct Worker {
    WorkerState state = WorkerState::FREE;
    const void* waits_for = nullptr;
    int64_t ready_since = 0;  // the lowest goes first
    int64_t (*run)(int64_t argument) = nullptr;
    int64_t argument = 0;
    std::binary_semaphore turn{0};
};

Worker workers[MAX_THREADS];
std::binary_semaphore main_turn{0};
int64_t ready_count = 0;
thread_local Worker* self = nullptr;  // nullptr on the main thread

struct Lock {
    bool made = false;
    bool taken = false;
};
Lock locks[MAX_LOCKS];

void make_ready(Worker* worker) {
    worker->state = WorkerState::READY;
    worker->waits_for = nullptr;
    worker->ready_since = ++ready_count;
}

void* run_worker(void* record) {
    self = static_cast<Worker*>(record);
    self->turn.acquire();
    self->run(self->argument);
    self->state = WorkerState::ENDED;
    wake_workers(self);
    main_turn.release();
    return nullptr;
}

Worker* worker_of(ThreadHandle thread) {
    const bool there = thread >= 1 && thread <= MAX_THREADS && workers[thread - 1].state != WorkerState::FREE;
    return there ? &workers[thread - 1] : nullptr;
}

// Detached: who has ended is told by the turns, and a script may end with workers that nobody has joined.
bool create_thread(Worker* worker) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const int error = pthread_create(&thread, &attributes, run_worker, worker);
    pthread_attr_destroy(&attributes);
    return error == 0;
}

Lock* lock_of(LockHandle lock, const char* call) {
    if (lock < 1 || lock > MAX_LOCKS || !locks[lock - 1].made) {
        stop_run(std::string(call) + ": there is no lock " + std::to_string(lock));
    }
    return &locks[lock - 1];
}

}  // namespace

// ---- Turns -------------------------------------------------------------------------------------------

bool on_worker() {
    return self != nullptr;
}

void worker_waits_for(const void* thing) {
    self->state = WorkerState::WAITING;
    self->waits_for = thing;
    main_turn.release();
    self->turn.acquire();
}

void wake_workers(const void* thing) {
    for (Worker& worker : workers) {
        if (worker.state == WorkerState::WAITING && worker.waits_for == thing) {
            make_ready(&worker);
        }
    }
}

bool run_ready_worker() {
    Worker* next = nullptr;
    for (Worker& worker : workers) {
        if (worker.state == WorkerState::READY &&
            (next == nullptr || worker.ready_since < next->ready_since)) {
            next = &worker;
        }
    }
    if (next == nullptr) {
        return false;
    }
    next->state = WorkerState::RUNNING;
    next->turn.release();
    main_turn.acquire();
    return true;
}

void end_workers() {
    do {
        drop_sent_messages();
    } while (run_ready_worker());
    for (Worker& worker : workers) {
        if (worker.state == WorkerState::ENDED) {
            worker.state = WorkerState::FREE;
        } else if (worker.state != WorkerState::FREE) {
            stop_run("a worker thread does not end");
        }
    }
}

// ---- threads.h ---------------------------------------------------------------------------------------

ThreadHandle thread_start(int64_t (*run)(int64_t argument), int64_t argument, ThreadPriority) {
    for (int i = 0; i < MAX_THREADS; i++) {
        Worker& worker = workers[i];
        if (worker.state != WorkerState::FREE) {
            continue;
        }
        worker.run = run;
        worker.argument = argument;
        if (!create_thread(&worker)) {
            return NO_THREAD;
        }
        make_ready(&worker);
        return i + 1;
    }
    return NO_THREAD;
}

// Other workers that are ready go on too. No time passes and no posted message is served, so a worker that
// waits for one of them would never end.
void thread_join(ThreadHandle thread) {
    Worker* worker = worker_of(thread);
    if (worker == nullptr) {
        return;
    }
    while (worker->state != WorkerState::ENDED) {
        if (on_worker()) {
            worker_waits_for(worker);
        } else if (!run_ready_worker() && !serve_sent_message()) {
            stop_run("thread_join: the thread waits for something that cannot come meanwhile");
        }
    }
    worker->state = WorkerState::FREE;
}

LockHandle lock_make() {
    for (int i = 0; i < MAX_LOCKS; i++) {
        if (!locks[i].made) {
            locks[i] = {true, false};
            return i + 1;
        }
    }
    return NO_LOCK;
}

void lock_free(LockHandle lock) {
    if (lock != NO_LOCK) {
        lock_of(lock, "lock_free")->made = false;
    }
}

// Threads change turns in waits and sends alone, and there no lock may be held.
void lock_take(LockHandle lock) {
    Lock* taken = lock_of(lock, "lock_take");
    if (taken->taken) {
        stop_run("lock_take: the lock is held, by this thread or across a wait or a sent message");
    }
    taken->taken = true;
}

void lock_give(LockHandle lock) {
    lock_of(lock, "lock_give")->taken = false;
}

}  // namespace hexlane::platform
