// The log of the transfers, and the texts of the rows.

#include <algorithm>
#include <cstdlib>
#include <string>

#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "frame/view_controls.h"
#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

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
    begin_log_entry(0);
    end_log_entry(0);
    end_log_entry(0);
    EXPECT_EQ(rows_of(log()), 1);
    EXPECT_NE(log().find("result stopped\n"), std::string::npos);
}

TEST_F(TransferLog, AFullLogTakesThePlaceOfTheOldOne) {
    write_bytes(home + "/transfers.old", "older\n");
    write_bytes(home + "/transfers.log", std::string(LOG_LIMIT - 1, '.') + "\n");
    begin_log_entry(0);
    end_log_entry(0);
    EXPECT_EQ(rows_of(log()), 1);
    EXPECT_EQ(log("transfers.old").size(), static_cast<std::size_t>(LOG_LIMIT));
}

TEST_F(TransferLog, ALogThatCannotBeWrittenIsToldOnce) {
    ASSERT_EQ(std::system(("mkdir " + home + "/transfers.log").c_str()), 0);
    answer_box("OK");
    for (int i = 0; i < 2; i++) {
        begin_log_entry(0);
        end_log_entry(0);
    }
    EXPECT_EQ(unused_answers(), 0);
    EXPECT_NE(shown_boxes().back().text.find("it is not an ordinary file"), std::string::npos)
        << shown_boxes().back().text;
}

// The machine stops the line with XOFF; looks come every half second.
TEST_F(TransferLog, TheTimeThatTheMachineHoldsTheLineIsCounted) {
    write("part.nc", std::string(1000, 'X'));
    copy_text(transfer_state[0].file_name, PATH_SIZE, path("part.nc").c_str());
    transfer_state[0].total_bytes = 1000;
    send_now = 1;
    ASSERT_EQ(prepare_send(0), 1);
    begin_log_entry(0);
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

}  // namespace
}  // namespace hexlane
