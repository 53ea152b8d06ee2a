// program_file.h: the program as the machine keeps it: a file whose blocks end with CR LF, whatever ends them
// on the line.
#pragma once

#include "options.h"
#include "report.h"

#include <cstdio>
#include <string>

namespace simulator {

struct ProgramFile {
    FILE* file = nullptr;
    std::string_view line_end;  // on the line; empty: stored as it comes
    std::size_t matched = 0;    // characters of `line_end` that have come
    Findings* findings = nullptr;
    bool failed = false;  // something could not be written
};

// Gives the reason of a failure, empty for none.
std::string create_program(const Options& options, Findings* findings, ProgramFile* program);

// Takes the program's next character. A line end that is not whole is a fault; a '$' that ends no line is
// data.
void store(ProgramFile* program, uint8_t character);

// Hands what is stored to the system: the program is complete, and somebody may look at it.
void flush_program(ProgramFile* program);

// Gives false when something could not be written.
bool close_program(ProgramFile* program);

// Reads a whole program and turns it into what goes over the line: code, line ends, start and end string.
// Gives the reason of a failure (a character that the code does not have is one), empty for none.
std::string encode_program(const Options& options, std::string* line_bytes, int64_t* program_bytes);

}  // namespace simulator
