// port_report.h: opening and closing a slot's port for the person at the screen: what is asked before a
// close, and told about its end, about a worker that can't start, and about a log that can't be written. Main
// thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// The user lets communications go on in the background: a close asks no question about a send.
extern int32_t background_requested;

// port_init and port_open, or port_open_for_blocks, for the slot's machine. 1, or 0 when it cannot be opened;
// platform::line_problem_text says why, and a worker that cannot start is told in a box.
int open_port(int slot);
int open_port_for_blocks(int slot);

// port_close. No question, and no message but one of the log.
void close_port(int slot);

// Asks first if a transfer is running, closes, and shows how the transfer ended. 0 when the user said No.
int close_port_and_report(int slot);

// Whether it is under way on the slot, with a box of its own up.
bool is_being_closed(int slot);

// A tick of the 1000 ms timer, TRANSFER_DONE_MESSAGE and TRANSFER_FAILED_MESSAGE: close_port_and_report for a
// transfer that is at its end.
void check_receive_timeout(int slot);
void finish_transfer(int slot, int64_t transfer_number);
void finish_failed_transfer(int slot, int64_t transfer_number);

// Shows how the slot's transfer has ended.
void tell_transfer_end(int slot);

// The receipt that could not be written, once a run.
void tell_log_failure();

// Names each file that was being received when the program ended, once (cut_receives.cpp).
void tell_cut_receives();

}  // namespace hexlane
