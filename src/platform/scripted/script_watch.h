// script_watch.h: what a script watches: lines that print by themselves when their answer has changed. Main
// thread only.
#pragma once

#include "platform/scripted/script_actions.h"

namespace hexlane::platform {

// `watch [LINE...]`: lines that print, in short. They replace what was watched before.
Refusal do_watch(const Words& words);

// Prints the answers that have changed since they were last printed here, of the lines that may stand at that
// time. For script.cpp, before each line and at the exit.
void print_watched(unsigned when);

}  // namespace hexlane::platform
