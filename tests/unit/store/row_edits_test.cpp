// Putting rows in and taking rows out. Long random sequences are in model_test.cpp; here are the told cases.

#include "store/row_edits.h"
#include "store/row_table.h"

#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

class RowEditsTest : public ProgramTest {
protected:
    using Rows = std::vector<std::string>;

    // A document of rows "0", "1", ... with an end row.
    void start_with_rows(int count) {
        std::string text;
        for (int row = 0; row < count; row++)
            text += std::to_string(row) + "\r\n";
        start_with(text);
    }
};

TEST_F(RowEditsTest, BlankRowsGoInFrontButBehindAnEmptyLastRow) {
    start_with_rows(2);
    insert_blank_rows(1, 2);
    EXPECT_EQ(rows(), (Rows{"0", "", "", "1", ""}));
    EXPECT_EQ(origins(), "OBBOO");
    insert_blank_rows(4, 1);  // the end row
    EXPECT_EQ(origins(), "OBBOOB");
    begin_anew();
    start_with_rows(3);
    delete_rows(3, 1);  // the end row goes, and the text row is the last one now
    EXPECT_EQ(origins(), "OOC");
    insert_blank_rows(2, 1);
    EXPECT_EQ(rows(), (Rows{"0", "1", "", "2"}));
    check_table();
}

TEST_F(RowEditsTest, ASplitPutsTheTextWhereTheCaretStood) {
    start_with("ABCDEF\r\nB\r\n");
    split_row(0, 0);
    EXPECT_EQ(rows(), (Rows{"", "ABCDEF", "B", ""}));
    split_row(1, 2);
    EXPECT_EQ(rows(), (Rows{"", "AB", "CDEF", "B", ""}));
    EXPECT_EQ(origins(), "BCCOO");
    split_row(2, 4);
    EXPECT_EQ(rows(), (Rows{"", "AB", "CDEF", "", "B", ""}));
    EXPECT_EQ(origins(), "BCCBOO");
    EXPECT_TRUE(child[0].modified);
}

TEST_F(RowEditsTest, ASplitTakesTheUnseenBytesAlongBehindTheCut) {
    const std::string row = repeated('a', 100) + repeated('b', 300);
    start_with(row + "\r\nB\r\n");
    split_row(0, 100);
    command(1002);
    EXPECT_EQ(bytes(), repeated('a', 100) + "\r\n" + repeated('b', 300) + "\r\nB\r\n");
}

TEST_F(RowEditsTest, AJoinStopsAtTheRowLimitAndBeforeUnseenBytes) {
    start_with(repeated('a', 100) + "\r\n" + repeated('b', 150) + "\r\n" + repeated('c', 101) + "\r\n");
    fetch_row(1);
    EXPECT_FALSE(join_rows(1));
    EXPECT_EQ(child[0].last_file_row, 3);
    EXPECT_EQ(child[0].row_text, repeated('b', 150));
    fetch_row(0);
    EXPECT_TRUE(join_rows(0));
    EXPECT_EQ(rows()[0], repeated('a', 100) + repeated('b', 150));
    EXPECT_EQ(child[0].last_file_row, 2);

    begin_anew();
    start_with("A\x1A"
               "unseen\nB\x1A"
               "too\nC\n");
    fetch_row(0);
    EXPECT_FALSE(join_rows(0));
    begin_anew();
    start_with("A\nB\x1A"
               "too\nC\n");
    fetch_row(0);
    EXPECT_TRUE(join_rows(0));
    command(1002);
    EXPECT_EQ(bytes(), "AB\x1A"
                       "too\r\nC\n");
}

TEST_F(RowEditsTest, AJoinWithTheEndRowLeavesAnEndRow) {
    start_with("A\r\nB\r\n");
    fetch_row(1);
    EXPECT_TRUE(join_rows(1));
    EXPECT_EQ(rows(), (Rows{"A", "B", ""}));
    fetch_row(2);
    EXPECT_FALSE(join_rows(2));
}

TEST_F(RowEditsTest, DeletedRowsDoNotComeBackInTheFile) {
    start_with_rows(6);
    delete_rows(2, 2);
    EXPECT_EQ(rows(), (Rows{"0", "1", "4", "5", ""}));
    EXPECT_EQ(origins(), "OCOOO");
    child[0].modified = 1;
    command(1002);
    EXPECT_EQ(bytes(), "0\r\n1\r\n4\r\n5\r\n");
}

TEST_F(RowEditsTest, ADocumentKeepsOneRowWhateverIsDeleted) {
    start_with_rows(2);
    delete_rows(1, 2);
    EXPECT_EQ(rows(), Rows{"0"});
    EXPECT_EQ(origins(), "C");
    child[0].modified = 1;
    command(1002);
    EXPECT_EQ(bytes(), "0\r\n");
    delete_rows(0, 1000);
    EXPECT_EQ(rows(), Rows{""});
    EXPECT_EQ(origins(), "C");
    child[0].modified = 1;
    command(1002);
    EXPECT_EQ(bytes(), "\r\n");
}

TEST_F(RowEditsTest, DeletionsAcrossSegmentsKeepTheTableWhole) {
    struct Case {
        const char* label;
        int first;  // in segments and rows
        int first_row;
        int last;
        int last_row;
        int segments_left;
    };
    const int n = ROWS_PER_SEGMENT;
    const Case cases[] = {
        {"from inside one to inside the next", 0, 2, 1, 1, 5},
        {"from the start of one to inside a later", 1, 0, 3, 2, 3},
        {"whole segments to the start of a later", 1, 0, 2, n - 1, 3},
        {"from inside one to the end of a later", 1, 2, 3, n - 1, 5},
        {"from the very start", 0, 0, 2, 1, 3},
        {"up to the end row", 2, 1, 4, 2, 5},
        {"everything", 0, 0, 4, 2, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        const int last_row = 4 * n + 2;  // five segments
        start_with_rows(last_row);
        ASSERT_EQ(child[0].segment_count, 5);
        const int from = c.first * n + c.first_row;
        const int to = c.last * n + c.last_row;
        ASSERT_TRUE(delete_rows(from, to - from + 1));
        check_table();
        EXPECT_EQ(child[0].segment_count, c.segments_left);
        Rows expected;
        for (int row = 0; row < last_row; row++) {
            if (row < from || row > to)
                expected.push_back(std::to_string(row));
        }
        if (to < last_row || expected.empty())
            expected.emplace_back();
        EXPECT_EQ(rows(), expected);
    }
}

TEST_F(RowEditsTest, NoEndRowIsAddedBehindAnEmptyLastRow) {
    // The row in front of the last one is longer than a fetch, so its line end is not seen.
    start_with(repeated('x', 300) + "\r\nA\r\n");
    delete_rows(1, 1);
    EXPECT_EQ(child[0].last_file_row, 1);
    EXPECT_EQ(rows()[1], "");
}

}  // namespace
}  // namespace hexlane
