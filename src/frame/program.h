// program.h: the program from its entry point to the end of its message loop. Main thread only.
#pragma once

namespace hexlane {

// Runs the program. `file` is the command line's file name, relative to the real current directory, or
// nullptr. Gives the program's exit code. The back ends have been made ready by the caller.
int program_main(const char* file);

}  // namespace hexlane
