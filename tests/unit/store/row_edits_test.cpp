// Deletions at every place of a segment. Random edits of all kinds are in model_test.cpp.

#include "store/row_edits.h"

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

}  // namespace
}  // namespace hexlane
