// application.h: the Qt side of the program's start and end, and what touches the display as a whole.
// Main thread only.
#pragma once

namespace hexlane::platform {

// Connects to the display and makes everything that the other files of this back end rely on. With a Wayland
// desktop it takes the X11 platform where a display for it exists. Gives 1; 0 after a message on standard
// error when no display can be used. `program` is argv[0].
int start_desktop(char* program);
void end_desktop();

// Serves the requests of other starts of the program from the event loop, once this run owns the socket. May
// be called again; does nothing while there is no socket.
void watch_instance_socket();

// Sends what has been drawn to the display now, for a program that serves no events meanwhile.
void flush_display();

}  // namespace hexlane::platform
