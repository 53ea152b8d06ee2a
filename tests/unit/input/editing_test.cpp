// What typing, Tab, Enter, Backspace and Delete do to the rows. A '|' marks the caret in a row's text.

#include "unit/view/document_fixture.h"

#include "platform/posix/file_faults.h"
#include "store/block_buffer.h"
#include "store/store_fault.h"
#include "view/text_view.h"

namespace hexlane {
namespace {

using platform::press_key;
using platform::screen_cell;
using platform::screen_row;
using platform::type_text;

using Presses = std::vector<std::string>;

class EditingTest : public DocumentTest {
protected:
    void TearDown() override {
        platform::reset_file_faults();
        DocumentTest::TearDown();
    }

    // Opens rows of which one has a '|' where the caret is to stand. Blanks in front of it at the row's end
    // put it behind the text.
    void open_marked(Rows rows) {
        int32_t caret_row = 0;
        int32_t caret_col = 0;
        for (size_t row = 0; row < rows.size(); ++row) {
            const size_t mark = rows[row].find('|');
            if (mark == std::string::npos)
                continue;
            caret_row = static_cast<int32_t>(row);
            caret_col = static_cast<int32_t>(mark);
            rows[row].erase(mark, 1);
            if (mark == rows[row].size())
                rows[row].erase(rows[row].find_last_not_of(' ') + 1);
        }
        open_rows(rows);
        set_caret(caret_row, caret_col);
    }

    // What the screen must show: the rows themselves, but for blanks at their ends.
    static void expect_screen_shows_rows() {
        Rows all = rows();
        all.resize(static_cast<size_t>(top_row() + child[0].window_rows + 1));
        for (int32_t y = 0; y <= child[0].window_rows; ++y) {
            std::string row = all[static_cast<size_t>(top_row() + y)];
            row.erase(row.find_last_not_of(' ') + 1);
            EXPECT_EQ(screen_row(y), row) << "screen row " << y;
        }
    }
};

struct EditCase {
    const char* label;
    Rows before;
    Presses presses;
    Rows after;
};

TEST_F(EditingTest, InsertMode) {
    const EditCase cases[] = {
        {"text goes in at the caret", {"a|d", ""}, {"'bc"}, {"abc|d", ""}},
        {"behind the text the row is filled up", {"abc    |", ""}, {"'X"}, {"abc    X|", ""}},
        {"a tab is blanks to the next multiple of five", {"ab|c", ""}, {"Tab"}, {"ab   |c", ""}},
        {"and at least one blank", {"abcde|", ""}, {"Tab"}, {"abcde     |", ""}},
        {"Enter splits", {"ab|cd", "e", ""}, {"Enter"}, {"ab", "|cd", "e", ""}},
        {"Enter at column 0 puts a row in front", {"|ab", ""}, {"Enter"}, {"", "|ab", ""}},
        {"Enter behind the text puts a row behind", {"ab  |", "c", ""}, {"Enter"}, {"ab", "|", "c", ""}},
        {"Enter on a row in edit", {"ab|", "c", ""}, {"'X", "Enter", "'Y"}, {"abX", "Y|", "c", ""}},
        {"Enter in the empty end row", {"ab", "|"}, {"Enter"}, {"ab", "", "|"}},
        {"Enter behind text typed into the end row", {"ab", "|"}, {"'X", "Enter"}, {"ab", "X", "|"}},
        {"Enter inside it", {"ab", "|"}, {"'XY", "Left", "Enter"}, {"ab", "X", "|Y", ""}},
        {"Enter in front of it", {"ab", "|"}, {"'XY", "Home", "Enter"}, {"ab", "", "|XY", ""}},
        {"Ctrl+Enter drops the rest of the row", {"ab|cd", "e", ""}, {"Ctrl+Enter"}, {"ab|", "e", ""}},
        {"of a row in edit too", {"ab|cd", "e", ""}, {"'X", "Ctrl+Enter"}, {"abX|", "e", ""}},
        {"behind the text it drops nothing", {"ab  |", "e", ""}, {"Ctrl+Enter"}, {"ab  |", "e", ""}},
        {"at column 0 the whole row", {"a", "|bc", "d", ""}, {"Ctrl+Enter"}, {"a", "|d", ""}},
        {"the end row with text typed into it", {"a", "|"}, {"'X", "Home", "Ctrl+Enter"}, {"a", "|"}},
        {"Backspace", {"abc|d", ""}, {"Backspace"}, {"ab|d", ""}},
        {"Backspace at column 0 joins", {"ab", "|cd", ""}, {"Backspace"}, {"ab|cd", ""}},
        {"the row in edit too", {"ab", "|cd", ""}, {"'X", "Home", "Backspace"}, {"ab|Xcd", ""}},
        {"the end row", {"ab", "|"}, {"Backspace"}, {"ab|", ""}},
        {"on the first row it does nothing", {"|ab", ""}, {"Backspace"}, {"|ab", ""}},
        {"one cell behind the text it joins the next row", {"ab |", "cd", ""}, {"Backspace"}, {"ab|cd", ""}},
        {"further out the caret only moves", {"ab   |", "cd", ""}, {"Backspace"}, {"ab  |", "cd", ""}},
        {"Delete", {"a|bc", ""}, {"Delete"}, {"a|c", ""}},
        {"Delete at the end joins", {"ab|", "cd", ""}, {"Delete"}, {"ab|cd", ""}},
        {"Delete behind the end does nothing", {"ab  |", "cd", ""}, {"Delete"}, {"ab  |", "cd", ""}},
        {"Delete at the end of the last row", {"ab", "|"}, {"Delete"}, {"ab", "|"}},
        {"Delete joins the end row on", {"ab|", ""}, {"Delete"}, {"ab|", ""}},
        {"Ctrl with a letter types nothing", {"a|b", ""}, {"Ctrl+B"}, {"a|b", ""}},
        {"many keys",
         {"|", "z", ""},
         {"'G1 X5", "Enter", "'Y6", "Left", "Delete", "Backspace", "Backspace", "'!"},
         {"G1 X5!|", "z", ""}},
    };
    for (const EditCase& c : cases) {
        SCOPED_TRACE(c.label);
        open_marked(c.before);
        press(c.presses);
        EXPECT_EQ(rows_with_caret(), c.after);
        EXPECT_EQ(child[0].modified, 1) << "every such key counts as an edit";
        EXPECT_TRUE(platform::caret_shown());
        expect_screen_shows_rows();
        EXPECT_EQ(platform::caret_cell_col(), child[0].caret_col);
        EXPECT_EQ(platform::caret_cell_row(), child[0].caret_row);
        EXPECT_EQ(block.start.row, -1) << "no block stays behind";
    }
}

TEST_F(EditingTest, OverwriteMode) {
    const EditCase cases[] = {
        {"text replaces text", {"a|bcd", ""}, {"'XY"}, {"aXY|d", ""}},
        {"and goes on behind it", {"a|b", ""}, {"'XYZ"}, {"aXYZ|", ""}},
        {"behind the text the row is filled up", {"a  |", ""}, {"'X"}, {"a  X|", ""}},
        {"a tab is blanks over the text", {"ab|cdef", ""}, {"Tab"}, {"ab   |f", ""}},
        {"Enter only moves", {"ab|cd", "ef", ""}, {"Enter"}, {"abcd", "|ef", ""}},
        {"Backspace pulls the text up all the same", {"ab|c", ""}, {"Backspace"}, {"a|c", ""}},
        {"Enter goes on to the row behind one typed at the end",
         {"a", "|"},
         {"'X", "Enter"},
         {"a", "X", "|"}},
    };
    child[0].overwrite_mode = 1;
    for (const EditCase& c : cases) {
        SCOPED_TRACE(c.label);
        open_marked(c.before);
        press(c.presses);
        EXPECT_EQ(rows_with_caret(), c.after);
        EXPECT_FALSE(caret_past_end);
        expect_screen_shows_rows();
    }
    open_marked({"a", "|"});
    press_key("Enter");
    EXPECT_EQ(rows_with_caret(), (Rows{"a", "|"})) << "never behind the last row";
    EXPECT_TRUE(caret_past_end);
}

TEST_F(EditingTest, CtrlEnterInOverwriteModeLeavesTheScreenToTheNextRepaint) {
    child[0].overwrite_mode = 1;
    open_marked({"ab|cd", ""});
    press_key("Ctrl+Enter");
    EXPECT_EQ(rows_with_caret(), (Rows{"ab|", ""}));
    EXPECT_EQ(screen_row(0), "abcd");
    repaint_now();
    EXPECT_EQ(screen_row(0), "ab");
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
        open_rows({std::string(static_cast<size_t>(c.length), 'a'), ""});
        child[0].overwrite_mode = c.overwrite;
        set_caret(0, c.col);
        press({c.press});
        EXPECT_EQ(rows()[0].size(), static_cast<size_t>(c.length_after));
        EXPECT_EQ(child[0].caret_col, c.col_after);
        EXPECT_EQ(child[0].modified, 1);
        EXPECT_EQ(child[0].pending_row, 0) << "a refused character marks the row all the same";
    }
    EXPECT_EQ(platform::beep_count(), 0) << "limits are silent";
}

TEST_F(EditingTest, RowsJoinUpToTheLimit) {
    const struct {
        int first, second;
        bool joins;
    } cases[] = {{100, 150, true}, {100, 151, false}, {0, 250, true}, {250, 0, true}, {251, 0, false}};
    for (const auto& c : cases) {
        for (const bool by_backspace : {false, true}) {
            SCOPED_TRACE(std::to_string(c.first) + "+" + std::to_string(c.second));
            const std::string first(static_cast<size_t>(c.first), 'a');
            const std::string second(static_cast<size_t>(c.second), 'b');
            open_rows({first, second, "c", ""});
            set_caret(by_backspace, by_backspace ? 0 : c.first);
            press({by_backspace ? "Backspace" : "Delete"});
            EXPECT_EQ(rows(), c.joins ? (Rows{first + second, "c", ""}) : (Rows{first, second, "c", ""}));
            EXPECT_EQ(child[0].current_row, 0);
            EXPECT_EQ(child[0].caret_col, c.first) << "at the seam";
        }
    }
}

// Rows as stored, and the caret on the screen, where '|' marks it among the spread words.
TEST_F(EditingTest, NcMode) {
    const struct {
        const char* label;
        Rows before;
        int row, col;
        Presses presses;
        Rows after;
        const char* screen;  // the caret's row
    } cases[] = {
        {"a letter starts a word of its own", {"N10X5", ""}, 0, 2, {"'g"}, {"N1g0X5", ""}, "N1   g|0   X5"},
        {"the caret follows the word that moves", {"N10", ""}, 0, 3, {"'X5"}, {"N10X5", ""}, "N10  X5|"},
        {"in a gap text goes in front of the next word",
         {"N10X5", ""},
         0,
         4,
         {"'7"},
         {"N107X5", ""},
         "N107| X5"},
        {"behind the text nothing is filled up", {"N10", ""}, 0, 20, {"'1"}, {"N101", ""}, "N101|"},
        {"Delete in a gap takes the next word's letter",
         {"N10X5", ""},
         0,
         3,
         {"Delete"},
         {"N105", ""},
         "N10|5"},
        {"Delete takes a word's letter", {"N10X5Y6", ""}, 0, 5, {"Delete"}, {"N105Y6", ""}, "N105 |Y6"},
        {"Delete behind the text joins", {"N1", "X5", ""}, 0, 9, {"Delete"}, {"N1X5", ""}, "N1   X5  |"},
        {"Backspace steps over a gap", {"N10X5", ""}, 0, 5, {"Backspace"}, {"N1X5", ""}, "N1|   X5"},
        {"Backspace behind the text", {"N10X5", ""}, 0, 20, {"Backspace"}, {"N10X", ""}, "N10  X|"},
        {"Backspace at column 0 joins",
         {"N1X2", "Y3", ""},
         1,
         0,
         {"Backspace"},
         {"N1X2Y3", ""},
         "N1   X2|   Y3"},
        {"Enter splits at the word", {"N10X5", ""}, 0, 5, {"Enter"}, {"N10", "X5", ""}, "|X5"},
        {"Ctrl+Enter drops from the word on", {"N10X5", ""}, 0, 5, {"Ctrl+Enter"}, {"N10", ""}, "N10  |"},
        {"a tab types blanks", {"N10", ""}, 0, 3, {"Tab"}, {"N10  ", ""}, "N10  |"},
    };
    child[0].nc_mode = 1;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        open_rows(c.before);
        set_caret(c.row, c.col);
        press(c.presses);
        EXPECT_EQ(rows(), c.after);
        EXPECT_EQ(screen_with_caret(child[0].caret_row), c.screen);
        if (child[0].pending_row >= 0) {
            EXPECT_EQ(child[0].row_text, c.after[static_cast<size_t>(child[0].pending_row)])
                << "what will be stored is not the spread form";
        }
    }
}

TEST_F(EditingTest, ACommentColorsWhatFollowsAsItIsTyped) {
    child[0].colors_enabled = 1;
    child[0].color_table[COMMENT_SLOT].color = 0x008000;
    open_rows({"12", ""});
    const auto greens = [] {
        std::string seen;
        for (int col = 0; col < 6; ++col)
            seen += screen_cell(col, 0).ink == 0x008000 ? 'c' : '.';
        return seen;
    };
    set_caret(0, 1);
    type_text("(");
    EXPECT_EQ(greens(), ".cc...");
    type_text("a)");
    EXPECT_EQ(greens(), ".ccc..");
    press_key("Delete");
    EXPECT_EQ(screen_row(0), "1(a)");
    press({"Backspace", "'b"});
    EXPECT_EQ(screen_row(0), "1(ab");
    EXPECT_EQ(greens(), ".ccc..");
}

TEST_F(EditingTest, AnEditedRowShowsTheColorOfChangesAtOnce) {
    child[0].changes_colored = 1;
    child[0].color_table[CHANGES_SLOT].color = 0x808000;
    for (const char* key : {"'X", "Delete"}) {
        SCOPED_TRACE(key);
        open_rows({"ab", "cd", ""});
        set_caret(0, 1);
        press({key});
        EXPECT_EQ(screen_cell(0, 0).ink, 0x808000u);
        EXPECT_EQ(screen_cell(0, 1).ink, platform::BLACK);
    }
}

TEST_F(EditingTest, OnlyAnEditMarksTheDocument) {
    const struct {
        const char* press;
        bool marks;
    } cases[] = {{"Esc", false}, {"Left", false},  {"Insert", false}, {"Ctrl+End", false},
                 {"F9", false},  {"Ctrl+B", true}, {"Delete", true},  {"Backspace", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.press);
        open_rows({"ab", ""});
        press({c.press});
        EXPECT_EQ(child[0].modified, c.marks);
        EXPECT_EQ(child[0].pending_row, c.marks ? 0 : -1);
    }
    open_rows({"ab", ""});
    press({"'X", "Esc"});
    EXPECT_EQ(child[0].pending_row, 0) << "Esc leaves a row in edit as it is";
}

TEST_F(EditingTest, CharactersThatTheEditorDoesNotTakeOnlyMarkTheRow) {
    open_rows({"ab", ""});
    for (const int code : {0x80, 0xC4, 0xFF, 1, 0x1A, -1}) {
        handle_char(code, 1);
        EXPECT_FALSE(is_printable(code));
    }
    EXPECT_EQ(rows()[0], "ab");
    EXPECT_EQ(child[0].pending_row, 0);
    handle_char('x', 3);
    handle_char(127, 1);
    EXPECT_EQ(rows()[0], "xxx\x7F"
                         "ab");
    handle_char(8, 2);
    EXPECT_EQ(rows()[0], "xxab");
    handle_char(13, 2);
    EXPECT_EQ(rows(), (Rows{"xx", "", "ab", ""}));
    EXPECT_EQ(child[0].current_row, 2);
}

TEST_F(EditingTest, TextTypedIntoTheEndRowGetsANewEndRowBehindIt) {
    for (const char* key : {"Left", "Home", "Up", "Delete", "PageUp", "Insert"}) {
        SCOPED_TRACE(key);
        open_marked({"ab", "|"});
        press({"'X", key});
        EXPECT_EQ(rows().size(), 3u);
        EXPECT_EQ(rows().back(), "");
    }
    open_marked({"ab", "|"});
    press({"'X", "Down"});
    EXPECT_EQ(rows_with_caret(), (Rows{"ab", "X", " |"}));
    open_marked({"ab", "|"});
    press({"Delete", "Up"});
    EXPECT_EQ(rows().size(), 2u) << "an end row that is still empty gets none";
    EXPECT_EQ(platform::scroll_range_high(), child[0].vscroll_max);
}

TEST_F(EditingTest, EnterAtTheBottomOfTheWindowScrolls) {
    open_numbered_rows(30);
    set_caret(9, 1);
    press_key("Enter");
    EXPECT_EQ(child[0].current_row, 10);
    EXPECT_EQ(child[0].caret_row, 9);
    EXPECT_EQ(screen_row(0) + " " + screen_row(8) + " " + screen_row(9), "1 9 ");
    EXPECT_EQ(platform::scroll_range_high(), 31 / 9);
}

TEST_F(EditingTest, BackspaceOnTheTopScreenRowScrolls) {
    open_numbered_rows(30);
    set_caret(20, 0, 0);
    paint_view();
    press_key("Backspace");
    EXPECT_EQ(child[0].current_row, 19);
    EXPECT_EQ(child[0].caret_row, 0);
    EXPECT_EQ(screen_row(0) + " " + screen_row(1), "1920 21");
}

TEST_F(EditingTest, ACharacterEndsABlockAndGoesInAtTheCaret) {
    open_rows({"abc", "def", ""});
    const auto select_row_0 = [] {
        child[0].block_active = 1;
        block.start = {0, 0, 0};
        block.end = {0, 0, 0};
        paint_view();
        set_caret(1, 1);
    };
    select_row_0();
    EXPECT_EQ(screen_cell(0, 0).paper, platform::BLACK);
    handle_char('X', 1);
    EXPECT_EQ(rows(), (Rows{"abc", "dXef", ""})) << "the row is fetched again behind the repaint";
    EXPECT_EQ(child[0].block_active, 0);
    EXPECT_EQ(block.start.row, -1);
    EXPECT_EQ(screen_cell(0, 0).paper, platform::WHITE);
    EXPECT_EQ(screen_row(1), "dXef");
    select_row_0();
    press_key("Esc");
    EXPECT_EQ(child[0].block_active, 0);
    EXPECT_EQ(rows().size(), 3u);
}

TEST_F(EditingTest, AStoreThatTakesNoEditsRefusesThemWithABeep) {
    open_rows({"ab", "cd", ""});
    press({"'X"});
    platform::fill_disk_after(0);
    press_key("Down");
    ASSERT_EQ(unsaved_row.row, 0) << "the row could not be stored";
    child[0].modified = 0;
    int beeps = platform::beep_count();
    for (const char* key : {"'Y", "Delete", "Backspace", "Enter", "Ctrl+Enter", "Tab", "Ctrl+B"}) {
        SCOPED_TRACE(key);
        set_caret(1, 1);
        press({key});
        EXPECT_EQ(platform::beep_count(), ++beeps);
        EXPECT_EQ(child[0].pending_row, -1);
        EXPECT_EQ(child[0].modified, 0);
        EXPECT_EQ(child[0].caret_col, 1);
    }
    press_key("Esc");
    EXPECT_EQ(platform::beep_count(), beeps) << "no edit, nothing to refuse";
    EXPECT_EQ(rows(), (Rows{"Xab", "cd", ""}));
    platform::reset_file_faults();
    press({"'Y"});
    EXPECT_EQ(rows(), (Rows{"Xab", "cYd", ""})) << "there is space again";
    EXPECT_EQ(unsaved_row.row, -1);
}

TEST_F(EditingTest, ARowThatCannotBeReadIsNotEdited) {
    open_rows({"ab", "cd", ""});
    close_document();
    child[0].file_open = 1;  // its handles are gone: every fetch fails
    set_caret(0, 0);
    platform::forget_shown_lines();
    press({"'X"});
    EXPECT_EQ(platform::beep_count(), 1);
    EXPECT_EQ(child[0].pending_row, -1);
    EXPECT_EQ(child[0].modified, 0);
    child[0].file_open = 0;
}

}  // namespace
}  // namespace hexlane
