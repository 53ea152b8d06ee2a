// The cut file when the disk does not play along: what is in the document and what was cut before stays.

#include <cerrno>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text_stream.h"
#include "store/cut_file.h"
#include "store/load.h"
#include "store/row_bytes.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class CutFileTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        std::string text;
        for (int row = 0; row < 23; row++)
            text += "N" + std::to_string(row) + (row % 7 == 3 ? std::string(300, 'x') : "") + "\r\n";
        start_with(text);
        set_row(9, "CHANGED");
        insert_blank_rows(12, 1);
        answer_other_boxes("OK");
    }

    static int paste() { return paste_rows_from_cut_file(20, 15); }
};

TEST_F(CutFileTest, APasteThatFailsAnywhereIsDoneInWholeOrNotAtAll) {
    const std::vector<std::string> before = rows();
    std::vector<std::string> after = before;
    after.insert(after.begin() + 20, before.begin() + 2, before.begin() + 17);
    bool fired = true;
    for (int n = 1; fired; n++) {
        SCOPED_TRACE("call " + std::to_string(n));
        begin_anew();
        ASSERT_TRUE(copy_rows_to_cut_file(2, 15));
        const std::string origins_before = origins();
        fail_file_call(FileCall::ANY, n, EIO, directories.temp_dir);
        const int pasted = paste();
        fired = file_fault_fired();
        reset_file_faults();
        pump_messages();
        ASSERT_TRUE(edits_allowed());
        ASSERT_NO_FATAL_FAILURE(check_table());
        ASSERT_EQ(rows(), pasted ? after : before);
        if (!pasted) {
            ASSERT_EQ(origins(), origins_before);
            ASSERT_EQ(shown_boxes().size(), 1u);
        }
    }
}

TEST_F(CutFileTest, APasteOnAFullDiskTakesBackWhatHadComeIn) {
    close_document();
    std::string text;
    for (int row = 0; row < 20; row++)
        text += "N" + std::to_string(row) + std::string(20000, 'x') + "\r\n";
    write("part.nc", text);
    ASSERT_TRUE(load_file());
    ASSERT_TRUE(copy_rows_to_cut_file(0, 20));
    const std::vector<std::string> before = rows();
    for (const int64_t space : {0, 100, 100000, 200000}) {
        SCOPED_TRACE(space);
        fill_disk_after(space, 1);
        EXPECT_FALSE(paste_rows_from_cut_file(5, 20));
        reset_file_faults();
        pump_messages();
        EXPECT_TRUE(edits_allowed());
        ASSERT_NO_FATAL_FAILURE(check_table());
        EXPECT_EQ(rows(), before);
        EXPECT_FALSE(shown_boxes().empty());
        forget_shown_boxes();
    }
}

TEST_F(CutFileTest, RowsOfAFailedPasteThatCannotGoHoldNoText) {
    if (SEGMENT_WINDOW_ROWS > 15)
        return;  // only with the small limits is the cut file read more than once
    ASSERT_TRUE(copy_rows_to_cut_file(2, 15));
    // Where pasted rows stay: in front of a row, or behind the empty end row.
    for (const int32_t target : {20, child[0].last_file_row}) {
        SCOPED_TRACE(target);
        const std::vector<std::string> before = rows();
        const int64_t change_end = stream_end(child[0].change_stream);
        // The rows come in, a text of theirs can't be read, and then no work file can be made any more.
        reset_file_faults();
        fail_file_call(FileCall::READ, 2, EIO, "CUT.INX", -1);
        fail_file_call(FileCall::CREATE, target == 20 ? 2 : 1, ENOSPC, "DX", -1);
        EXPECT_FALSE(paste_rows_from_cut_file(target, 15));
        reset_file_faults();
        pump_messages();
        EXPECT_EQ(stream_end(child[0].change_stream), change_end);
        ASSERT_TRUE(store_row_text(0, "LATER", nullptr));
        forget_cached_rows();
        std::vector<std::string> expected = before;
        const int32_t first = target == 20 ? 20 : target + 1;
        expected.insert(expected.begin() + first, 15, "");
        expected[0] = "LATER";
        EXPECT_EQ(rows(), expected);
        ASSERT_TRUE(delete_rows(first, 15));
    }
}

TEST_F(CutFileTest, ACopyThatFailsKeepsWhatWasCopiedBefore) {
    ASSERT_TRUE(copy_rows_to_cut_file(9, 2));
    const std::vector<std::string> before = rows();
    bool fired = true;
    for (int n = 1; fired; n++) {
        SCOPED_TRACE("call " + std::to_string(n));
        reset_file_faults();
        fail_file_call(FileCall::ANY, n, ENOSPC, "DX");
        const int copied = copy_rows_to_cut_file(0, 5);
        fired = file_fault_fired();
        reset_file_faults();
        ASSERT_EQ(copied, fired ? 0 : 1);
        pump_messages();
        if (!fired)
            break;
        ASSERT_TRUE(paste_rows_from_cut_file(0, 2));
        EXPECT_EQ(rows()[0], "CHANGED");
        ASSERT_TRUE(delete_rows(0, 2));
        EXPECT_EQ(rows(), before);
    }
    for (const std::string& name : temp_names())
        EXPECT_EQ(name.find("DX"), std::string::npos) << name << " is left";
}

TEST_F(CutFileTest, AFileThatIsGoneOrCutShortIsTold) {
    ASSERT_TRUE(copy_rows_to_cut_file(2, 15));
    const std::string path = std::string(directories.temp_dir) + "/" + directories.temp_prefix + "CUT.INX";
    const std::vector<std::string> before = rows();
    std::filesystem::resize_file(path, 14 * 8);
    EXPECT_FALSE(paste());
    std::filesystem::remove(path);
    EXPECT_FALSE(paste());
    pump_messages();
    EXPECT_EQ(shown_boxes().size(), 2u);
    EXPECT_EQ(rows(), before);
}

}  // namespace
}  // namespace hexlane
