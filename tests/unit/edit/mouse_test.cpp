// The caret by mouse, and the scroll bars.

#include "unit/view/document_fixture.h"

#include "edit/mouse.h"
#include "view/text_view.h"

namespace hexlane {
namespace {

using platform::screen_row;

class MouseTest : public DocumentTest {
protected:
    static void click(int col, int row) {
        handle_mouse_down(platform::MK_LBUTTON, col * platform::CELL_WIDTH + 7,
                          row * platform::CELL_HEIGHT + 15);
        EXPECT_FALSE(platform::caret_shown()) << "hidden while the button is down";
        handle_mouse_up(col * platform::CELL_WIDTH, row * platform::CELL_HEIGHT);
        EXPECT_TRUE(platform::caret_shown());
    }
};

TEST_F(MouseTest, AClickMovesTheCaretToItsCell) {
    const struct {
        const char* label;
        int col, row;
        int32_t to_col, to_row;
    } cases[] = {
        {"on text", 1, 3, 1, 3},
        {"behind the text", 30, 2, 30, 2},
        {"below the last row", 4, 8, 4, 5},
        {"behind the last column", 40, 1, 40, 1},
        {"outside the text area", 41, 1, 2, 2},
        {"below the text area", 3, 10, 2, 2},
    };
    open_numbered_rows(5);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        set_caret(2, 2);
        click(c.col, c.row);
        EXPECT_EQ(child[0].current_row, c.to_row);
        EXPECT_EQ(child[0].caret_row, c.to_row);
        EXPECT_EQ(child[0].caret_col, c.to_col);
        EXPECT_EQ(platform::caret_cell_row(), c.to_row);
        EXPECT_EQ(child[0].block_active, 0);
    }
}

TEST_F(MouseTest, LinesScrollTheDocumentUnderTheCaret) {
    open_numbered_rows(100);
    set_caret(9, 2);
    for (int i = 0; i < 10; ++i)
        handle_vscroll(platform::SB_LINEDOWN, 0);
    EXPECT_EQ(screen_row(0), "10");
    EXPECT_EQ(child[0].current_row, 19);
    EXPECT_EQ(child[0].caret_row, 9);
    EXPECT_EQ(platform::scroll_position_now(), 19 / 9) << "the caret's page";
    handle_vscroll(platform::SB_LINEUP, 0);
    EXPECT_EQ(screen_row(0), "9");
    EXPECT_EQ(platform::scroll_position_now(), 1) << "the view's, where it starts on one";
    for (int i = 0; i < 20; ++i)
        handle_vscroll(platform::SB_LINEUP, 0);
    EXPECT_EQ(screen_row(0), "0");
    EXPECT_EQ(child[0].current_row, 9);
    for (int i = 0; i < 200; ++i)
        handle_vscroll(platform::SB_LINEDOWN, 0);
    EXPECT_EQ(child[0].current_row, 100) << "the last row stops it";
    EXPECT_EQ(child[0].caret_row, 9);
}

TEST_F(MouseTest, ThumbAndPagesMoveTheView) {
    open_numbered_rows(100);
    set_caret(4, 2);
    press("'X");
    handle_vscroll(platform::SB_THUMBTRACK, 5);
    EXPECT_EQ(screen_row(0), "0") << "it moves when the thumb is let go";
    EXPECT_EQ(child[0].pending_row, -1);
    handle_vscroll(platform::SB_THUMBPOSITION, 5);
    EXPECT_EQ(screen_row(0), "45");
    EXPECT_EQ(child[0].current_row, 49);
    handle_vscroll(platform::SB_THUMBPOSITION, 11);
    EXPECT_EQ(screen_row(0), "99");
    EXPECT_EQ(child[0].current_row, 100);
    EXPECT_EQ(child[0].caret_row, 1);
    handle_vscroll(platform::SB_PAGEUP, 0);
    EXPECT_EQ(screen_row(0), "89");
    handle_vscroll(platform::SB_PAGEDOWN, 0);
    EXPECT_EQ(screen_row(0), "92") << "one screen row stays empty";
    handle_vscroll(platform::SB_THUMBPOSITION, 60000);
    EXPECT_EQ(child[0].current_row, 100);
    EXPECT_EQ(child[0].caret_row, 0);
}

// Text in the end row brings a new end row, whatever stores it, and whether or not anything is painted then.
TEST_F(MouseTest, TheRangeOfTheScrollBarFollowsTheNumberOfRows) {
    const struct {
        const char* label;
        void (*act)();
    } cases[] = {{"a scroll that moves nothing", [] { handle_vscroll(platform::SB_LINEUP, 0); }},
                 {"a key that moves within the row", [] { press("Right"); }},
                 {"another window",
                  [] { platform::send_message(child[0].main_window, platform::WM_KILLFOCUS, 0, 0); }}};
    set_rows_shown(1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        open_numbered_rows(1);
        EXPECT_EQ(platform::scroll_range_high(), 1);
        set_caret(1, 0);
        press("'X");
        c.act();
        ASSERT_EQ(rows(), "0/X/");
        EXPECT_EQ(platform::scroll_range_high(), 2);
    }
}

TEST_F(MouseTest, TheThumbAtTheBottomOfAVeryLongDocumentShowsItsEnd) {
    set_rows_shown(1);
    open_rows(std::string(30001, '/') + "end/");
    ASSERT_EQ(child[0].vscroll_max, 30000);
    ASSERT_GT(child[0].vscroll_scale, 1.0F);
    handle_vscroll(platform::SB_THUMBPOSITION, 30000);
    EXPECT_GE(top_row(), 30001);
    EXPECT_LE(child[0].current_row, child[0].last_file_row);
    EXPECT_GE(child[0].caret_row, 0);
    EXPECT_LE(platform::scroll_position_now(), 30000);
}

TEST_F(MouseTest, SidewaysRequestsMoveTheCaretWithinTheWindow) {
    const struct {
        int request;
        int32_t from, to;
    } cases[] = {{platform::SB_LINELEFT, 20, 4},   {platform::SB_LINELEFT, 15, 15},
                 {platform::SB_LINERIGHT, 20, 36}, {platform::SB_LINERIGHT, 30, 39},
                 {platform::SB_PAGELEFT, 39, 39},  {platform::SB_PAGERIGHT, 3, 39}};
    open_numbered_rows(3);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.request) + " at " + std::to_string(c.from));
        set_caret(0, c.from);
        handle_hscroll(c.request);
        EXPECT_EQ(child[0].caret_col, c.to);
        EXPECT_EQ(screen_row(1), "1");
    }
}

}  // namespace
}  // namespace hexlane
