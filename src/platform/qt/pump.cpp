// pump.cpp: serving what waits during a long run.

#include <algorithm>
#include <utility>

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>

#include "platform/desktop.h"
#include "platform/qt/modal.h"
#include "platform/qt/pump.h"

namespace hexlane::platform {

namespace {

constexpr qint64 LOOK_PERIOD_MS = 20;
constexpr int MOST_CALLS = 4096;

int calls_left = 0;  // until the clock is read again
int calls_per_reading = 1;
bool pumping = false;

// Reading the clock costs more than a row of a compare does, so calls are counted, as many as go by between
// two looks.
bool look_is_due() {
    static QElapsedTimer since_look;
    static qint64 last_reading = 0;
    if (--calls_left > 0) {
        return false;
    }
    const qint64 now = since_look.isValid() ? since_look.elapsed() : LOOK_PERIOD_MS;
    const bool often = now - last_reading < LOOK_PERIOD_MS / 4;
    calls_per_reading = std::clamp(often ? calls_per_reading * 2 : calls_per_reading / 2, 1, MOST_CALLS);
    calls_left = calls_per_reading;
    last_reading = now;
    if (now < LOOK_PERIOD_MS) {
        return false;
    }
    since_look.start();
    last_reading = 0;
    return true;
}

}  // namespace

// With nothing modal up, the person's keys and clicks would reach the main window in the middle of its own
// command: they wait.
bool pump_one_message() {
    if (!look_is_due()) {
        return false;
    }
    const QEventLoop::ProcessEventsFlags flags =
        modal_is_up() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents;
    const bool outer = std::exchange(pumping, true);
    const bool served = QAbstractEventDispatcher::instance()->processEvents(flags);
    pumping = outer;
    return served;
}

bool command_is_pumping() {
    return pumping && !modal_is_up();
}

}  // namespace hexlane::platform
