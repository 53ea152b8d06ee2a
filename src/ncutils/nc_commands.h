// nc_commands.h: the commands of the NC Utils menu. Each but Strip asks in a view first; all end in a
// repaint. Main thread only.
#pragma once

namespace hexlane {

void command_renumber();
void command_strip();
void command_shift();
void command_scale();
void command_incr_to_abs();
void command_abs_to_incr();

}  // namespace hexlane
