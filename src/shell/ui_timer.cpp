#include "shell/ui_timer.h"

#include "platform/desktop.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

bool drag_timer_on = false;
bool slow_timer_on = false;

}  // namespace

void set_ui_timer(int use) {
    if (use == UI_TIMER_DRAG ? drag_timer_on : slow_timer_on)
        return;
    stop_ui_timer();
    drag_timer_on = use == UI_TIMER_DRAG;
    slow_timer_on = use != UI_TIMER_DRAG;
    start_timer(child[0].main_window, UI_TIMER, use == UI_TIMER_DRAG ? 50 : 1000);
}

void stop_ui_timer() {
    if (drag_timer_on || slow_timer_on)
        kill_timer(child[0].main_window, UI_TIMER);
    drag_timer_on = false;
    slow_timer_on = false;
}

bool drag_timer_running() {
    return drag_timer_on;
}
bool slow_timer_running() {
    return slow_timer_on;
}

}  // namespace hexlane
