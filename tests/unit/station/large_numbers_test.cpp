// Transfers of more bytes than 32 bits count.

#include <filesystem>

#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "platform/scripted/test_hooks.h"
#include "station/activity.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

struct LargeNumbersTest : ProgramTest {
    void TearDown() override {
        port_close(0);
        ProgramTest::TearDown();
    }
};

TEST_F(LargeNumbersTest, ReceiptAndTipTellThemWhole) {
    start();
    ASSERT_EQ(port_open(0), 1);
    begin_log_entry(0, false);
    transfer_state[0].tally.line_bytes = 5'000'000'001;
    transfer_state[0].tally.file_bytes = 4'500'000'002;
    char tip[300];
    format_row_tip(0, tip, sizeof tip);
    EXPECT_NE(std::string(tip).find("5000000001 bytes over the line, 4500000002 of the file"),
              std::string::npos);
    end_log_entry(0);
    const std::string log = read_bytes(home + "/transfers.log");
    EXPECT_NE(log.find("file 4500000002 bytes"), std::string::npos);
    EXPECT_NE(log.find("line 5000000001 bytes"), std::string::npos);
}

// Its size in 32 bits would be that of a short program.
TEST_F(LargeNumbersTest, AFileOfFourGigabytesAndALittleIsNotSent) {
    start();
    write("huge.nc", "N1\r\n");
    std::filesystem::resize_file(path("huge.nc"), (int64_t{1} << 32) + 100);
    copy_text(transfer_state[0].file_name, PATH_SIZE, path("huge.nc").c_str());
    answer_box("OK");
    cancel_file_dialog();
    EXPECT_FALSE(press_send(0));
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_NE(shown_boxes()[0].text.find("too large to be sent"), std::string::npos) << shown_boxes()[0].text;
    ASSERT_EQ(port_open(0), 1);
    EXPECT_EQ(prepare_send(0), 0);
}

}  // namespace
}  // namespace hexlane
