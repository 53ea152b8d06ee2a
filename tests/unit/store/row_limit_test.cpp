// The largest number of rows, from both sides: what would pass it is refused where it begins, and no Save or
// Merge makes a file that a load refuses. For the build with tiny limits, where a test can reach them.

#ifdef HEXLANE_TINY_LIMITS

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "store/cut_file.h"
#include "store/load.h"
#include "store/merge.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/save.h"
#include "store/store_fault.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class RowLimitTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        answer_other_boxes("OK");
    }

    static std::string line_ends(int count) {
        std::string text;
        for (int i = 0; i < count; i++)
            text += "\r\n";
        return text;
    }

    // Serves what is posted, and gives the text of the one box that has been shown since the last call.
    static std::string told() {
        pump_messages();
        EXPECT_EQ(shown_boxes().size(), 1U);
        const std::string text = shown_boxes().empty() ? "" : shown_boxes()[0].text;
        forget_shown_boxes();
        return text;
    }
};

TEST_F(RowLimitTest, RowsBehindTheLimitAreRefusedAndTold) {
    start_with("A\r\n" + line_ends(MAX_ROWS - 3));
    ASSERT_EQ(child[0].last_file_row, MAX_ROWS - 2);
    ASSERT_TRUE(copy_rows_to_cut_file(0, 2));
    const std::vector<std::string> before = rows();
    EXPECT_FALSE(paste_rows_from_cut_file(0, 2));
    EXPECT_NE(told().find(std::to_string(MAX_ROWS)), std::string::npos);
    EXPECT_EQ(rows(), before);
    EXPECT_TRUE(insert_blank_rows(1, 1));
    EXPECT_FALSE(insert_blank_rows(1, 1));
    EXPECT_NE(told().find("No row was put in"), std::string::npos);
    ASSERT_NO_FATAL_FAILURE(check_table());
    ASSERT_TRUE(delete_rows(5, 1));
    EXPECT_TRUE(insert_blank_rows(1, 1));
}

TEST_F(RowLimitTest, EntersAtTheEndStopAtTheLimitAndASaveLoadsAgain) {
    start_with(line_ends(MAX_ROWS - 2));
    press_key("Ctrl+End");
    for (int i = 0; i < 3; i++)
        press_key("Enter");
    pump_messages();
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    EXPECT_EQ(shown_boxes().size(), 2U);
    command(1002);
    EXPECT_TRUE(child[0].file_open);
    EXPECT_EQ(shown_boxes().size(), 2U);
}

// Overwriting makes no row but the end row, behind text that was typed into the last one.
TEST_F(RowLimitTest, OverwritingStopsAtTheLimitToo) {
    start_with(line_ends(MAX_ROWS - 2));
    press_key("Ctrl+End");
    press_key("Insert");
    for (int i = 0; i < 2; i++) {
        type_text("X");
        press_key("Enter");
    }
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    EXPECT_NE(told().find("No row was put in"), std::string::npos);
}

// A refused row is no failed file: what fails behind it is told.
TEST_F(RowLimitTest, AFailureBehindARefusedRowIsTold) {
    start_with("A\r\n" + line_ends(MAX_ROWS - 2));
    EXPECT_FALSE(insert_blank_rows(1, 1));
    EXPECT_NE(told().find("No row was put in"), std::string::npos);
    forget_cached_rows();
    ASSERT_TRUE(arm_file_faults_from_text("fail read 1 EIO"));
    EXPECT_FALSE(fetch_row(0));
    reset_file_faults();
    EXPECT_NE(told().find("could not be read"), std::string::npos);
}

TEST_F(RowLimitTest, APasteWithoutRoomLeavesTheBlock) {
    start_with("A\r\nB\r\n" + line_ends(MAX_ROWS - 3));
    ASSERT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    const std::vector<std::string> before = rows();
    press_key("Ctrl+Home");
    press_key("Shift+Down");
    press_key("Shift+Down");
    command(1009);
    press_key("Esc");
    press_key("Shift+Down");
    command(1010);
    EXPECT_NE(told().find("No row was put in"), std::string::npos);
    EXPECT_EQ(rows(), before);
    press_key("Shift+Down");  // as many rows give way as come
    command(1010);
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    EXPECT_EQ(rows()[0] + rows()[1], "AB");
    ASSERT_NO_FATAL_FAILURE(check_table());
}

TEST_F(RowLimitTest, AFileHasPlaceForItsEndRowOrIsRefused) {
    const std::string fits = line_ends(MAX_ROWS - 2) + "X";
    start_with(fits);
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    set_row(0, "Y");
    command(1002);
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
    EXPECT_EQ(bytes(), "Y" + fits + "\r\n");
    begin_anew();
    write("part.nc", line_ends(MAX_ROWS - 1) + "X");
    start("part.nc");
    EXPECT_NE(told().find("more rows than"), std::string::npos);
    EXPECT_FALSE(child[0].file_open);
}

TEST_F(RowLimitTest, ASaveThatNoLoadWouldTakeReplacesNothing) {
    const std::string full = line_ends(MAX_ROWS - 1);
    start_with(full);
    set_row(MAX_ROWS - 1, "X");  // its line end makes one row more
    child[0].modified = 1;
    EXPECT_FALSE(save_file());
    EXPECT_NE(told().find("Delete some rows"), std::string::npos);
    EXPECT_FALSE(save_file_as(path("other.nc").c_str()));
    EXPECT_NE(told().find(path("other.nc") + " was not saved"), std::string::npos);
    EXPECT_EQ(work_names(), std::vector<std::string>{"part.nc"});
    EXPECT_EQ(bytes(), full);
    EXPECT_EQ(child[0].modified, 1);
    ASSERT_TRUE(delete_rows(0, 1));
    command(1002);
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_EQ(bytes(), line_ends(MAX_ROWS - 2) + "X\r\n");
    EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
}

TEST_F(RowLimitTest, AMergeThatNoLoadWouldTakeLeavesTheActiveFile) {
    struct Case {
        std::string active;
        int32_t row;  // of the caret
        std::string merged;
        bool fits;
    };
    const Case cases[] = {
        {line_ends(MAX_ROWS - 4), 2, "A\nB\nC\n", true},
        {line_ends(MAX_ROWS - 4), 2, std::string("A\nB\0C\nD\n", 8), false},
        {line_ends(MAX_ROWS - 4), 2, "A\nB\nC\nD", false},  // D gets a row of its own
        {line_ends(MAX_ROWS - 4), 2, "A\nB\nC", true},
        {line_ends(MAX_ROWS - 4), MAX_ROWS - 4, "A\nB\nC", true},  // C and an end row
        {line_ends(MAX_ROWS - 4), MAX_ROWS - 4, "A\nB\nC\nD", false},
        {line_ends(MAX_ROWS - 4) + "Z", MAX_ROWS - 3, "A\nB\n", true},  // behind Z's new line end
        {line_ends(MAX_ROWS - 4) + "Z", MAX_ROWS - 3, "A\nB", true},
        {line_ends(MAX_ROWS - 4) + "Z", MAX_ROWS - 3, "A\nB\nC", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(&c - cases));
        begin_anew();
        write("other.nc", c.merged);
        start_with(c.active);
        child[0].current_row = c.row;
        copy_text(child[0].merge_path, PATH_SIZE, path("other.nc").c_str());
        EXPECT_EQ(merge_file() != 0, c.fits);
        if (c.fits) {
            EXPECT_TRUE(load_file());
        } else {
            EXPECT_NE(told().find("was not merged"), std::string::npos);
            EXPECT_EQ(bytes(), c.active);
            EXPECT_EQ(work_names(), (std::vector<std::string>{"other.nc", "part.nc"}));
        }
    }
}

}  // namespace
}  // namespace hexlane

#endif
