// process.h: where the program lives and what it was started with. Back end: posix/, for all desktops.
#pragma once

#include "platform/text.h"

namespace hexlane::platform {

// The launch directory, without a '/' at its end (but for the root itself): $HEXLANE_HOME when it is set;
// else the current directory when it holds a folder ZOLT (a portable installation); else `hexlane` in the XDG
// data directory, which is made with its ZOLT inside when missing. Gives 1, or 0 when none can be used.
int launch_folder(char* path, std::size_t size);

// The value of an environment variable. Gives 1, or 0 when it is not set or does not fit (`value` is empty).
int environment_value(const char* name, char* value, std::size_t size);

// Makes a path absolute, from the real current directory; "." and ".." parts are taken out by text alone.
// Gives 1, or 0 when it does not fit.
int absolute_path(const char* path, char* absolute, std::size_t size);

}  // namespace hexlane::platform
