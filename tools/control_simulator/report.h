// report.h: what a run has counted and found wrong, and its report on standard output.
#pragma once

#include "options.h"

#include <cstdint>
#include <string>

namespace simulator {

struct Findings {
    int64_t line_bytes = 0;     // that came in, or went out with --send
    int64_t taken = 0;          // of those that came in, by the checks
    int64_t program_bytes = 0;  // of the file
    int64_t blocks = 0;         // complete ones
    int64_t answers = 0;        // ACKs sent
    int64_t passes = 0;         // complete programs
    int64_t check_errors = 0;   // blocks whose check does not fit
    int64_t other_faults = 0;
    std::string first_fault;

    int64_t xoffs = 0;             // sent by this machine
    int64_t behind_xoff = 0;       // bytes that came while the line was held
    int64_t most_behind_xoff = 0;  // behind one of them
    int64_t holds = 0;             // XOFFs of the other side that --send obeyed
    bool hung_up = false;          // because it was asked to
};

// Counts a fault; the first one's text goes into the report, with the place on the line.
void add_fault(Findings* findings, const std::string& text);
void add_check_error(Findings* findings, const std::string& text);

bool all_was_well(const Findings& findings);

// Gives false when it could not be written.
bool print_report(const Options& options, const Findings& findings);

}  // namespace simulator
