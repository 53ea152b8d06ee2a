// How rows map to the scroll bar, and what the bar shows with and without a file.

#include "shell/scroll.h"

#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

TEST(ScrollMapping, OneUnitIsAPageUntilTheBarsRangeIsUsedUp) {
    struct Case {
        const char* label;
        int32_t last_row;
        int32_t window_rows;
        int max;
        bool pages;
    };
    const Case cases[] = {
        {"one row", 0, 25, 0, true},
        {"less than a page", 24, 25, 0, true},
        {"a page", 25, 25, 1, true},
        {"the last document of pages", 30001 * 25 - 1, 25, 30000, true},
        {"one row more", 30001 * 25, 25, 30000, false},
        {"the smallest window, all pages", 30000, 1, 30000, true},
        {"the smallest window, one row more", 30001, 1, 30000, false},
        {"as long as a document can be", 4999999, 1, 30000, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        child[0].last_file_row = c.last_row;
        child[0].window_rows = c.window_rows;
        update_scroll_values();
        EXPECT_EQ(child[0].vscroll_max, c.max);
        EXPECT_EQ(scroll_position_of(0), 0);
        const int32_t at_the_end = scroll_position_of(c.last_row);
        EXPECT_LE(at_the_end, c.max);
        EXPECT_GE(at_the_end, c.pages ? c.max : c.max - 1);  // a float may round down by one
        const float rows_per_unit = static_cast<float>(c.last_row / 30000.0);
        EXPECT_EQ(child[0].vscroll_scale, c.pages ? 1.0F : rows_per_unit);
    }
    child[0].last_file_row = 3000000;
    child[0].window_rows = 25;
    update_scroll_values();
    EXPECT_EQ(scroll_position_of(1500000), 15000);
    reset_child();
}

class ScrollBarTest : public ProgramTest {};

TEST_F(ScrollBarTest, TheBarFollowsDocumentAndWindow) {
    std::string text;
    for (int row = 0; row < 99; row++)
        text += "G" + std::to_string(row) + "\r\n";
    set_window_size(40, 13);  // pages of 10 rows
    start_with(text);
    EXPECT_EQ(scroll_range_high(), 9);
    child[0].current_row = 35;
    send_message(child[0].main_window, WM_PAINT, 0, 0);
    EXPECT_EQ(scroll_position_now(), 3);
    press_key("Ctrl+End");
    EXPECT_EQ(scroll_position_now(), 9);
    press_key("Enter");
    EXPECT_EQ(scroll_range_high(), 10);
    set_window_size(40, 23);
    EXPECT_EQ(scroll_range_high(), 5);
    EXPECT_EQ(scroll_position_now(), 5);
    answer_box("No");
    command(1035);
    EXPECT_EQ(scroll_range_high(), 0) << "no file is open";
    EXPECT_EQ(scroll_position_now(), 0);
    set_window_size(80, 28);
}

}  // namespace
}  // namespace hexlane
