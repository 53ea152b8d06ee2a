// transfer_watch.h: what the main window does for running transfers: the tick of its 1000 ms timer and their
// ends. Main thread only.
#pragma once

namespace hexlane {

// One tick: ends receives that have fallen silent, keeps the activity icon, and stops the timer when nothing
// is going on and nothing is awaited.
void watch_transfers();

// The text of the Send This entry: the machine of slot 0.
void label_send_this();

}  // namespace hexlane
