// Fetching and committing rows: what is shown, what is kept, and the pending row.

#include "platform/text_stream.h"
#include "store/row_edits.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class RowTableTest : public ProgramTest {};

TEST_F(RowTableTest, BytesThatAFetchDoesNotShowStayWithTheRow) {
    const std::string tail = "TAIL" + repeated('t', 200);
    start_with(repeated('x', 254) + tail +
               "\r\nshort\x1A"
               "behind\nend\n");
    // Shortened twice without a fetch between, then again after one: nothing behind row_text is lost.
    fetch_row(0);
    put_row_text("one");
    commit_row(0);
    put_row_text("two");
    commit_row(0);
    fetch_row(2);
    fetch_row(0);
    EXPECT_EQ(child[0].row_text, "two" + tail);
    put_row_text("three" + tail);
    commit_row(0);
    set_row(1, "SHORT");
    command(1002);
    EXPECT_EQ(bytes(), "three" + tail +
                           "\r\nSHORT\x1A"
                           "behind\r\nend\n");
}

TEST_F(RowTableTest, ARowOfManyThousandBytesIsCarriedWhole) {
    std::string row;
    for (int i = 0; i < 30000; i++)
        row += static_cast<char>('A' + i % 23);
    start_with(row + "\r\nB\r\n");
    set_row(0, "*" + row.substr(1, 253));
    command(1002);
    EXPECT_EQ(bytes(), "*" + row.substr(1) + "\r\nB\r\n");
}

TEST_F(RowTableTest, RowsAreFoundPastEmptySegmentsAndAtTheirEdges) {
    start("");  // makes temp_dir
    const int32_t first_rows[] = {0, 5, 5, 10};
    const struct {
        int32_t row;
        int segment;
        int64_t offset;
    } cases[] = {{0, 0, 0},  {4, 0, 32},  {5, 2, 0},   {9, 2, 32},
                 {10, 3, 0}, {12, 3, 16}, {13, 3, 24}, {4, 0, 32}};
    reset_store();
    child[0].segment_count = 4;
    for (int i = 3; i >= 0; i--) {
        segment_table[i].first_row = first_rows[i];
        child[0].current_segment = static_cast<int16_t>(i);
        ASSERT_TRUE(open_segment(true));
    }
    for (const auto& c : cases) {
        EXPECT_EQ(locate_row(c.row), c.offset) << c.row;
        EXPECT_EQ(child[0].current_segment, c.segment) << c.row;
        EXPECT_TRUE(segment_table[c.segment].is_open);
    }
}

TEST_F(RowTableTest, TemporaryFilesArePrivate) {
    start_with("A\r\nB\r\n");
    set_row(0, "changed");
    split_row(1, 1);
    for (const std::string& name : temp_names()) {
        const auto mode =
            std::filesystem::status(std::string(directories.temp_dir) + "/" + name).permissions();
        EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write) << name;
        EXPECT_EQ(name.substr(0, 4), directories.temp_prefix);
    }
    EXPECT_GE(temp_names().size(), 2U);
}

}  // namespace
}  // namespace hexlane
