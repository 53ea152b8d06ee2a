// detached.h: starting a program that goes on by itself, for the files of this folder and their tests.
#pragma once

namespace hexlane::platform {

// Starts the program `arguments[0]` (looked for in PATH when it holds no '/') with those arguments, nullptr
// behind the last, and HEXLANE_HOME set to `home`. It is nobody's child afterwards, has its own session,
// standard input from /dev/null, and none of our files. Gives 1, or 0 when it cannot be started.
int start_detached(const char* const* arguments, const char* home);

}  // namespace hexlane::platform
