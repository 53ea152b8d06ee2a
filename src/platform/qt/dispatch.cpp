// dispatch.cpp: sending, posting, timers and the message loop over Qt's event queue.

#include "platform/qt/dispatch.h"

#include <map>
#include <memory>
#include <semaphore>
#include <utility>

#include <QApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>

#include "platform/desktop.h"
#include "platform/posix/threads_hook.h"
#include "platform/qt/application.h"

namespace hexlane::platform {

namespace {

// A worker that has sent a message and waits for its result.
struct Waiter {
    std::binary_semaphore served{0};
    int64_t result = 0;
};

const QEvent::Type MESSAGE_EVENT = static_cast<QEvent::Type>(QEvent::registerEventType());
const QEvent::Type SENT_EVENT =
    static_cast<QEvent::Type>(QEvent::registerEventType());  // a worker waits for it

// A message on its way. It lets its waiter go when it is deleted, so that a message that the ending program
// never serves holds nobody.
class MessageEvent final : public QEvent {
public:
    MessageEvent(QEvent::Type type, WindowHandle to, uint32_t code, int64_t one, int64_t two)
        : QEvent(type), window(to), message(code), first(one), second(two) {}
    ~MessageEvent() override {
        if (waiter != nullptr) {
            waiter->served.release();
        }
    }
    MessageEvent(const MessageEvent&) = delete;
    MessageEvent& operator=(const MessageEvent&) = delete;

    WindowHandle window;
    uint32_t message;
    int64_t first;
    int64_t second;
    bool from_timer = false;
    Waiter* waiter = nullptr;
};

struct ProgramTimer {
    QTimer ticks;
    bool waiting = false;  // its message is in the queue already
};
using TimerKey = std::pair<WindowHandle, int>;

class Dispatcher final : public QObject {
protected:
    bool event(QEvent* event) override;
};

Dispatcher* dispatcher = nullptr;  // lives until the process ends: a late worker may still post
std::map<WindowHandle, WindowProcedure> procedures;
std::map<TimerKey, std::unique_ptr<ProgramTimer>> timers;
WindowHandle last_handle = NO_WINDOW;
bool quit_asked = false;
int quit_code = 0;

// Whether the timer behind a WM_TIMER still runs; takes the message out of its books.
bool timer_is_due(WindowHandle window, int64_t id) {
    const auto found = timers.find({window, static_cast<int>(id)});
    if (found == timers.end()) {
        return false;
    }
    return std::exchange(found->second->waiting, false);
}

bool Dispatcher::event(QEvent* event) {
    if (event->type() != MESSAGE_EVENT && event->type() != SENT_EVENT) {
        return QObject::event(event);
    }
    const auto* message = static_cast<MessageEvent*>(event);
    if (message->from_timer && !timer_is_due(message->window, message->first)) {
        return true;
    }
    const int64_t result = call_window(message->window, message->message, message->first, message->second);
    if (message->waiter != nullptr) {
        message->waiter->result = result;
    }
    return true;
}

}  // namespace

void make_dispatcher() {
    dispatcher = new Dispatcher;
    serve_sent_messages = [] { QCoreApplication::sendPostedEvents(dispatcher, SENT_EVENT); };
}

WindowHandle add_window(WindowProcedure procedure) {
    procedures[++last_handle] = procedure;
    return last_handle;
}

void remove_window(WindowHandle window) {
    procedures.erase(window);
    std::erase_if(timers, [window](const auto& entry) { return entry.first.first == window; });
}

int64_t call_window(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    const auto found = procedures.find(window);
    if (found == procedures.end() || found->second == nullptr) {
        return 0;
    }
    return found->second(window, message, first, second);
}

int64_t send_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    if (QThread::currentThread() == dispatcher->thread()) {
        return call_window(window, message, first, second);
    }
    Waiter waiter;
    auto* event = new MessageEvent(SENT_EVENT, window, message, first, second);
    event->waiter = &waiter;
    QCoreApplication::postEvent(dispatcher, event);
    waiter.served.acquire();
    return waiter.result;
}

void post_message(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    QCoreApplication::postEvent(dispatcher, new MessageEvent(MESSAGE_EVENT, window, message, first, second));
}

// A tick only queues WM_TIMER, once at a time. Qt holds a timer back while its own tick is being served, and
// a box that comes up in a WM_TIMER must not stop the transfers that this timer looks after.
void start_timer(WindowHandle window, int id, int period_ms) {
    std::unique_ptr<ProgramTimer>& timer = timers[{window, id}];
    if (timer == nullptr) {
        timer = std::make_unique<ProgramTimer>();
        ProgramTimer* made = timer.get();
        QObject::connect(&made->ticks, &QTimer::timeout, [made, window, id] {
            if (!std::exchange(made->waiting, true)) {
                auto* event = new MessageEvent(MESSAGE_EVENT, window, WM_TIMER, id, 0);
                event->from_timer = true;
                QCoreApplication::postEvent(dispatcher, event);
            }
        });
    }
    timer->ticks.start(period_ms);
}

void kill_timer(WindowHandle window, int id) {
    timers.erase({window, id});
}

int run_message_loop() {
    watch_instance_socket();
    if (!quit_asked) {
        QApplication::exec();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return quit_code;
}

void post_quit(int code) {
    quit_asked = true;
    quit_code = code;
    QCoreApplication::exit(code);
}

}  // namespace hexlane::platform
