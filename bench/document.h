// document.h: the program with a document open, for measuring its parts on the desktop in memory.
#pragma once

#include <cstdint>

namespace hexlane::bench {

// Starts the program (at the first call) in a folder of its own, writes a part program of `rows` rows of
// about 40 bytes there, always the same for the same number, and opens it. Ends the process when it can't.
void open_document(int32_t rows);

// Loads the open document again. Ends the process when it can't.
void reload_document();

}  // namespace hexlane::bench
