// script_watch.h: what a script watches: lines that print by themselves when their answer has changed. Main
// thread only.
#pragma once

#include "platform/scripted/script_actions.h"

namespace hexlane::platform {

// `watch [NAME...]`: lines that print and need no more than their name. They replace what was watched before.
Refusal do_watch(const Words& words);

// Prints the answers that have changed since they were last printed here. For script.cpp, before each line.
void print_watched();

}  // namespace hexlane::platform
