// The command Print where a golden run cannot make it fail.

#include <algorithm>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using PrintCommandTest = ProgramTest;

constexpr int PRINT = 1005;

// Half a program on paper would look like a whole one.
TEST_F(PrintCommandTest, ARowThatCannotBeReadDropsTheJob) {
    std::string rows;
    for (int number = 0; number < 40000; number++)
        rows += "N" + std::to_string(number) + " G0\r\n";
    start_with(rows);
    ASSERT_TRUE(platform::arm_file_faults_from_text("fail read 3 EIO"));
    for (int i = 0; i < 3; i++)
        platform::answer_box("OK");
    command(PRINT);
    platform::reset_file_faults();
    const auto& lines = platform::shown_lines();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "print abandoned"), lines.end());
    EXPECT_EQ(std::find(lines.begin(), lines.end(), "print end"), lines.end());
    ASSERT_FALSE(platform::shown_boxes().empty());
    EXPECT_EQ(platform::shown_boxes()[0].text, "Cannot print file");
}

}  // namespace
}  // namespace hexlane
