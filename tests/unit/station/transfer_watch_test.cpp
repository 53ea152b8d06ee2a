// The main window's look at the transfers, once a second.

#include "dnc/machine_fields.h"
#include "dnc/transfer_state.h"
#include "frame/commands.h"
#include "frame/transfer_watch.h"
#include "platform/clock.h"
#include "platform/scripted/test_hooks.h"
#include "shell/status_line.h"
#include "shell/ui_timer.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr int ICON = 106;  // of the status line

class TransferWatch : public ProgramTest {
protected:
    void TearDown() override {
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            transfer_state[slot].status = PORT_IDLE;
        stop_ui_timer();
        ProgramTest::TearDown();
    }
};

// Between the machine's request and the first block a look may find either slot in the hands of its worker.
TEST_F(TransferWatch, GoesOnUntilBothSlotsAreQuiet) {
    start();
    for (const int slot : {0, 1}) {
        for (const int8_t status : {SEND_STANDBY, XON_SEEN, SENDING, RECEIVE_STANDBY, RECEIVING}) {
            SCOPED_TRACE(static_cast<int>(status));
            transfer_state[slot].status = status;
            transfer_state[slot].last_activity_tick = tick_ms();
            set_ui_timer(UI_TIMER_SLOW);
            show_activity_icon(true);
            watch_transfers();
            EXPECT_TRUE(slow_timer_running());
            EXPECT_TRUE(status_shown(ICON));
            transfer_state[slot].status = PORT_IDLE;
            watch_transfers();
            EXPECT_FALSE(slow_timer_running());
            EXPECT_FALSE(status_shown(ICON));
        }
    }
}

TEST_F(TransferWatch, SendThisNamesTheMachineByTheTableOfTheRows) {
    start();
    set_machine_name(&machine_table[0], "FR\xC3\x84SE");
    EXPECT_STREQ(machine_table[0].name, "FR\xC4SE");
    label_send_this();
    EXPECT_EQ(menu_text(COMMAND_SEND_THIS), "Send This - FR\xC3\x84SE");
}

}  // namespace
}  // namespace hexlane
