// console_test.cpp: the message queue of programs without a window: order, timers, workers, signals.

#include "platform/console/console.h"
#include "platform/desktop.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <string>

using namespace hexlane::platform;

namespace {

constexpr uint32_t NOTE = 0x8200;
constexpr uint32_t DOUBLED = 0x8201;
constexpr uint32_t STOP = 0x8202;

std::string heard;
int ticks_wanted = 0;

int64_t listen(WindowHandle, uint32_t message, int64_t first, int64_t second) {
    if (message == NOTE)
        heard += static_cast<char>(first);
    if (message == WM_TIMER)
        heard += std::to_string(first);
    if (message == WM_TIMER && --ticks_wanted == 0)
        post_quit(7);
    if (message == STOP)
        post_quit(static_cast<int>(first));
    return message == DOUBLED ? 2 * first + second : 0;
}

WindowHandle window() {
    static const WindowHandle made = [] {
        start_console();
        return make_console_window(listen);
    }();
    heard.clear();
    return made;
}

std::atomic<int64_t> answer;

int64_t ask(int64_t target) {
    answer = send_message(static_cast<WindowHandle>(target), DOUBLED, 20, 2);
    post_message(static_cast<WindowHandle>(target), STOP, 5, 0);
    return 0;
}

TEST(Console, ServesPostedMessagesInOrderAndBeforeTimers) {
    const WindowHandle target = window();
    ticks_wanted = 3;
    start_timer(target, 4, 1);
    for (const char c : {'a', 'b', 'c'})
        post_message(target, NOTE, c, 0);
    EXPECT_EQ(run_message_loop(), 7);
    kill_timer(target, 4);
    EXPECT_EQ(heard, "abc444");
    EXPECT_FALSE(pump_one_message());
}

TEST(Console, StartingATimerAgainGivesItTheNewPeriod) {
    const WindowHandle target = window();
    ticks_wanted = 2;
    start_timer(target, 1, 1);
    start_timer(target, 1, 1'000'000);
    start_timer(target, 2, 1);
    EXPECT_EQ(run_message_loop(), 7);
    kill_timer(target, 1);
    kill_timer(target, 2);
    EXPECT_EQ(heard, "22");
}

TEST(Console, AWorkersSendIsServedInTheLoopAndWhileItIsJoined) {
    const WindowHandle target = window();
    for (const bool joined_first : {false, true}) {
        answer = 0;
        const ThreadHandle worker = thread_start(ask, target, ThreadPriority::NORMAL);
        if (joined_first)
            thread_join(worker);
        EXPECT_EQ(run_message_loop(), 5);
        thread_join(worker);
        EXPECT_EQ(answer, 42);
    }
}

TEST(Console, ASignalIsPosted) {
    post_signals(window(), STOP);
    std::raise(SIGTERM);
    EXPECT_EQ(run_message_loop(), SIGTERM);
}

TEST(Console, ABoxTakesTheDefaultButtonAndPrintsItsParagraphs) {
    const struct {
        const char *text, *title;
        BoxIcon icon;
        const char* printed;
    } cases[] = {
        {"Port is\n active.\n\nGo on?", "Title", BoxIcon::QUESTION,
         "hexlane-cli: Port is active.\n  Go on? Yes.\n"},
        {" Error: no printer ", " COMMDLG.DLL ERROR ", BoxIcon::STOP, "hexlane-cli: no printer\n"},
        {"", "Title", BoxIcon::STOP, "hexlane-cli: \n"},
    };
    for (const auto& c : cases) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(message_box(c.text, c.title, c.icon, BUTTONS_YES_NO), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.printed);
    }
}

}  // namespace
