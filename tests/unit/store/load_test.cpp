// Loading: line ends, ends of files, NULs, limits, and what cannot be opened.

#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "store/load.h"
#include "store/row_table.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;
using namespace std::string_literals;

class LoadTest : public ProgramTest {};

TEST_F(LoadTest, EveryFormOfFileGivesItsRowsAndAnEndRow) {
    struct Case {
        const char* label;
        std::string bytes;
        std::vector<std::string> rows;
        std::string origins;
        std::string on_disk;  // after the load
    };
    const std::string long_row = repeated('x', 300);
    const Case cases[] = {
        {"CR LF", "A\r\nB\r\n", {"A", "B", ""}, "OOO", "A\r\nB\r\n"},
        {"no line end at the end", "A\r\nB", {"A", "B", ""}, "OOB", "A\r\nB"},
        {"LF alone", "A\n\nB\n", {"A", "", "B", ""}, "OOOO", "A\n\nB\n"},
        {"CR inside and in front of LF", "A\rB\r\nC\r\r\n", {"A\rB", "C\r", ""}, "OOO", "A\rB\r\nC\r\r\n"},
        {"empty", "", {"", ""}, "OO", "\r\n"},
        {"one line end", "\n", {"", ""}, "OO", "\n"},
        {"NULs end rows", "A\0B\0C\n"s, {"A", "B", "C", ""}, "OOOO", "A\0B\0C\n"s},
        {"0x1A ends the shown text",
         "A\x1A"
         "B\nC\n",
         {"A", "C", ""},
         "OOO",
         "A\x1A"
         "B\nC\n"},
        {"0x1A at the end", "A\n\x1A", {"A", ""}, "OO", "A\n\x1A"},
        {"more than a fetch shows",
         long_row + "\nB\n",
         {long_row.substr(0, 254), "B", ""},
         "OOO",
         long_row + "\nB\n"},
        {"a long last row without end", long_row, {long_row.substr(0, 254), ""}, "OB", long_row},
    };
    int number = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        start_with(c.bytes, "form" + std::to_string(number++));
        EXPECT_EQ(rows(), c.rows);
        EXPECT_EQ(origins(), c.origins);
        EXPECT_EQ(read_bytes(child[0].file_path), c.on_disk);
        EXPECT_EQ(child[0].modified, 0);
        check_table();
    }
}

TEST_F(LoadTest, RowsAtTheBoundariesOfBlocksAndSegmentsAreFound) {
    for (const int count :
         {ROWS_PER_SEGMENT - 2, ROWS_PER_SEGMENT - 1, ROWS_PER_SEGMENT, 2 * ROWS_PER_SEGMENT + 1}) {
        SCOPED_TRACE(count);
        std::string text;
        for (int row = 0; row < count; row++)
            text += "N" + std::to_string(row) + (row % 3 == 0 ? "\r\n" : "\n");
        begin_anew();
        start_with(text);
        ASSERT_EQ(child[0].last_file_row, count);
        EXPECT_EQ(child[0].segment_count, (count + 1) / ROWS_PER_SEGMENT + 1);
        check_table();
        for (const int row : {0, count / 2, ROWS_PER_SEGMENT - 3, ROWS_PER_SEGMENT - 1, count - 1}) {
            if (row < 0 || row >= count)
                continue;
            ASSERT_TRUE(fetch_row(row));
            EXPECT_EQ(child[0].row_text, "N" + std::to_string(row));
            EXPECT_TRUE(row_had_lf);
        }
        fetch_row(count);
        EXPECT_STREQ(child[0].row_text, "");
        EXPECT_EQ(child[0].row_origin, 'O');
    }
}

TEST_F(LoadTest, SixNullsAskAndFiveDoNot) {
    const std::string five = "A\0B\0C\0D\0E\0F\r\n"s;
    start_with(five);
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_EQ(child[0].last_file_row, 6);

    const std::string six = "\0"s + five;
    struct Case {
        const char* answer;
        std::string on_disk;
        bool open;
        int last_row;
    };
    const Case cases[] = {{"Cancel", six, false, 0}, {"No", six, true, 7}, {"Yes", "ABCDEF\r\n", true, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        begin_anew();
        write("nulls.nc", six);
        answer_box(c.answer);
        start("nulls.nc");
        ASSERT_EQ(shown_boxes().size(), 1U);
        EXPECT_EQ(shown_boxes()[0].text, path("nulls.nc") + " has NULLs. Do you wish to strip them? ");
        EXPECT_EQ(bytes("nulls.nc"), c.on_disk);
        EXPECT_EQ(child[0].file_open != 0, c.open);
        EXPECT_EQ(child[0].last_file_row, c.last_row);
        EXPECT_EQ(child[0].file_title[0] != '\0', c.open);
        EXPECT_EQ(work_names(), std::vector<std::string>{"nulls.nc"});
    }
}

TEST_F(LoadTest, NullsBehindTheTestedPartRaiseNoQuestion) {
    start_with(repeated('A', NULL_TEST_BYTES) + std::string(10, '\0'));
    EXPECT_TRUE(shown_boxes().empty());
}

TEST_F(LoadTest, WhatIsNoReadableFileIsRefusedAtOnce) {
    mkfifo(path("fifo").c_str(), 0600);
    mkdir(path("folder").c_str(), 0700);
    symlink("/dev/zero", path("device").c_str());
    for (const char* name : {"fifo", "folder", "device"}) {
        SCOPED_TRACE(name);
        reset_desktop();
        answer_box("OK");
        start(name);
        ASSERT_EQ(shown_boxes().size(), 1U);
        EXPECT_EQ(shown_boxes()[0].text,
                  path(name) +
                      " not opened\n\nThe file cannot be opened for reading and writing: it is not an "
                      "ordinary file.");
        EXPECT_EQ(shown_boxes()[0].title, "Access Denied");
        EXPECT_FALSE(child[0].file_open);
        EXPECT_STREQ(child[0].file_path, "");
    }
    write("refused.nc", "A\n");
    deny_path(path("refused.nc").c_str(), DENY_WRITE);
    reset_desktop();
    answer_box("OK");
    start("refused.nc");
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_NE(shown_boxes()[0].text.find("writing: access is denied."), std::string::npos);
    EXPECT_FALSE(child[0].file_open);
    EXPECT_EQ(bytes("refused.nc"), "A\n");
}

TEST_F(LoadTest, ANamedFileThatDoesNotExistIsNotMade) {
    start("none.nc");
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_FALSE(child[0].file_open);
    EXPECT_FALSE(exists("none.nc"));
}

TEST_F(LoadTest, TooManyRowsAndTooManyBytesAreToldAndNothingIsOpen) {
    if (MAX_ROWS < 1000) {  // with the small limits, on both sides of the limit
        start_with(repeated('\n', MAX_ROWS - 1));
        EXPECT_EQ(child[0].last_file_row, MAX_ROWS - 1);
        begin_anew();
        const std::string text = repeated('\n', MAX_ROWS);
        write("rows.nc", text);
        answer_box("OK");
        start("rows.nc");
        ASSERT_EQ(shown_boxes().size(), 1U);
        EXPECT_NE(shown_boxes()[0].text.find(std::to_string(MAX_ROWS)), std::string::npos);
        EXPECT_FALSE(child[0].file_open);
        EXPECT_EQ(bytes("rows.nc"), text);
    }
    write("huge.nc", "");
    ASSERT_EQ(truncate(path("huge.nc").c_str(), MAX_FILE_SIZE + 1), 0);
    reset_desktop();
    answer_box("No");  // it is full of NULs
    answer_box("OK");
    start("huge.nc");
    ASSERT_EQ(shown_boxes().size(), 2U);
    EXPECT_NE(shown_boxes()[1].text.find("2147483647"), std::string::npos);
    EXPECT_FALSE(child[0].file_open);
}

TEST_F(LoadTest, EveryFailingCallOfALoadIsToldAndLeavesTheFileAlone) {
    std::string text;
    for (int row = 0; row < 2 * ROWS_PER_SEGMENT + 3; row++)
        text += "N" + std::to_string(row) + "\r\n";
    start("");
    write("part.nc", text);
    int failures = 0;
    for (const FileCall kind : {FileCall::OPEN, FileCall::CREATE, FileCall::READ, FileCall::WRITE}) {
        for (int n = 1;; n++) {
            SCOPED_TRACE(std::string(file_call_name(kind)) + " " + std::to_string(n));
            forget_shown_boxes();
            forget_answers();
            reset_file_faults();
            close_document();
            child[0].modified = 0;
            answer_file_dialog(path("part.nc").c_str());
            fail_file_call(kind, n, EIO);
            answer_other_boxes("OK");
            command(1001);
            const bool fired = file_fault_fired();
            reset_file_faults();
            EXPECT_EQ(bytes(), text);
            if (!fired)
                break;
            failures++;
            if (child[0].file_open) {
                EXPECT_EQ(child[0].last_file_row, 2 * ROWS_PER_SEGMENT + 3);
                check_table();
            } else {
                EXPECT_FALSE(shown_boxes().empty());
                EXPECT_STREQ(child[0].file_title, "");
            }
            ASSERT_LT(n, 400);
        }
    }
    EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace hexlane
