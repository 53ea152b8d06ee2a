// A compare behind one whose list of rows failed, at its very end or when it was read.

#include "compare/compare.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "store/save.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

class SecondCompareTest : public ProgramTest {
protected:
    // A few records more than memory holds: they are written once, at the end.
    void SetUp() override {
        ProgramTest::SetUp();
        const std::string rows(COMPARE_MEMORY_RECORDS + 100, '\n');
        start_with(rows);
        write("right.nc", rows + "X\n");
    }

    // A compare with a fault armed. Gives the text of the last box.
    std::string run(const char* fault, const std::vector<const char*>& presses) {
        forget_shown_boxes();
        reset_file_faults();
        EXPECT_EQ(arm_file_faults_from_text(fault), 1);
        answer_file_dialog(path("right.nc").c_str());
        for (const char* button : presses)
            answer_box(button);
        command(1006);
        EXPECT_EQ(unused_answers(), 0);
        return shown_boxes().empty() ? "" : shown_boxes().back().text;
    }
};

TEST_F(SecondCompareTest, TakesNothingOverFromOneThatFailed) {
    constexpr const char* NO_FAULT = "full 1000000000";
    EXPECT_NE(run("fail write 2 ENOSPC tmpx.twr", {"Compare", "OK"}).find("no space"), std::string::npos);
    EXPECT_EQ(run(NO_FAULT, {"Compare", "SEARCH FWD", "EXIT"}), "");
    EXPECT_NE(
        run("fail read 1 EIO tmpx.twr", {"Compare", "SEARCH FWD", "OK", "EXIT"}).find("has been changed"),
        std::string::npos);
    EXPECT_EQ(run(NO_FAULT, {"Compare", "SEARCH FWD", "EXIT"}), "");
}

TEST_F(SecondCompareTest, ACopyThatTheDiskDidNotTakeIsNotCompared) {
    answer_box("OK");
    fail_file_call(FileCall::CLOSE, 1, EIO);
    EXPECT_EQ(write_compare_snapshot(), 0);
    EXPECT_TRUE(file_fault_fired());
}

}  // namespace
}  // namespace hexlane
