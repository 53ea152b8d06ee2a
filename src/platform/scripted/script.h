// script.h: playing a script: the whole program runs on the desktop in memory, one line of the script at a
// time, and the record of what happens goes to standard output. The language is told in
// docs/scripted-runs.md. Main thread only.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace hexlane::platform {

constexpr int SCRIPT_RAN = 0;      // to its end
constexpr int SCRIPT_STOPPED = 2;  // a line could not apply
constexpr int SCRIPT_LEFT_UP = 3;  // it ended with something modal up

struct ScriptSetup {
    FILE* input;
    bool prints_times;                                       // milliseconds for each line on standard error
    int (*program)(const char* file);                        // the whole program; nullptr for no file
    void (*print_state)();                                   // the line `state`
    std::string (*print_rows)(int64_t first, int64_t last);  // `rows`; last -1 for all. Empty, or why not
};

// Plays the script to its end and gives one of the codes above. A script that ends or stops while the program
// runs ends the process with its code, since the program can't be left in the middle.
int play_script(const ScriptSetup& setup);

}  // namespace hexlane::platform
