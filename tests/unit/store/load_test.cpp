// Loading: what cannot be opened, and failing calls. Random documents are in model_test.cpp.

#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "store/row_table.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class LoadTest : public ProgramTest {};

TEST_F(LoadTest, NullsBehindTheTestedPartRaiseNoQuestion) {
    start_with(repeated('A', NULL_TEST_BYTES) + std::string(10, '\0'));
    EXPECT_TRUE(shown_boxes().empty());
}

TEST_F(LoadTest, WhatIsNoReadableFileIsRefusedAtOnce) {
    mkfifo(path("fifo").c_str(), 0600);
    symlink("/dev/zero", path("device").c_str());
    for (const char* name : {"fifo", "device"}) {
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
}

TEST_F(LoadTest, TooManyBytesAreToldAndNothingIsOpen) {
    write("huge.nc", "");
    ASSERT_EQ(truncate(path("huge.nc").c_str(), MAX_FILE_SIZE + 1), 0);
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
