// serial.h: serial lines, COM1 to COM4, event driven.
//
// One thread, the line's worker, waits in line_wait_event; everything that the line does happens inside that
// wait: bytes are taken from the driver into a receive ring of RECEIVE_RING bytes, and a started write is
// handed on to the driver as the machine takes it. What a full ring has no room for stays with the driver,
// which stops the machine by the line's handshake when its own queue is full; without a handshake it drops
// what comes then and counts it (line_errors). The other operations may be called from any thread.
//
// COM1 to COM4 mean devices: HEXLANE_COM1 to HEXLANE_COM4 of the environment, else a text file `ports` in the
// launch directory ("COM1 /dev/ttyUSB0" a row, "COM1=..." and "COM1:..." too, '#' comments), else /dev/ttyS0
// to /dev/ttyS3. A port whose row can't be read has no device, and neither has one without a row while a row
// stands there whose port can't be told: another device might be another machine.
//
// Back ends: posix/ (tty devices and ptys); scripted/ (a line with a rate, a FIFO, modem lines and errors,
// all on the scripted clock).
#pragma once

#include "platform/text.h"

#include <cstddef>
#include <cstdint>

namespace hexlane::platform {

using LineHandle = int32_t;
constexpr LineHandle NO_LINE = -1;
constexpr int PORT_COUNT = 4;
constexpr int RECEIVE_RING = 4096;  // bytes

// Events of line_wait_event.
constexpr uint32_t EV_RXCHAR = 0x01;  // bytes have come in
constexpr uint32_t EV_RXFLAG = 0x02;  // the event character has come into the ring
constexpr uint32_t EV_TXEMPTY =
    0x04;  // everything of the last write has left, the transmitter's register too
constexpr uint32_t EV_CTS =
    0x08;  // CTS has changed (hardware handshake only, while bytes wait or a write runs)
constexpr uint32_t EV_GONE = 0x10000;  // the device has vanished or hung up; always reported, once

// Parity and stop bits as drivers number them.
constexpr uint8_t PARITY_NONE = 0;
constexpr uint8_t PARITY_ODD = 1;
constexpr uint8_t PARITY_EVEN = 2;
constexpr uint8_t STOP_BITS_ONE = 0;
constexpr uint8_t STOP_BITS_TWO = 2;

struct LineSettings {
    uint32_t baud_rate;  // bits a second, any; line_settings gives the rate that the driver really has set
    uint8_t byte_size;   // 7 or 8
    uint8_t parity;      // PARITY_
    uint8_t stop_bits;   // STOP_BITS_
    bool hardware_handshake;  // RTS/CTS
    bool software_handshake;  // XON/XOFF in the driver, both ways
    // 0x00 as xon_char: the handshake is on but nothing is being sent, so the driver's XON/XOFF is switched
    // off and DC1 reaches the program.
    uint8_t xon_char;
    uint8_t xoff_char;
    uint8_t event_char;
};

// Why the last failed line_open, line_configure or line_device of this thread failed: a sentence or two for a
// box, with the device, what is wrong and what can be done about it ("add the user to the group dialout", "in
// use by process 4711 (picocom)"); empty when there is nothing to say.
const char* line_problem_text();

// Opens COM `port` (1 to PORT_COUNT) for this program alone, raw, with nothing waiting. NO_LINE on failure.
LineHandle line_open(int port);

// The device that COM `port` means, into name[size]. Gives 1; 0 with an empty name when it has none, and
// line_problem_text() tells why.
int line_device(int port, char* name, std::size_t size);

// "COM1 (/dev/ttyUSB0)" for messages; "COM1" when it has no device.
void line_name(int port, char* name, std::size_t size);

// Lets COM `port` mean `device` for the rest of the run; empty: what it means by itself. Gives 1; 0 when the
// name is too long, and nothing has changed.
int line_set_device(int port, const char* device);

int line_configure(LineHandle line, const LineSettings& settings);  // 1, or 0 on failure
int line_settings(LineHandle line, LineSettings* settings);         // 1, or 0 on failure

// Which events the wait reports (EV_GONE always). Mask 0 also ends a wait that is going on, with no event,
// and each later one at once, until the next mask; it ends a line_delay too.
void line_set_mask(LineHandle line, uint32_t mask);

// Waits for the next event, using no processor time. Gives 1 and the events since the last wait, 0 of them
// after mask 0; or 0 when the line has failed.
int line_wait_event(LineHandle line, uint32_t* events);

// Holds the calling worker for `ms` milliseconds (the driver goes on sending what it has, and bytes are still
// handed to it). 1 when the time is over; 0 when mask 0 ended it, or the device has vanished, which the next
// wait tells.
int line_delay(LineHandle line, int ms);

// Bytes in the receive ring.
int line_queue_length(LineHandle line);

// Takes up to `size` bytes out of the ring, without waiting. Gives their number.
int line_read(LineHandle line, void* buffer, int size);

// Starts the write of `count` bytes; `data` must stay as it is until EV_TXEMPTY or line_purge. A write that
// is still running is not allowed. 1, or 0 when the line has failed.
int line_write(LineHandle line, const void* data, int count);

// Bytes of the last write that have left, as far as the driver tells. What waits with the driver does not
// count: line_purge and line_close drop it.
int line_written(LineHandle line);

// Whether the machine holds the line: bytes wait and none has moved for ten character times.
bool line_held(LineHandle line);

// What went wrong on the way in since the line was opened, as the driver counts it.
struct LineErrors {
    uint32_t parity;
    uint32_t framing;
    uint32_t overrun;  // bytes that the device or the driver had no room for
};

// Gives 1, or 0 when the driver counts none, as that of a pty.
int line_errors(LineHandle line, LineErrors* errors);

void line_set_dtr(LineHandle line, bool on);

// Drops a running write and everything that waits in either direction.
void line_purge(LineHandle line);

// The worker has ended before. The handle is gone afterwards.
void line_close(LineHandle line);

}  // namespace hexlane::platform
