// Blocks in the whole program: what shows them, what ends them, and the menu beside them.

#include "frame/commands.h"
#include "platform/messages.h"
#include "platform/scripted/person.h"
#include "platform/scripted/test_hooks.h"
#include "shell/block.h"
#include "shell/child.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr int CUT = 1008;
constexpr int COPY = 1009;

class BlockTest : public ProgramTest {
protected:
    static void mouse(MouseAct act, int col, int row) {
        ASSERT_EQ(person_uses_mouse({.act = act, .col = col, .row = row}), "");
    }

    static void expect_no_block() {
        EXPECT_EQ(child[0].block_active, 0);
        EXPECT_EQ(block.start.row, -1);
        EXPECT_TRUE(caret_shown());
        EXPECT_FALSE(menu_enabled(CUT));
        EXPECT_FALSE(menu_enabled(COPY));
    }
};

TEST_F(BlockTest, AStepBehindAPageKeepsTheRowsOfThePage) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += std::to_string(i) + "\r\n";
    start_with(text);
    press_key("Shift+PageDown");
    const int32_t last = block.end.row;
    ASSERT_GT(last, 0);
    press_key("Shift+Down");
    EXPECT_EQ(block.start.row, 0);
    EXPECT_EQ(block.end.row, last);
    EXPECT_EQ(child[0].current_row, last + 1);
    press_key("Shift+Down");
    EXPECT_EQ(block.end.row, last + 1);
}

TEST_F(BlockTest, HomeAndEndWithShiftShowTheCaretsPage) {
    for (const char* key : {"Shift+Home", "Shift+End"}) {
        set_window_size(80, 6);
        start_with("AAA\r\nBBB\r\nCCC\r\nDDD\r\nEEE\r\n");
        for (const char* way : {"Right", "Down", "Down", "Down"})
            press_key(way);
        ASSERT_EQ(scroll_position_now(), 0) << "nothing has been painted since";
        press_key(key);
        EXPECT_EQ(scroll_position_now(), 1) << key;
        begin_anew();
    }
    set_window_size(80, 28);
}

TEST_F(BlockTest, APastedRowShowsWhatAFetchBringsOfIt) {
    set_window_size(300, 28);
    start_with("12345\r\n" + std::string(250, 'A') + "\r\n");
    press_key("Shift+End");
    press_key("Ctrl+C");
    press_key("Esc");
    press_key("Down");
    press_key("Ctrl+V");
    EXPECT_EQ(screen_row(1), rows()[1]);
    EXPECT_EQ(screen_row(1).size(), 254U) << "the last of the 255 characters is there, but not seen";
    set_window_size(80, 28);
}

TEST_F(BlockTest, ADragThatHasSeenNoCellLeavesNoBlock) {
    start_with("ABC\r\nDEF\r\n");
    mouse(MouseAct::MOVE, 1, 1);
    mouse(MouseAct::DOWN, 1, 1);
    mouse(MouseAct::MOVE, -4, 1);
    mouse(MouseAct::UP, -4, 1);
    expect_no_block();
}

TEST_F(BlockTest, CloseClearsTheWholeWidthOfABlock) {
    set_window_size(600, 28);
    start_with("ABC\r\nDEF\r\n");
    press_key("Shift+Down");
    ASSERT_EQ(screen_cell(599, 0).paper, BLACK);
    command(1035);
    for (const int col : {0, 254, 255, 599})
        EXPECT_EQ(screen_cell(col, 0).paper, WHITE) << col;
    set_window_size(80, 28);
}

TEST_F(BlockTest, AScrollThatEndsABlockGraysItsCommands) {
    start_with("ABC\r\nDEF\r\n");
    press_key("Shift+Down");
    ASSERT_TRUE(menu_enabled(CUT));
    send_message(child[0].main_window, WM_VSCROLL, SB_LINEUP, 0);
    expect_no_block();
}

}  // namespace
}  // namespace hexlane
