#include "terminal/line_counters.h"

namespace hexlane {

namespace {

std::string waiting_text(const LineCounters& counters) {
    if (counters.waiting == 0)
        return "";
    return ", " + std::to_string(counters.waiting) + (counters.held ? " held by the machine" : " waiting");
}

std::string errors_text(const LineCounters& counters) {
    if (!counters.open)
        return "port closed";
    if (!counters.counts_errors)
        return "errors: not counted by this line";
    const platform::LineErrors& errors = counters.errors;
    return "errors: " + std::to_string(errors.parity) + " parity, " + std::to_string(errors.framing) +
           " framing, " + std::to_string(errors.overrun) + " overrun";
}

}  // namespace

std::string counters_text(const LineCounters& counters) {
    return "received: " + std::to_string(counters.received) + "   sent: " + std::to_string(counters.sent) +
           waiting_text(counters) + "   " + errors_text(counters);
}

}  // namespace hexlane
