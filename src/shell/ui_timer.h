// ui_timer.h: the one timer of the main window. Main thread only.
#pragma once

namespace hexlane {

// Timer 1 of the main window serves one use at a time.
constexpr int UI_TIMER = 1;
constexpr int UI_TIMER_DRAG = 0;  // 50 ms
constexpr int UI_TIMER_SLOW = 1;  // 1000 ms

void set_ui_timer(int use);
void stop_ui_timer();
bool drag_timer_running();
bool slow_timer_running();

}  // namespace hexlane
