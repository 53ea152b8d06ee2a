// instance.cpp: a scripted run is always the first of its home; `open-request` plays the second. Programs
// that it starts are named in the record and not run.

#include "platform/instance.h"

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/record.h"

namespace hexlane::platform {

int claim_instance(const char*) {
    return 1;
}

void release_instance() {}

Handover hand_over_file(const char*) {
    stop_run("hand_over_file: a scripted run has no other instance");
}

int take_handover(char* path, std::size_t size) {
    if (desktop.handovers.empty()) {
        return 0;
    }
    const std::string first = desktop.handovers.front();
    desktop.handovers.pop_front();
    return copy_text(path, size, first.c_str());
}

Handover raise_other_instance() {
    stop_run("raise_other_instance: a scripted run has no other instance");
}

int start_program(const char* path, const char* first, const char* second, const char* third) {
    std::string line = "run " + quoted(path);
    for (const char* argument : {first, second, third}) {
        if (argument != nullptr) {
            line += " " + quoted(argument);
        }
    }
    record_line(line);
    return 1;
}

}  // namespace hexlane::platform
