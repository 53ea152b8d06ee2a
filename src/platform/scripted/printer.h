// printer.h: the printer that a scripted run or a unit test finds. Main thread only.
#pragma once

#include <string>

namespace hexlane::platform {

// The default printer's name, empty for none. With `fails` no job can be started on it.
void set_printer(const std::string& name, bool fails);

// The printer of the start, "Printer", and no job under way.
void wipe_printer();

}  // namespace hexlane::platform
