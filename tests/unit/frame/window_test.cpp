// The window procedure: what messages do with and without a file, and the one timer of the window.

#include "shell/window.h"

#include "frame/commands.h"
#include "platform/scripted/test_hooks.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/ui_timer.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

class WindowTest : public ProgramTest {
protected:
    static void send(uint32_t message, int64_t first = 0, int64_t second = 0) {
        send_message(child[0].main_window, message, first, second);
    }

    static void mark_block(int16_t from, int16_t behind) {
        block.start = {from, 0, 0};
        block.end = {behind, 0, -1};
        child[0].block_active = 1;
    }
};

TEST_F(WindowTest, AMessageFromAControlStoresTheRowAndDoesNothingElse) {
    start_with("G0\r\n");
    type_text("X");
    send(WM_COMMAND, 1035, make_parameter(7, 0));
    EXPECT_TRUE(child[0].file_open);
    EXPECT_EQ(child[0].pending_row, -1);
    EXPECT_EQ(origins(), "CO");
    // The upper half of either parameter means nothing.
    send(WM_COMMAND, make_parameter(COMMAND_NC_MODE, 5), make_parameter(0, 9));
    EXPECT_TRUE(child[0].nc_mode);
    for (const int unknown : {0, 1029, 1038, 1043, 9999})
        send(WM_COMMAND, unknown);
    EXPECT_TRUE(child[0].file_open);
}

TEST_F(WindowTest, WithoutAFileInputAndFocusChangeNothing) {
    start();
    child[0].pending_row = 3;
    send(WM_KILLFOCUS);
    EXPECT_EQ(child[0].pending_row, 3);
    child[0].pending_row = -1;
    for (const uint32_t message : {WM_KEYDOWN, WM_CHAR, WM_KEYUP, WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP,
                                   WM_NCLBUTTONUP, WM_VSCROLL, WM_HSCROLL, WM_MOVE})
        send(message, VK_DOWN, make_parameter(1, 1));
    EXPECT_FALSE(child[0].modified);
    EXPECT_FALSE(child[0].mouse_pressed);
    EXPECT_EQ(child[0].pending_row, -1);
    EXPECT_FALSE(timer_running(UI_TIMER));
    EXPECT_FALSE(caret_shown());
}

TEST_F(WindowTest, TypingReplacesABlockAndKeysThatMoveDoNot) {
    struct Case {
        const char* key;
        const char* row;
    };
    // Backspace and Delete act on the block alone.
    const Case cases[] = {{"7", "7CD"},      {"Space", " CD"}, {"Backspace", "CD"}, {"Delete", "CD"},
                          {"Right", "ABCD"}, {"Esc", "ABCD"},  {"End", "ABCD"},     {"F9", "ABCD"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        begin_anew();
        start_with("ABCD\r\n");
        mark_block(0, 2);
        press_key(c.key);
        EXPECT_EQ(rows()[0], c.row);
    }
}

TEST_F(WindowTest, OneTimerServesTwoUsesOneAtATime) {
    stop_ui_timer();  // of a test before, in the same process
    start_with("G0\r\n");
    set_ui_timer(UI_TIMER_SLOW);
    EXPECT_EQ(timer_period(UI_TIMER), 1000);
    EXPECT_TRUE(slow_timer_running());
    set_ui_timer(UI_TIMER_DRAG);
    EXPECT_EQ(timer_period(UI_TIMER), 50);
    EXPECT_TRUE(drag_timer_running());
    EXPECT_FALSE(slow_timer_running());

    // Asking again for the use that runs does not put its next tick off.
    set_ui_timer(UI_TIMER_SLOW);
    advance_clock(700);
    set_ui_timer(UI_TIMER_SLOW);
    EXPECT_TRUE(timer_running(UI_TIMER));
    advance_clock(300);  // the first tick of the slow use finds no transfer and stops the timer
    EXPECT_FALSE(timer_running(UI_TIMER));
    EXPECT_FALSE(slow_timer_running());

    // A press of the button takes it for dragging, the release gives it back.
    send(WM_LBUTTONDOWN, MK_LBUTTON, make_parameter(0, 0));
    EXPECT_EQ(timer_period(UI_TIMER), 50);
    advance_clock(5000);
    EXPECT_TRUE(drag_timer_running());
    send(WM_LBUTTONUP, 0, make_parameter(0, 0));
    EXPECT_EQ(timer_period(UI_TIMER), 1000);
    advance_clock(1000);
    EXPECT_FALSE(timer_running(UI_TIMER));
}

}  // namespace
}  // namespace hexlane
