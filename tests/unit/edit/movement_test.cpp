// The keys that move the caret, and what they show.

#include "unit/view/document_fixture.h"

#include "shell/window.h"
#include "view/text_view.h"

namespace hexlane {
namespace {

using platform::press_key;
using platform::screen_row;

// Where the caret is: document row, screen row, column.
struct Place {
    int32_t row, screen, col;
    bool operator==(const Place&) const = default;
};

void PrintTo(const Place& place, std::ostream* out) {
    *out << "row " << place.row << " on screen row " << place.screen << ", column " << place.col;
}

Place caret_place() {
    return {child[0].current_row, child[0].caret_row, child[0].caret_col};
}

class MovementTest : public DocumentTest {
protected:
    // The view must show the rows that caret and screen row say, and the caret must stand there.
    static void expect_view_in_step() {
        for (int32_t y = 0; y <= child[0].window_rows; ++y) {
            const int32_t row = top_row() + y;
            EXPECT_EQ(screen_row(y), row < child[0].last_file_row ? std::to_string(row) : "")
                << "screen row " << y;
        }
        EXPECT_EQ(platform::caret_cell_row(), child[0].caret_row);
        EXPECT_EQ(platform::caret_cell_col(), child[0].caret_col);
        EXPECT_TRUE(platform::caret_shown());
    }
};

// A document of rows 0 to 30, the end row 30 among them, on a screen of rows 0 to 9 and 40 columns.
TEST_F(MovementTest, KeysMoveTheCaretAndScroll) {
    const struct {
        const char* label;
        Place before;
        const char* key;
        Place after;
    } cases[] = {
        {"up", {5, 5, 3}, "Up", {4, 4, 3}},
        {"up from the top of the window", {15, 0, 3}, "Up", {14, 0, 3}},
        {"up on the first row", {0, 0, 3}, "Up", {0, 0, 3}},
        {"up to the top of the window", {16, 1, 3}, "Up", {15, 0, 3}},
        {"down", {5, 5, 3}, "Down", {6, 6, 3}},
        {"down from the bottom of the window", {9, 9, 3}, "Down", {10, 9, 3}},
        {"down on the last row", {30, 9, 3}, "Down", {30, 9, 3}},
        {"left", {5, 5, 3}, "Left", {5, 5, 2}},
        {"left at column 0", {5, 5, 0}, "Left", {5, 5, 0}},
        {"left from beyond the window", {5, 5, 200}, "Left", {5, 5, 39}},
        {"right, past the text", {5, 5, 3}, "Right", {5, 5, 4}},
        {"right at the window's edge", {5, 5, 39}, "Right", {5, 5, 39}},
        {"home", {5, 5, 3}, "Home", {5, 5, 0}},
        {"end", {15, 5, 30}, "End", {15, 5, 2}},
        {"first row", {20, 5, 3}, "Ctrl+Home", {0, 0, 0}},
        {"last row", {5, 5, 3}, "Ctrl+End", {30, 9, 0}},
        {"page up", {25, 5, 3}, "PageUp", {15, 5, 3}},
        {"page up to the first page", {12, 5, 3}, "PageUp", {5, 5, 3}},
        {"page down", {5, 5, 3}, "PageDown", {15, 5, 3}},
        {"page down leaves the last screen row empty", {25, 5, 3}, "PageDown", {27, 5, 3}},
        {"page down where the caret would leave the document", {29, 9, 3}, "PageDown", {30, 8, 3}},
        {"Ctrl adds nothing to a movement", {5, 5, 3}, "Ctrl+Right", {5, 5, 4}},
        {"a key without a meaning", {5, 5, 3}, "F9", {5, 5, 3}},
        {"Esc", {5, 5, 3}, "Esc", {5, 5, 3}},
    };
    open_numbered_rows(30);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        press("PageDown");  // so that no page key finds the top row that it left last
        set_caret(c.before.row, c.before.col, c.before.screen);
        repaint_now();
        press(c.key);
        EXPECT_EQ(caret_place(), c.after);
        expect_view_in_step();
        EXPECT_EQ(child[0].modified, 0);
        EXPECT_EQ(platform::scroll_range_high(), 30 / 9);
    }
}

TEST_F(MovementTest, ADocumentShorterThanTheWindowHasOnePage) {
    open_numbered_rows(5);
    press("Down PageDown");
    EXPECT_EQ(caret_place(), (Place{1, 1, 0}));
    press("Ctrl+End");
    EXPECT_EQ(caret_place(), (Place{5, 5, 0}));
    expect_view_in_step();
}

TEST_F(MovementTest, AWindowOfTwoRows) {
    set_rows_shown(1);
    open_numbered_rows(6);
    press("Ctrl+End");
    EXPECT_EQ(caret_place(), (Place{6, 1, 0}));
    press("PageDown");
    EXPECT_EQ(caret_place(), (Place{6, 0, 0})) << "the last row is the new top";
    expect_view_in_step();
    press("Up Up");
    EXPECT_EQ(caret_place(), (Place{4, 0, 0}));
    expect_view_in_step();
}

TEST_F(MovementTest, InsertTogglesOverwritingForAllFiles) {
    open_numbered_rows(3);
    press("Insert Ctrl+Insert");
    open_numbered_rows(3);
    EXPECT_EQ(child[0].overwrite_mode, 1);
}

TEST_F(MovementTest, EndGoesBehindTheTextAsItShows) {
    const struct {
        const char* label;
        std::string text;
        bool nc_mode;
        int32_t col;
        int cols = 40;
    } cases[] = {
        {"text", "N10G1", false, 5},
        {"spread words", "N10G1", true, 7},
        {"as wide as the window", std::string(40, 'a'), false, 40},
        {"wider than the window", std::string(41, 'a'), false, 39},
        {"spread words that go on behind what shows", std::string(100, 'a'), true, 255, 300},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        set_rows_shown(9, c.cols);
        open_rows(c.text + '/');
        child[0].nc_mode = c.nc_mode;
        press("End");
        EXPECT_EQ(child[0].caret_col, c.col);
    }
}

}  // namespace
}  // namespace hexlane
