// receive.h: takes a program from the line apart: the framing of its protocol, its checks, its code.
#pragma once

#include "program_file.h"
#include "session.h"

namespace simulator {

// Receives until the run is over. What is wrong is counted in the session's findings.
void receive_program(Session* session, ProgramFile* program);

}  // namespace simulator
