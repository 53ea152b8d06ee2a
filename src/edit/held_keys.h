// held_keys.h: whether Shift or Ctrl is held. While keys are played back, what they themselves say counts,
// and not the keyboard of the moment. Main thread only.
#pragma once

namespace hexlane {

// VK_SHIFT or VK_CONTROL. Whatever acts on a key or character message asks here.
bool held_key(int key);

// A playback begins with neither held; behind its end the keyboard counts again.
void begin_played_keys();
void end_played_keys();

// Whether a playback is under way.
bool keys_are_played();

// A key of the playback goes down or up.
void note_played_key(int key, bool down);

}  // namespace hexlane
