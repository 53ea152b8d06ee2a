// serial_tty.h: tty devices as the serial line needs them: opening for us alone, settings, flushing, modem
// lines. Linux' own termios2, for rates without a constant. Failures are noted by note_line_problem
// (serial_problem.h).
#pragma once

#include "platform/serial.h"

namespace hexlane::platform {

// Opens a device raw, without waiting, for this process alone (TIOCEXCL, and flock, which stops root too).
// Gives the descriptor, or -1.
int open_tty(const char* device);

// Gives others their turn and closes. What still waits in the driver is dropped, since a close would wait for
// it.
void close_tty(int tty, bool output_too);

// Writes rate, form and handshake, and reads back; settings->baud_rate takes the rate that the driver has
// set. 0 when the driver takes the rate (to 3 per cent) or the form not, or has vanished. A pty takes any
// form: bytes pass through it whole.
int configure_tty(int tty, const char* device, LineSettings* settings);

// Drops what waits in either direction.
void flush_tty(int tty, bool output_too);

void set_tty_dtr(int tty, bool on);

}  // namespace hexlane::platform
