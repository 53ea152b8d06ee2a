// process.h: where the program lives and what it was started with. Back end: posix/, for all desktops.
#pragma once

#include "platform/text.h"

namespace hexlane::platform {

// The launch directory, without a '/' at its end (but for the root itself): $HEXLANE_HOME when it is set;
// else the current directory when it holds a folder ZOLT (a portable installation) and nobody else can have
// put something into either; else `hexlane` in the XDG data directory, which is made with its ZOLT inside
// when missing. Gives 1, or 0 when none can be used.
int launch_folder(char* path, std::size_t size);

// What the user should know of that choice: that the current directory was passed over, or that others may
// write into what $HEXLANE_HOME names. Gives 1 and one line without a full stop, or 0 when there is nothing
// to tell (`text` is empty).
int launch_doubt(char* text, std::size_t size);

// Why somebody else than the user and root may decide what the file or folder `path` (links followed) holds:
// it belongs to somebody else, or may be written by others or by a group that is not the user's own. nullptr
// when nobody else may.
const char* stranger_reason(const char* path);

// The same of a file that is to be run, and of the folder in which it lies.
const char* stranger_reason_of_program(const char* path);

// Writes one line, with the program's name in front, to standard error.
void warn_on_terminal(const char* line);

// The value of an environment variable. Gives 1, or 0 when it is not set or does not fit (`value` is empty).
int environment_value(const char* name, char* value, std::size_t size);

// Makes a path absolute, from the real current directory. "." and ".." parts are taken out as the system
// takes them: a ".." behind a link leads above the folder that the link names. Other links stay, and parts
// that do not exist go by their text. Gives 1, or 0 when it does not fit.
int absolute_path(const char* path, char* absolute, std::size_t size);

}  // namespace hexlane::platform
