// What the status line's fields say.

#include "shell/status_line.h"

#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr int MESSAGE = 101;
constexpr int FILE_NAME = 102;

class StatusLineTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start();
    }

    static std::string shown_title(const std::string& title) {
        copy_text(child[0].file_title, PATH_SIZE, title.c_str());
        show_file_name();
        return status_text(FILE_NAME);
    }

    static std::string times(int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; i++)
            all += text;
        return all;
    }
};

TEST_F(StatusLineTest, TitlesOfFortyCharactersAreCut) {
    const std::string umlaut = "\xC3\xA4";
    const std::string clef = "\xF0\x9D\x84\x9E";
    EXPECT_EQ(shown_title(times(39, "a")), times(39, "a"));
    EXPECT_EQ(shown_title(times(40, "a")), times(37, "a") + "..");
    EXPECT_EQ(shown_title(times(255, "a")), times(37, "a") + "..");
    EXPECT_EQ(shown_title(times(39, umlaut)), times(39, umlaut));
    EXPECT_EQ(shown_title(times(40, umlaut)), times(37, umlaut) + "..");
    EXPECT_EQ(shown_title(times(64, clef)), times(37, clef) + "..");
    EXPECT_EQ(shown_title(""), times(45, " "));
}

TEST_F(StatusLineTest, MessagesGoByTheirNumberAndOthersChangeNothing) {
    show_status(STATUS_EDIT_MODE);
    for (const int without_text : {-1, 0, 3, 16, 20, 22, 1000}) {
        show_status(without_text);
        EXPECT_EQ(status_text(MESSAGE), "Edit Mode...") << without_text;
    }
    show_status(STATUS_BLANK);
    EXPECT_EQ(status_text(MESSAGE), times(30, " "));
}

}  // namespace
}  // namespace hexlane
