// instance.cpp: a scripted run is always the first of its home; `open-request` plays the second. Programs
// that it starts are named in the record and not run.

#include "platform/instance.h"

#include "platform/scripted/record.h"

namespace hexlane::platform {

int claim_instance(const char*) {
    return 1;
}

void release_instance() {}

Handover send_open_request() {
    stop_run("send_open_request: a scripted run has no other instance");
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
