// compare_command.h: the command Compare. Main thread only.
#pragma once

namespace hexlane {

// Sets the document against a file that the user picks, shows the result, and prints it if asked to. The
// document stays as it is.
void command_compare();

}  // namespace hexlane
