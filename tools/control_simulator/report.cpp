#include "report.h"

#include <cinttypes>
#include <cstdio>

namespace simulator {

namespace {

void note_first(Findings* findings, const std::string& text) {
    if (findings->first_fault.empty())
        findings->first_fault = text + " (line byte " + std::to_string(findings->taken) + ")";
}

void print_number(const char* name, int64_t value) {
    std::printf("%-20s %" PRId64 "\n", name, value);
}

}  // namespace

void add_fault(Findings* findings, const std::string& text) {
    findings->other_faults++;
    note_first(findings, text);
}

void add_check_error(Findings* findings, const std::string& text) {
    findings->check_errors++;
    note_first(findings, text);
}

bool all_was_well(const Findings& findings) {
    return findings.check_errors == 0 && findings.other_faults == 0;
}

bool print_report(const Options& options, const Findings& findings) {
    print_number("bytes on the line:", findings.line_bytes);
    print_number("bytes of program:", findings.program_bytes);
    if (!options.receive.empty()) {
        print_number("programs:", findings.passes);
        print_number("blocks:", findings.blocks);
        print_number("answers:", findings.answers);
        print_number("check errors:", findings.check_errors);
        print_number("XOFFs:", findings.xoffs);
        print_number("bytes behind XOFF:", findings.behind_xoff);
        print_number("most behind one:", findings.most_behind_xoff);
    } else {
        print_number("held by XOFF:", findings.holds);
    }
    print_number("other faults:", findings.other_faults);
    if (findings.hung_up)
        std::printf("hung up as asked\n");
    if (!findings.first_fault.empty())
        std::printf("first fault: %s\n", findings.first_fault.c_str());
    std::printf("%s\n", all_was_well(findings) ? "all was well" : "not all was well");
    return std::fflush(stdout) == 0;
}

}  // namespace simulator
