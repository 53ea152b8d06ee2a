// What typing, Tab, Enter, Backspace and Delete do to the rows.

#include "unit/view/document_fixture.h"

#include "platform/posix/file_faults.h"
#include "store/store_fault.h"
#include "view/text_view.h"

#include <cerrno>

namespace hexlane {
namespace {

using platform::screen_cell;
using platform::screen_row;

class EditingTest : public DocumentTest {
protected:
    void TearDown() override {
        platform::reset_file_faults();
        DocumentTest::TearDown();
    }
};

// The screen must show the rows themselves, and the caret where it is.
void expect_screen_shows(const std::string& rows) {
    std::istringstream each(rows);
    std::string row;
    for (int32_t skipped = 0; skipped < top_row(); ++skipped)
        std::getline(each, row, '/');
    for (int32_t y = 0; y <= child[0].window_rows; ++y) {
        if (!std::getline(each, row, '/'))
            row.clear();
        row.erase(row.find_last_not_of(' ') + 1);
        EXPECT_EQ(screen_row(y), row) << "screen row " << y;
    }
    EXPECT_TRUE(platform::caret_shown());
    EXPECT_EQ(platform::caret_cell_col(), child[0].caret_col);
    EXPECT_EQ(platform::caret_cell_row(), child[0].caret_row);
}

TEST_F(EditingTest, KeysChangeTheRows) {
    const struct {
        const char* label;
        bool overwrite;
        const char* before;
        const char* press;
        const char* after;
    } cases[] = {
        {"text goes in at the caret", false, "a|d/", "'bc", "abc|d/"},
        {"behind the text the row is filled up", false, "abc    |/", "'X", "abc    X|/"},
        {"a tab is blanks to the next multiple of five", false, "ab|c/", "Tab", "ab   |c/"},
        {"and at least one blank", false, "abcde|/", "Tab", "abcde     |/"},
        {"Enter splits", false, "ab|cd/e/", "Enter", "ab/|cd/e/"},
        {"Enter at column 0 puts a row in front", false, "|ab/", "Enter", "/|ab/"},
        {"Enter behind the text puts a row behind", false, "ab|/c/", "End Right Enter", "ab/|/c/"},
        {"Enter on a row in edit", false, "ab|/c/", "'X Enter 'Y", "abX/Y|/c/"},
        {"Enter in the empty end row", false, "ab/|", "Enter", "ab//|"},
        {"Enter behind text typed into the end row", false, "ab/|", "'X Enter", "ab/X/|"},
        {"Enter inside it", false, "ab/|", "'XY Left Enter", "ab/X/|Y/"},
        {"Enter in front of it", false, "ab/|", "'XY Home Enter", "ab//|XY/"},
        {"Ctrl+Enter drops the rest of the row", false, "ab|cd/e/", "Ctrl+Enter", "ab|/e/"},
        {"of a row in edit too", false, "ab|cd/e/", "'X Ctrl+Enter", "abX|/e/"},
        {"behind the text it drops nothing", false, "ab|/e/", "Right Ctrl+Enter", "ab |/e/"},
        {"at column 0 the whole row", false, "a/|bc/d/", "Ctrl+Enter", "a/|d/"},
        {"the end row with text typed into it", false, "a/|", "'X Home Ctrl+Enter", "a/|"},
        {"Backspace", false, "abc|d/", "Backspace", "ab|d/"},
        {"Backspace at column 0 joins", false, "ab/|cd/", "Backspace", "ab|cd/"},
        {"the row in edit too", false, "ab/|cd/", "'X Home Backspace", "ab|Xcd/"},
        {"and the end row", false, "ab/|", "Backspace", "ab|/"},
        {"on the first row it does nothing", false, "|ab/", "Backspace", "|ab/"},
        {"one cell behind the text it joins the next row", false, "ab|/cd/", "Right Backspace", "ab|cd/"},
        {"further out the caret only moves", false, "ab|/cd/", "Right Right Backspace", "ab |/cd/"},
        {"Delete", false, "a|bc/", "Delete", "a|c/"},
        {"Delete at the end joins", false, "ab|/cd/", "Delete", "ab|cd/"},
        {"Delete behind the end does nothing", false, "ab|/cd/", "Right Delete", "ab |/cd/"},
        {"Delete at the end of the last row", false, "ab/|", "Delete", "ab/|"},
        {"Delete joins the end row on", false, "ab|/", "Delete", "ab|/"},
        {"Ctrl with a letter types nothing", false, "a|b/", "Ctrl+B", "a|b/"},
        {"Esc leaves the row in edit", false, "a|b/", "'X Esc 'Y", "aXY|b/"},
        {"overwriting replaces", true, "a|bcd/", "'XY", "aXY|d/"},
        {"and goes on behind the text", true, "a|b/", "'XYZ", "aXYZ|/"},
        {"and fills the row up", true, "a|/", "Right 'X", "a X|/"},
        {"a tab is blanks over the text", true, "ab|cdef/", "Tab", "ab   |f/"},
        {"Enter only moves", true, "ab|cd/ef/", "'X Enter", "abXd/|ef/"},
        {"also to the row behind one typed at the end", true, "a/|", "'X Enter", "a/X/|"},
        {"Backspace pulls the text up all the same", true, "ab|c/", "Backspace", "a|c/"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        open_rows(c.before);
        child[0].overwrite_mode = c.overwrite;
        press(c.press);
        EXPECT_EQ(rows_with_caret(), c.after);
        EXPECT_EQ(child[0].modified, 1) << "every such key counts as an edit";
        EXPECT_EQ(block.start.row, -1) << "no block stays behind";
        EXPECT_FALSE(caret_past_end);
        expect_screen_shows(rows());
    }
}

TEST_F(EditingTest, TheCaretNeverStandsBehindTheLastRow) {
    child[0].overwrite_mode = 1;
    open_rows("a/|");
    press("Enter");
    EXPECT_EQ(rows_with_caret(), "a/|");
    EXPECT_TRUE(caret_past_end);
}

// Row length and caret column before and after one key.
TEST_F(EditingTest, RowsEndAtTheirLimits) {
    const struct {
        const char* label;
        bool overwrite;
        int length, col;
        const char* press;
        int length_after, col_after;
    } cases[] = {
        {"the 250th character", false, 249, 10, "'X", 250, 11},
        {"the 251st is refused", false, 250, 10, "'X", 250, 10},
        {"a longer row takes none either", false, 254, 10, "'X", 254, 10},
        {"filling up to the limit", false, 3, 249, "'X", 250, 250},
        {"filling up past the limit", false, 3, 250, "'X", 3, 250},
        {"a tab up to the limit", false, 248, 6, "Tab", 250, 8},
        {"a tab at the limit", false, 250, 6, "Tab", 250, 6},
        {"overwriting at index 250", true, 250, 250, "'X", 251, 251},
        {"overwriting behind it", true, 251, 251, "'X", 251, 251},
        {"overwriting in a longer row", true, 254, 250, "'X", 254, 251},
        {"filling up to index 250", true, 3, 250, "'X", 251, 251},
        {"a tab that overwrites up to it", true, 251, 246, "Tab", 251, 250},
        {"and stops behind it", true, 251, 250, "Tab", 251, 251},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        open_rows(std::string(static_cast<size_t>(c.length), 'a') + '/');
        child[0].overwrite_mode = c.overwrite;
        set_caret(0, c.col);
        press(c.press);
        EXPECT_EQ(rows().size(), static_cast<size_t>(c.length_after) + 1);
        EXPECT_EQ(child[0].caret_col, c.col_after);
        EXPECT_EQ(child[0].modified, 1);
        EXPECT_EQ(child[0].pending_row, 0) << "a refused character marks the row all the same";
    }
    EXPECT_EQ(platform::beep_count(), 0) << "limits are silent";
}

TEST_F(EditingTest, RowsJoinUpToTheLimit) {
    for (const int second_length : {150, 151}) {
        for (const char* key : {"Delete", "Backspace"}) {
            SCOPED_TRACE(key + std::to_string(second_length));
            const std::string first(100, 'a');
            const std::string second(static_cast<size_t>(second_length), 'b');
            open_rows(first + (key[0] == 'D' ? "|/" : "/|") + second + "/c/");
            press(key);
            EXPECT_EQ(rows_with_caret(), first + (second_length > 150 ? "|/" : "|") + second + "/c/");
        }
    }
}

// Rows as stored, and the caret's row on the screen, where '|' marks it among the spread words.
TEST_F(EditingTest, InNcModeTheCaretMeansTheTextUnderIt) {
    const struct {
        const char* label;
        const char* before;
        int row, col;
        const char* press;
        const char* after;
        const char* screen;
    } cases[] = {
        {"a letter starts a word of its own", "N10X5/", 0, 2, "'g", "N1g0X5/", "N1   g|0   X5"},
        {"the caret follows the word that moves", "N10/", 0, 3, "'X5", "N10X5/", "N10  X5|"},
        {"in a gap text goes in front of the word", "N10X5/", 0, 4, "'7", "N107X5/", "N107| X5"},
        {"behind the text nothing is filled up", "N10/", 0, 20, "'1", "N101/", "N101|"},
        {"Delete in a gap takes the next letter", "N10X5/", 0, 3, "Delete", "N105/", "N10|5"},
        {"Delete clears what the row leaves", "N10X5Y6/", 0, 5, "Delete", "N105Y6/", "N105 |Y6"},
        {"Delete behind the text joins", "N1/X5/", 0, 9, "Delete", "N1X5/", "N1   X5  |"},
        {"Backspace steps over a gap", "N10X5/", 0, 5, "Backspace", "N1X5/", "N1|   X5"},
        {"Backspace behind the text", "N10X5/", 0, 20, "Backspace", "N10X/", "N10  X|"},
        {"Backspace at column 0 joins", "N1X2/Y3/", 1, 0, "Backspace", "N1X2Y3/", "N1   X2|   Y3"},
        {"Enter splits at the word", "N10X5/", 0, 5, "Enter", "N10/X5/", "|X5"},
        {"Ctrl+Enter drops from the word on", "N10X5/", 0, 5, "Ctrl+Enter", "N10/", "N10  |"},
        {"a tab types blanks", "N10/", 0, 3, "Tab", "N10  /", "N10  |"},
    };
    child[0].nc_mode = 1;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        open_rows(c.before);
        set_caret(c.row, c.col);
        press(c.press);
        EXPECT_EQ(rows(), c.after) << "a pending text is not the spread form";
        EXPECT_EQ(screen_with_caret(child[0].caret_row), c.screen);
    }
}

TEST_F(EditingTest, RepeatsAndCodesThatAreNotTaken) {
    open_rows("ab/");
    for (const int code : {0x80, 0xC4, 0xFF, 1, 0x1A, -1})
        handle_char(code, 1);
    EXPECT_EQ(rows(), "ab/");
    EXPECT_EQ(child[0].pending_row, 0) << "they only mark the row";
    handle_char('x', 3);
    handle_char(127, 1);
    EXPECT_EQ(rows_with_caret(), "xxx\x7F|ab/");
    handle_char(8, 2);
    EXPECT_EQ(rows_with_caret(), "xx|ab/");
    handle_char(13, 2);
    EXPECT_EQ(rows_with_caret(), "xx//|ab/");
}

// NC Mode can bring the caret so far out; the sanitizers watch.
TEST_F(EditingTest, DeleteFarBehindTheTextTakesNothing) {
    open_rows("ab|/cd/");
    child[0].caret_col = 300;
    press("Delete");
    EXPECT_EQ(rows(), "ab/cd/");
}

TEST_F(EditingTest, EditsAtTheEdgesOfTheWindowScroll) {
    open_numbered_rows(30);
    set_caret(8, 1);
    press("Enter");
    EXPECT_EQ(screen_row(0) + " " + screen_row(8) + " " + screen_row(9), "0 8 ");
    press("Enter");
    EXPECT_EQ(child[0].current_row, 10);
    EXPECT_EQ(child[0].caret_row, 9);
    EXPECT_EQ(screen_row(0) + " " + screen_row(7) + " " + screen_row(9), "1 8 ");
    EXPECT_EQ(platform::scroll_range_high(), 32 / 9);
    set_caret(20, 0, 0);
    paint_view();
    press("Backspace");
    EXPECT_EQ(child[0].current_row, 19);
    EXPECT_EQ(child[0].caret_row, 0);
    EXPECT_EQ(screen_row(0) + " " + screen_row(1), "1718 19");
}

TEST_F(EditingTest, ACharacterEndsABlockAndGoesInAtTheCaret) {
    open_rows("abc/d|ef/");
    child[0].block_active = 1;
    block.start = {0, 0, 0};
    block.end = {0, 0, 0};
    paint_view();
    EXPECT_EQ(screen_cell(0, 0).paper, platform::BLACK);
    handle_char('X', 1);
    EXPECT_EQ(rows(), "abc/dXef/") << "the row is fetched again behind the repaint";
    EXPECT_EQ(child[0].block_active, 0);
    EXPECT_EQ(block.start.row, -1);
    EXPECT_EQ(screen_cell(0, 0).paper, platform::WHITE);
    expect_screen_shows(rows());
}

TEST_F(EditingTest, AStoreThatTakesNoEditsRefusesThemWithABeep) {
    open_rows("|ab/cd/");
    press("'X");
    platform::fill_disk_after(0);
    platform::answer_box("OK");
    press("Down");
    ASSERT_EQ(unsaved_row.row, 0) << "the row could not be stored";
    child[0].modified = 0;
    int beeps = platform::beep_count();
    for (const char* key : {"'Y", "Delete", "Backspace", "Enter", "Ctrl+Enter", "Tab", "Ctrl+B"}) {
        SCOPED_TRACE(key);
        set_caret(1, 1);
        press(key);
        EXPECT_EQ(platform::beep_count(), ++beeps);
        EXPECT_EQ(child[0].pending_row, -1);
        EXPECT_EQ(child[0].modified, 0);
    }
    press("Esc");
    EXPECT_EQ(platform::beep_count(), beeps) << "no edit, nothing to refuse";
    EXPECT_EQ(rows(), "Xab/cd/");
    platform::reset_file_faults();
    press("'Y");
    EXPECT_EQ(rows(), "Xab/cYd/") << "there is space again";
    EXPECT_EQ(unsaved_row.row, -1);
}

TEST_F(EditingTest, ARowThatCannotBeReadIsNotEdited) {
    open_numbered_rows(20000);
    set_caret(10000, 0, 0);
    platform::fail_file_call(platform::FileCall::READ, 1, EIO, "", -1);
    platform::answer_box("OK");
    press("'X Delete");
    EXPECT_EQ(platform::beep_count(), 2);
    EXPECT_EQ(child[0].pending_row, -1);
    EXPECT_EQ(child[0].modified, 0);
    platform::reset_file_faults();
    press("'X");
    EXPECT_STREQ(child[0].row_text, "X10000");
}

}  // namespace
}  // namespace hexlane
