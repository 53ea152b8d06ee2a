// modal.h: what is up and waits: message boxes, views and file dialogs, one on the other. Main thread only.
#pragma once

#include "platform/scripted/desktop_state.h"

namespace hexlane::platform {

// Puts `modal` on top, takes lines or answers until it is done, and takes it away. The first one takes the
// focus from the main window, the last one gives it back.
void run_modal(Modal* modal);

// The topmost modal, nullptr when there is none.
Modal* top_modal();

// Who plays the person: does one act whenever something waits and nothing is in the queue. Gives false when
// the person has nothing to do; then the message loop ends, and a modal stops the run.
void set_person(bool (*act)());
bool person_acts();

// An act of many steps (typing, ticking) that a modal interrupts: it drops its rest. While it runs it stands
// on a list, and the first modal to come up during it prints `stopped after N`.
struct LongAct {
    int64_t done = 0;   // steps done, the one under way included
    int64_t total = 0;  // steps asked for
    bool stopped = false;
    LongAct* outer = nullptr;
};
void begin_long_act(LongAct* act, int64_t total);
void end_long_act(LongAct* act);

}  // namespace hexlane::platform
