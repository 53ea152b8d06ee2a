// The log of the transfers, and the texts of the rows.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/stat.h>

#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"
#include "shell/view_controls.h"
#include "station/activity.h"
#include "station/port_report.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

namespace fs = std::filesystem;
using namespace platform;

class TransferLog : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start();
        transfer_state[0].fault = TransferFault::NONE;
        transfer_state[0].status = PORT_IDLE;
        ASSERT_EQ(port_open(0), 1);
    }
    void TearDown() override {
        port_close(0);
        transfer_state[0].status = PORT_IDLE;
        ProgramTest::TearDown();
    }

    static auto rows_of(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

    std::string log(const std::string& name = "transfers.log") const { return read_bytes(home + "/" + name); }
};

TEST_F(TransferLog, OneLineATransferAndNoneWithoutOne) {
    begin_log_entry(0, true);
    end_log_entry(0);
    end_log_entry(0);
    EXPECT_EQ(rows_of(log()), 1);
    EXPECT_NE(log().find("result stopped\n"), std::string::npos);
}

// Its name stands in the log before the file is made; one that could not be made is no receive that was cut.
TEST_F(TransferLog, AReceiveIsBegunAheadOfItsFile) {
    copy_text(transfer_state[0].file_name, PATH_SIZE, "/nc/a\nb.nc");
    begin_log_entry(0, false);
    EXPECT_NE(log().find("; file /nc/a b.nc\n"), std::string::npos);
    tell_cut_receives();
    EXPECT_EQ(rows_of(log()), 1);
    set_last_file_error(FileError::DISK_FULL);
    drop_log_entry(0);
    EXPECT_NE(log().find("received /nc/a b.nc; result not begun: no space is left"), std::string::npos);
    tell_cut_receives();
    EXPECT_EQ(rows_of(log()), 2);
    EXPECT_TRUE(shown_boxes().empty());
}

TEST_F(TransferLog, AFullLogTakesThePlaceOfTheOldOne) {
    write_bytes(home + "/transfers.old", "older\n");
    write_bytes(home + "/transfers.log", std::string(LOG_LIMIT - 1, '.') + "\n");
    begin_log_entry(0, true);
    end_log_entry(0);
    EXPECT_EQ(rows_of(log()), 1);
    EXPECT_EQ(log("transfers.old").size(), static_cast<std::size_t>(LOG_LIMIT));
}

TEST_F(TransferLog, ALogThatCannotBeWrittenIsToldOnce) {
    ASSERT_EQ(std::system(("mkdir " + home + "/transfers.log").c_str()), 0);
    answer_box("OK");
    for (int i = 0; i < 2; i++) {
        begin_log_entry(0, true);
        end_log_entry(0);
        tell_log_failure();
    }
    EXPECT_EQ(unused_answers(), 0);
    EXPECT_NE(shown_boxes().back().text.find("it is not an ordinary file"), std::string::npos)
        << shown_boxes().back().text;
}

// A file term.exe that somebody else may have laid into the program's folder never runs.
TEST_F(TransferLog, AStrangersTerminalIsNotRunAndTheLogSaysWhy) {
    const std::string terminal = home + "/ZOLT/term.exe";
    const struct {
        std::string changed;
        mode_t mode;
        bool runs;
    } CASES[] = {{terminal, 0755, true},
                 {terminal, 0757, false},
                 {home + "/ZOLT", 0777, false},
                 {home, 0777, false},
                 {home + "/work", 0777, false}};  // the folder that the link leads to
    for (const auto& c : CASES) {
        fs::remove(terminal);
        write_bytes(path("term.exe"), "x");
        if (c.changed == work)
            fs::create_symlink(path("term.exe"), terminal);
        else
            write_bytes(terminal, "x");
        ASSERT_EQ(chmod(c.changed.c_str(), c.mode), 0);
        press_terminal(0);
        EXPECT_EQ(shown_lines().back(), c.runs ? "run \"" + terminal + "\"" : "run \"hexlane-terminal\"")
            << c.changed;
        EXPECT_EQ(log().find("note term.exe is not run: ") != std::string::npos, !c.runs) << log();
        ASSERT_EQ(chmod(c.changed.c_str(), 0755), 0);
        fs::remove(home + "/transfers.log");
    }
}

// The user has named that folder, so it is used.
TEST_F(TransferLog, AProgramFolderOfOthersIsToldInTheLog) {
    ASSERT_EQ(chmod(home.c_str(), 0777), 0);
    command(1007);
    reset_desktop();
    start();
    EXPECT_NE(log().find("note HEXLANE_HOME is used, but no program in it is run: " + home),
              std::string::npos)
        << log();
}

// The machine stops the line with XOFF; looks come every half second.
TEST_F(TransferLog, TheTimeThatTheMachineHoldsTheLineIsCounted) {
    write("part.nc", std::string(1000, 'X'));
    copy_text(transfer_state[0].file_name, PATH_SIZE, path("part.nc").c_str());
    transfer_state[0].total_bytes = 1000;
    send_now = 1;
    ASSERT_EQ(prepare_send(0), 1);
    begin_log_entry(0, true);
    advance_clock(500);
    watch_line(0);
    feed_line(1, "\x13");
    for (int i = 0; i < 4; i++) {
        advance_clock(500);
        watch_line(0);
    }
    char tip[2 * PATH_SIZE];
    format_row_tip(0, tip, sizeof tip);
    EXPECT_NE(std::string(tip).find("held by the machine for 2.0 s"), std::string::npos) << tip;
    EXPECT_NE(std::string(tip).find("9600 baud asked, 9600 set"), std::string::npos) << tip;
}

TEST(ShortenedPath, CountsCharactersAndCutsBetweenThem) {
    const struct {
        const char* path;
        const char* shown;
    } CASES[] = {
        {"", ""},
        {"/a/19-characters.nc", "/a/19-characters.nc"},
        {"/ab/20-characters.nc", "../20-characters.nc"},
        {"/\xC3\xA4/19-character.nc", "/\xC3\xA4/19-character.nc"},
        {"/part/kr\xC3\xBCmmer-\xC3\xBC\xC3\xBC\xC3\xBC.nc",
         "..rt/kr\xC3\xBCmmer-\xC3\xBC\xC3\xBC\xC3\xBC.nc"},
    };
    for (const auto& [path, shown] : CASES) {
        char text[PATH_SIZE];
        shorten_path(text, sizeof text, path, 19, 17);
        EXPECT_STREQ(text, shown) << path;
    }
}

TEST_F(TransferLog, NumbersOfMoreThan32BitsAreToldWhole) {
    begin_log_entry(0, false);
    transfer_state[0].tally.line_bytes = 5'000'000'001;
    transfer_state[0].tally.file_bytes = 4'500'000'002;
    char tip[300];
    format_row_tip(0, tip, sizeof tip);
    EXPECT_NE(std::string(tip).find("\n5000000001 bytes over the line, 4500000002 of"), std::string::npos);
    end_log_entry(0);
    EXPECT_NE(log().find("file 4500000002 bytes"), std::string::npos);
    EXPECT_NE(log().find("line 5000000001 bytes"), std::string::npos);
}

// Its size in 32 bits would be that of a short program.
TEST_F(TransferLog, AFileOfFourGigabytesAndALittleIsNotSent) {
    write("huge.nc", "N1\r\n");
    fs::resize_file(path("huge.nc"), (int64_t{1} << 32) + 100);
    copy_text(transfer_state[0].file_name, PATH_SIZE, path("huge.nc").c_str());
    EXPECT_EQ(prepare_send(0), 0);
    answer_box("OK");
    cancel_file_dialog();
    EXPECT_FALSE(press_send(0));
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_NE(shown_boxes()[0].text.find("too large to be sent"), std::string::npos);
}

}  // namespace
}  // namespace hexlane
