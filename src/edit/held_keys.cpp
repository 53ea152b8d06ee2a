#include "edit/held_keys.h"

#include "platform/desktop.h"
#include "platform/keys.h"

namespace hexlane {

namespace {

bool playing = false;
bool shift_played = false;
bool ctrl_played = false;

}  // namespace

bool held_key(int key) {
    if (!playing)
        return platform::key_is_down(key);
    return key == platform::VK_SHIFT ? shift_played : key == platform::VK_CONTROL && ctrl_played;
}

void begin_played_keys() {
    playing = true;
    shift_played = false;
    ctrl_played = false;
}

void end_played_keys() {
    playing = false;
}

bool keys_are_played() {
    return playing;
}

void note_played_key(int key, bool down) {
    if (key == platform::VK_SHIFT)
        shift_played = down;
    else if (key == platform::VK_CONTROL)
        ctrl_played = down;
}

}  // namespace hexlane
