// workers.h: worker threads of a scripted run: real threads, of which one runs at a time.
// The main thread has the turn, and gives it to a worker that can go on; the worker gives it back when it
// waits, sends a message or ends. So nothing here needs a lock, no two threads ever meet, and a run is the
// same always: workers go on in the order in which they became ready.
#pragma once

#include <cstdint>

namespace hexlane::platform {

// Whether the caller is a worker.
bool on_worker();

// For a worker: gives the turn away until somebody wakes those that wait for `thing`.
void worker_waits_for(const void* thing);

// Those that wait for `thing` can go on at their next turn.
void wake_workers(const void* thing);

// Main thread: lets the worker that has been ready longest run until it gives the turn back. Gives false when
// none is ready.
bool run_ready_worker();

// Main thread: all workers have ended, and their handles are free, when this comes back. The lines that they
// wait for must be gone, or the run stops.
void end_workers();

}  // namespace hexlane::platform
