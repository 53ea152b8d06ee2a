// Painting, looked at in the cells of the test desktop.

#include "unit/view/document_fixture.h"

#include "view/text_view.h"

#include <cstring>

namespace hexlane {
namespace {

using platform::screen_cell;
using platform::screen_row;

constexpr platform::Color COLOR_X = 0x0000FF;
constexpr platform::Color COLOR_Y = 0xFF0000;
constexpr platform::Color COLOR_COMMENT = 0x008000;
constexpr platform::Color COLOR_CHANGES = 0x808000;

class TextViewTest : public DocumentTest {
protected:
    void SetUp() override {
        DocumentTest::SetUp();
        child[0].colors_enabled = 1;
        child[0].color_table['X' - 'A'] = {COLOR_X, 1, 0};
        child[0].color_table['Y' - 'A'] = {COLOR_Y, 0, 0};
        child[0].color_table[COMMENT_SLOT] = {COLOR_COMMENT, 0, 0};
        child[0].color_table[CHANGES_SLOT] = {COLOR_CHANGES, 0, 0};
    }

    // One letter for each of the first `cols` cells of a screen row: X, Y, c (comment), C (changed), '.'
    // (black on white), '#' (white on black), '?' (anything else).
    static std::string looks(int y, int cols) {
        std::string result;
        for (int col = 0; col < cols; ++col) {
            const platform::Cell cell = screen_cell(col, y);
            const bool white_paper = cell.paper == platform::WHITE;
            if (cell.paper == platform::BLACK && cell.ink == platform::WHITE)
                result += '#';
            else if (white_paper && cell.ink == COLOR_X)
                result += 'X';
            else if (white_paper && cell.ink == COLOR_Y)
                result += 'Y';
            else if (white_paper && cell.ink == COLOR_COMMENT)
                result += 'c';
            else if (white_paper && cell.ink == COLOR_CHANGES)
                result += 'C';
            else
                result += white_paper && cell.ink == platform::BLACK ? '.' : '?';
        }
        return result;
    }

    static void block_rows(int32_t first, int32_t last) {
        child[0].block_active = 1;
        block = NO_BLOCK;
        block.start = {0, 0, first};
        block.end = {0, 0, last};
    }
};

TEST_F(TextViewTest, LettersNumbersAndCommentsTakeTheirColors) {
    const struct {
        const char* label;
        const char* text;
        bool comment_numbers;
        const char* looks;
        const char* overlay;  // where the single row's picture differs
    } cases[] = {
        {"with and without numbers", "X-1.5Y2", false, "XXXXXY.", nullptr},
        {"small letters stay black", "x12X1", false, "...XX", nullptr},
        {"a blank ends the word", "X 1.5", false, "X....", nullptr},
        {"a letter without a color ends the word", "X1G2", false, "XX..", nullptr},
        {"a number in front", "12X3", false, "..XX", nullptr},
        {"a comment hides letters and numbers", "Y(X1 y)X2", false, "YccccccXX", nullptr},
        {"an open comment runs to the row's end", "X1(Y X2", false, "XXccccc", nullptr},
        {"a parenthesis inside a comment", "((X)X", false, "ccccX", nullptr},
        {"numbers behind a comment stay black", "(A)12", false, "ccc..", nullptr},
        {"and take its color where it includes numbers", "(A)12X", true, "cccccX", "ccc..X"},
        {"a comment of the parenthesis alone", "(", true, "c", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        child[0].color_table[COMMENT_SLOT].include_numbers = c.comment_numbers;
        open_rows(std::string(c.text) + "/Y/");
        const int cols = static_cast<int>(std::strlen(c.text));
        EXPECT_EQ(looks(0, cols), c.looks);
        EXPECT_EQ(looks(1, 2), "Y.") << "a comment never goes on in the next row";
        fetch_row(0);
        repaint_row(0, false);
        EXPECT_EQ(looks(0, cols), c.overlay != nullptr ? c.overlay : c.looks);
        EXPECT_EQ(screen_row(0), c.text);
    }
}

TEST_F(TextViewTest, BehindTheLastRowAndBehindTheTextAllIsBlank) {
    open_rows(std::string(60, 'A') + "/B/");
    EXPECT_EQ(screen_row(0), std::string(40, 'A')) << "clipped, and not overwritten by blanks";
    EXPECT_EQ(screen_row(1), "B");
    open_rows("C");
    for (int y = 0; y <= 9; ++y)
        EXPECT_EQ(screen_row(y), y == 0 ? "C" : "") << "screen row " << y;
    EXPECT_TRUE(platform::caret_shown());
}

TEST_F(TextViewTest, ABlockInsideARowShowsInEveryDisplayMode) {
    open_rows("X123/X123/");
    child[0].block_active = 1;
    block.start = {1, 0, 0};
    block.end.col = 3;
    paint_view();
    EXPECT_EQ(looks(0, 4), "X##X");
    EXPECT_EQ(looks(1, 4), "XXXX");
    child[0].color_table['X' - 'A'].color = platform::WHITE;
    paint_view();
    EXPECT_EQ(looks(0, 4), "?##?") << "white words too";
    child[0].color_table['X' - 'A'].color = platform::BLACK;
    child[0].colors_enabled = 0;
    paint_view();
    EXPECT_EQ(looks(0, 4), ".##.");
    child[0].changes_colored = 1;
    paint_view();
    EXPECT_EQ(looks(0, 4), ".##.");
}

TEST_F(TextViewTest, ABlockThatGrowsOrShrinksPaintsItsOwnRowsOnly) {
    open_rows("A/B/C/D/");
    block_rows(1, 2);
    for (int y = 0; y <= 9; ++y)
        platform::draw_text(child[0].main_window, 0, y * 16, "?", 1, 0, 0xFFFFFF);
    paint_block_rows(0, 9, 40, 0);
    EXPECT_EQ(screen_row(0) + screen_row(1) + screen_row(2) + screen_row(3), "?BC?");
    EXPECT_EQ(looks(1, 1) + looks(2, 1), "##");
    block_rows(2, 2);
    paint_block_rows(0, 9, 40, 0);
    EXPECT_EQ(looks(0, 1) + looks(1, 1) + looks(2, 1) + looks(3, 1), "..#.");
    EXPECT_EQ(previous_block.start.row, 2);
}

TEST_F(TextViewTest, ARowOffTheScreenComesUpNearTheTop) {
    open_numbered_rows(100);
    EXPECT_EQ(screen_row_of(9), 9);
    EXPECT_EQ(child[0].current_row, 0) << "a row on the screen moves nothing";
    EXPECT_EQ(screen_row_of(50), 3);
    EXPECT_EQ(screen_row(3), "50");
    EXPECT_STREQ(child[0].row_text, "50");
    EXPECT_EQ(screen_row_of(3), 0);
    EXPECT_EQ(screen_row(0), "3");
    EXPECT_EQ(screen_row_of(14), 3) << "row 13 was the last on the screen";
    EXPECT_EQ(screen_row(0), "11");
}

TEST_F(TextViewTest, AMatchIsHighlightedWhereItStandsOnTheScreen) {
    open_rows("N1/N10G1X5/");
    fetch_row(1);
    show_match(1, 3, 2);
    EXPECT_EQ(looks(1, 7), "...##XX");
    EXPECT_EQ(child[0].current_row, 1);
    EXPECT_EQ(platform::caret_cell_col(), 3);
    child[0].nc_mode = 1;
    paint_view();
    fetch_row(1);
    show_match(1, 3, 20);
    EXPECT_EQ(looks(1, 14), ".....#######..") << "never more cells than the row has";
    EXPECT_EQ(child[0].caret_col, 5);
    EXPECT_STREQ(child[0].row_text, "N10G1X5");
}

}  // namespace
}  // namespace hexlane
