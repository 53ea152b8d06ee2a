// The command Compare around its engine: what it refuses, what it tells, and what it leaves behind.

#include <sys/stat.h>

#include <filesystem>
#include <vector>

#include "compare/compare.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

namespace fs = std::filesystem;
using platform::answer_box;
using platform::answer_file_dialog;
using platform::shown_boxes;
using platform::shown_lines;

constexpr int COMPARE = 1006;

class CompareCommandTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start_with("A\r\nB\r\nC\r\n");
        write("right.nc", "A\r\nX\r\nC\r\n");
    }
    void TearDown() override {
        EXPECT_EQ(platform::unused_answers(), 0);
        ProgramTest::TearDown();
    }

    static bool was_shown(const std::string& line) {
        return std::find(shown_lines().begin(), shown_lines().end(), line) != shown_lines().end();
    }
};

// More records than memory holds, the last one a difference.
class LongCompareTest : public CompareCommandTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        const std::string rows(2 * COMPARE_MEMORY_RECORDS, '\n');
        start_with(rows);
        write("right.nc", rows + "X\n");
    }
};

TEST_F(CompareCommandTest, OnlyTheListStaysUntilTheEndOfTheProgram) {
    set_row(1, "EDITED");
    answer_file_dialog(path("right.nc").c_str());
    answer_box("Compare");
    answer_box("EXIT");
    command(COMPARE);
    EXPECT_TRUE(child[0].modified);
    EXPECT_NE(path("part.nc"), child[0].compare_path);
    EXPECT_FALSE(fs::exists(child[0].compare_path));
    const std::string list = std::string(directories.temp_dir) + "/" + directories.temp_prefix + "tmpx.twr";
    EXPECT_TRUE(fs::exists(list));
    cleanup_temp_files();
    EXPECT_FALSE(fs::exists(list));
}

TEST_F(CompareCommandTest, AFileThatChangesIsToldOnce) {
    answer_file_dialog(path("right.nc").c_str());
    platform::act_at_pump(2, [this] { fs::resize_file(path("right.nc"), 2); });
    answer_box("Compare");
    answer_box("OK");
    answer_box("SEARCH FWD");
    answer_box("SEARCH FWD");
    answer_box("EXIT");
    command(COMPARE);
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_NE(shown_boxes()[0].text.find("right.nc has been changed"), std::string::npos);
    EXPECT_EQ(shown_boxes()[0].title, "Compare");
}

// Equal as far as they were compared, but no longer what was compared.
TEST_F(CompareCommandTest, FilesThatChangeAreNotCalledIdentical) {
    write("right.nc", "A\r\nB\r\nC\r\n");
    answer_file_dialog(path("right.nc").c_str());
    platform::act_at_pump(2, [this] { fs::resize_file(path("right.nc"), 1); });
    answer_box("Compare");
    answer_box("OK");
    command(COMPARE);
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_EQ(shown_boxes()[0].text.find("Files are identical"), std::string::npos);
}

TEST_F(CompareCommandTest, TheReportIsPrivateAndGoesBehindTheJob) {
    const std::string folder = home + "/reports";
    fs::create_directory(folder);
    setenv("TMP", folder.c_str(), 1);
    int reports = 0;
    platform::act_at_pump(6, [&] {
        for (const auto& entry : fs::directory_iterator(folder)) {
            struct stat status = {};
            ASSERT_EQ(stat(entry.path().c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 0777U, 0600U);
            EXPECT_EQ(entry.path().filename().string().substr(0, 2), "DX");
            reports++;
        }
    });
    answer_file_dialog(path("right.nc").c_str());
    answer_box("Compare");
    answer_box("PRINT RESULTS");
    answer_box("OK");
    command(COMPARE);
    unsetenv("TMP");
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_TRUE(was_shown("print job \"Compare Results\""));
    EXPECT_TRUE(was_shown("print end"));
}

// Half a list or half a report would look like a whole one.
TEST_F(CompareCommandTest, AListOrReportThatFailsIsToldAndNotPrinted) {
    const struct {
        const char* fault;
        std::vector<const char*> answers;
        const char* told;
        const char* not_shown;
    } cases[] = {
        {"fail write 1 ENOSPC tmpx.twr", {"OK"}, "no space", "view IDD_SCRCOMP \"Compare Results\""},
        {"fail read 1 EIO DX", {"PRINT RESULTS", "OK", "OK"}, "Cannot print compare results", "print end"},
        {"fail write 1 ENOSPC DX",
         {"PRINT RESULTS", "OK", "OK"},
         "Cannot print compare results",
         "print job \"Compare Results\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        begin_anew();
        answer_file_dialog(path("right.nc").c_str());
        answer_box("Compare");
        for (const char* answer : c.answers)
            answer_box(answer);
        ASSERT_TRUE(platform::arm_file_faults_from_text(c.fault));
        command(COMPARE);
        ASSERT_EQ(shown_boxes().size(), 1U);
        EXPECT_NE(shown_boxes()[0].text.find(c.told), std::string::npos);
        EXPECT_FALSE(was_shown(c.not_shown));
    }
}

// Records that are gone are neither equal rows nor the end of the differences.
TEST_F(LongCompareTest, AListThatIsLostIsTold) {
    const std::vector<const char*> ways[] = {{"Compare", "SEARCH FWD", "OK", "EXIT"},
                                             {"Compare", "PRINT RESULTS", "OK", "OK", "OK"}};
    for (const auto& way : ways) {
        platform::reset_file_faults();
        answer_file_dialog(path("right.nc").c_str());
        for (const char* answer : way)
            answer_box(answer);
        ASSERT_TRUE(platform::arm_file_faults_from_text("fail read 1 EIO tmpx.twr"));
        command(COMPARE);
        ASSERT_FALSE(shown_boxes().empty());
        EXPECT_NE(shown_boxes().back().text.find("tmpx.twr has been changed"), std::string::npos);
        EXPECT_FALSE(was_shown("print job \"Compare Results\""));
    }
    platform::reset_file_faults();
}

// The list's records are written once, at the end.
TEST_F(LongCompareTest, TakesNothingOverFromACompareThatFailed) {
    const auto last_box = [&](const char* fault, const std::vector<const char*>& presses) {
        platform::forget_shown_boxes();
        platform::reset_file_faults();
        EXPECT_EQ(platform::arm_file_faults_from_text(fault), 1);
        answer_file_dialog(path("right.nc").c_str());
        for (const char* button : presses)
            answer_box(button);
        command(COMPARE);
        return shown_boxes().empty() ? "" : shown_boxes().back().text;
    };
    const char* const no_fault = "full 1000000000";
    EXPECT_NE(last_box("fail write 2 ENOSPC tmpx.twr", {"Compare", "OK"}).find("no space"),
              std::string::npos);
    EXPECT_EQ(last_box(no_fault, {"Compare", "SEARCH FWD", "EXIT"}), "");
    EXPECT_NE(last_box("fail read 1 EIO tmpx.twr", {"Compare", "SEARCH FWD", "OK", "EXIT"}), "");
    EXPECT_EQ(last_box(no_fault, {"Compare", "SEARCH FWD", "EXIT"}), "");
}

TEST_F(CompareCommandTest, ACopyThatTheDiskDidNotTakeIsNotCompared) {
    set_row(1, "EDITED");
    answer_box("OK");
    platform::fail_file_call(platform::FileCall::CLOSE, 1, EIO);
    command(COMPARE);
    EXPECT_EQ(shown_boxes().size(), 1U);
}

}  // namespace
}  // namespace hexlane
