// The active file changed by another program in ways that a script can't play: written in place, removed,
// linked.

#include "files/file_guard.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

namespace fs = std::filesystem;
using namespace platform;

class FileGuardTest : public ProgramTest {
protected:
    // Writes into the file itself; time stamps may be coarse, so the time is moved on by hand.
    void write_in_place(const std::string& text) const {
        const auto before = fs::last_write_time(path("part.nc"));
        std::fstream file(path("part.nc"), std::ios::in | std::ios::out | std::ios::binary);
        file << text;
        file.close();
        fs::last_write_time(path("part.nc"), before + std::chrono::seconds(1));
    }

    static void gain_focus() {
        send_message(child[0].main_window, WM_SETFOCUS, 0, 0);
        pump_messages();
    }

    static std::size_t boxes() { return shown_boxes().size(); }
    static std::string last_buttons() { return shown_boxes().back().buttons; }
};

TEST_F(FileGuardTest, AFileWrittenInPlaceIsNotSavedUnderAnyName) {
    start_with("G0\r\nG1\r\n");
    type_text("X");
    write_in_place("G7");
    for (const int id : {1002, 1003}) {
        SCOPED_TRACE(id);
        answer_box("Cancel");
        command(id);
        EXPECT_EQ(last_buttons(), "Reload|Cancel");
        EXPECT_EQ(bytes(), "G7\r\nG1\r\n");
        EXPECT_EQ(child[0].modified, 1);
    }
    answer_box("Reload");
    command(1002);
    EXPECT_EQ(rows(), (std::vector<std::string>{"G7", "G1", ""}));
    EXPECT_EQ(child[0].modified, 0);
    EXPECT_EQ(bytes(), "G7\r\nG1\r\n");
    EXPECT_EQ(unused_answers(), 0);
}

TEST_F(FileGuardTest, TheFocusAsksOnceForEachStateOfTheFile) {
    start_with("G0\r\n");
    gain_focus();
    EXPECT_EQ(boxes(), 0U);
    write_in_place("G7");
    answer_box("Cancel");
    gain_focus();
    EXPECT_EQ(boxes(), 1U);
    gain_focus();
    EXPECT_EQ(boxes(), 1U);
    write_in_place("G8");
    answer_box("Reload");
    gain_focus();
    EXPECT_EQ(boxes(), 2U);
    EXPECT_EQ(rows()[0], "G8");
    gain_focus();
    EXPECT_EQ(boxes(), 2U);
    // Mode and links are nobody's text.
    fs::permissions(path("part.nc"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_hard_link(path("part.nc"), path("link.nc"));
    gain_focus();
    EXPECT_EQ(boxes(), 2U);
}

TEST_F(FileGuardTest, ARemovedFileCanBeWrittenAgainOrElsewhere) {
    start_with("G0\r\nG1\r\n");
    fs::remove(path("part.nc"));
    answer_box("Cancel");
    gain_focus();
    EXPECT_EQ(last_buttons(), "Overwrite|Save As|Cancel");
    EXPECT_FALSE(exists("part.nc"));
    type_text("X");
    answer_box("Overwrite");
    command(1002);
    EXPECT_EQ(bytes(), "XG0\r\nG1\r\n");

    fs::remove(path("part.nc"));
    type_text("Y");
    answer_box("Save As");
    answer_file_dialog(path("mine.nc").c_str());
    gain_focus();
    EXPECT_EQ(bytes("mine.nc"), "XYG0\r\nG1\r\n");
    EXPECT_FALSE(exists("part.nc"));
    EXPECT_STREQ(child[0].file_title, "mine.nc");
    EXPECT_EQ(unused_answers(), 0);
}

TEST_F(FileGuardTest, SaveAsToAnotherNameOfTheFileKeepsTheEditsOnShow) {
    start_with("G0\r\n");
    fs::create_hard_link(path("part.nc"), path("twin.nc"));
    type_text("X");
    answer_file_dialog(path("twin.nc").c_str());
    answer_box("Yes");
    command(1003);
    EXPECT_EQ(rows()[0], "XG0");
    EXPECT_EQ(bytes(child[0].file_title), "XG0\r\n");
}

TEST_F(FileGuardTest, SaveAsReplacesOnlyAFileThatMayBeWritten) {
    start_with("G0\r\n");
    type_text("X");
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    answer_file_dialog(path("pipe").c_str());
    answer_box("OK");
    cancel_file_dialog();
    command(1003);
    EXPECT_TRUE(fs::is_fifo(path("pipe")));
    EXPECT_EQ(rows()[0], "XG0");
    EXPECT_EQ(child[0].modified, 1);

    write("kept.nc", "kept\r\n");
    deny_path(path("kept.nc").c_str(), DENY_WRITE);
    answer_file_dialog(path("kept.nc").c_str());
    answer_box("Yes");
    answer_box("OK");
    command(1003);
    EXPECT_EQ(unused_answers(), 0);
    EXPECT_EQ(bytes("kept.nc"), "kept\r\n");
    EXPECT_EQ(rows()[0], "XG0");
    EXPECT_EQ(child[0].modified, 1);
}

}  // namespace
}  // namespace hexlane
