// recording.h: storing the messages of keys and left button in a macro. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Called by the window procedure first thing for the five messages that are recorded, with a document open.
// Stores the message if a macro is being recorded. The ring's last entry is followed by its first, and the
// count begins anew there: of a recording of more than MACRO_MOST_EVENTS events only those behind the last
// wrap remain.
void record_event(uint32_t message, int64_t first, int64_t second);

void command_record_macro();  // 1027
void command_end_record();    // 1028: only here a recording reaches the disk

}  // namespace hexlane
