// about.h: what the program is. Main thread only.
#pragma once

namespace hexlane {

// The view IDD_ABOUT.
void show_about();

}  // namespace hexlane
