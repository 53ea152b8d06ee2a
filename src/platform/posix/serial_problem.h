// serial_problem.h: why the last open or configure of this thread failed, in words for a box.
// line_problem_text of serial.h tells it, for the scripted lines too.
#pragma once

#include "platform/serial.h"

namespace hexlane::platform {

// Forget the problem of an earlier call.
void clear_line_problem();

// Notes a failure's sentences. Gives 0, so that it can stand in a return.
int note_line_problem(const char* text);

// Notes a failed call on `device` by its errno, with what can be done about it. Gives 0.
int note_device_error(const char* device, int error);

// Notes that somebody else has `device`, with the process when the system shows it. Gives 0.
int note_device_in_use(const char* device);

}  // namespace hexlane::platform
