// playback.h: a recorded macro sent back to the main window, pass by pass. Main thread only.
#pragma once

namespace hexlane {

void command_play_macro();  // 1026

}  // namespace hexlane
