// send.h: plays the machine's output.
#pragma once

#include "session.h"

namespace simulator {

// Sends the line bytes at the options' rate, obeying the other side's XOFF, and waits until it has closed the
// line or has been silent. What is wrong is counted in the session's findings.
void send_program(Session* session, const std::string& line_bytes);

}  // namespace simulator
