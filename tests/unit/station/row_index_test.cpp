// The row index of the start point screen: where rows begin, beyond the table in memory too, and what becomes
// of a file that changes while it is looked at.

#include <algorithm>
#include <string>
#include <vector>

#include "platform/posix/file_faults.h"
#include "station/row_index.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

class RowIndex : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start();
    }
    void TearDown() override {
        close_row_index();
        ProgramTest::TearDown();
    }

    bool open(const std::string& bytes) {
        write("part.nc", bytes);
        return open_row_index(path("part.nc").c_str()) == 1;
    }

    static std::string text(int32_t row) {
        char shown[ROW_TEXT_LIMIT + 1];
        read_row_text(row, shown);
        return shown;
    }
};

TEST_F(RowIndex, RowsBeginBehindLineFeedsAndNuls) {
    ASSERT_TRUE(open(std::string("N1\r\n\0N2\nN3", 10)));
    EXPECT_EQ(row_count(), 3);
    EXPECT_EQ(row_offset(0), 0);
    EXPECT_EQ(row_offset(1), 4);
    EXPECT_EQ(row_offset(2), 5);
    EXPECT_EQ(row_offset(3), 8);
    EXPECT_EQ(row_offset(4), -1);
    EXPECT_EQ(text(0), "N1");
    EXPECT_EQ(text(1), "");
    EXPECT_EQ(text(2), "N2");
    EXPECT_EQ(text(3), "") << "what stands behind the last line end shows blank";
    EXPECT_EQ(row_end(3), 10);
}

TEST_F(RowIndex, AChangedFileIsNotTakenForTheOneOnShow) {
    ASSERT_TRUE(open("N1\r\nN2\r\nN3\r\n"));
    const std::string name = path("part.nc");
    EXPECT_TRUE(row_is_there(name.c_str(), 8));
    EXPECT_TRUE(row_is_there(name.c_str(), 12)) << "behind the last line end";
    EXPECT_EQ(text(2), "N3");
    write("part.nc", "N1\r\nN2\r\n");
    EXPECT_TRUE(row_is_there(name.c_str(), 8));
    EXPECT_FALSE(row_is_there(name.c_str(), 12));
    EXPECT_EQ(text(2), "N3") << "until the next look at the file";
    look_at_file_again();
    EXPECT_EQ(text(2), "") << "a row that is gone shows blank";
    write("part.nc", "N1\r\nN200000\r\nN3\r\n");
    EXPECT_FALSE(row_is_there(name.c_str(), 8)) << "in the middle of a row";
}

// Rows of many lengths, so that some lie across the borders of what is read at once.
TEST_F(RowIndex, AWalkReadsManyRowsAtOnceInBothDirections) {
    std::string bytes;
    std::vector<std::string> wanted;
    for (int row = 0; row < ROW_TABLE_SIZE + 3000; row++) {
        wanted.push_back("N" + std::to_string(row) + std::string(static_cast<std::size_t>(row % 79), 'X'));
        bytes += wanted.back() + "\r\n";
        wanted.back().resize(std::min<std::size_t>(wanted.back().size(), ROW_TEXT_LIMIT));
    }
    const std::size_t files = temp_names().size();
    ASSERT_TRUE(open(bytes));
    EXPECT_EQ(temp_names().size(), files + 1) << "the offsets behind the table";
    reset_file_faults();
    record_file_calls();
    for (int row = 0; row < row_count(); row++)
        ASSERT_EQ(text(row), wanted[static_cast<std::size_t>(row)]) << row;
    for (int row = row_count() - 1; row >= 0; row--)
        ASSERT_EQ(text(row), wanted[static_cast<std::size_t>(row)]) << row;
    EXPECT_LT(file_call_count(FileCall::READ), 300) << bytes.size();
    reset_file_faults();
    EXPECT_EQ(row_offset(ROW_TABLE_SIZE),
              static_cast<int64_t>(bytes.find("N" + std::to_string(ROW_TABLE_SIZE))));
    close_row_index();
    EXPECT_EQ(temp_names().size(), files);
}

// The first program's offsets are gone from the temporary file.
TEST_F(RowIndex, ASecondLongProgramHasItsOwnOffsets) {
    for (const std::string row : {"N1\r\n", "N10\r\n"}) {
        std::string bytes;
        for (int i = 0; i < ROW_TABLE_SIZE + 2000; i++)
            bytes += row;
        ASSERT_TRUE(open(bytes));
        EXPECT_EQ(row_offset(ROW_TABLE_SIZE + 1999), static_cast<int64_t>(bytes.size() - row.size()));
    }
}

TEST_F(RowIndex, WithoutAFileThereAreNoRows) {
    EXPECT_FALSE(open_row_index(path("nothing.nc").c_str()));
    EXPECT_EQ(row_count(), 0);
    EXPECT_EQ(text(0), "");
    EXPECT_FALSE(row_is_there(path("nothing.nc").c_str(), 0));
}

}  // namespace
}  // namespace hexlane
