#include "frame/transfer_watch.h"

#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "dnc/transfer.h"
#include "dnc/transfer_log.h"
#include "frame/commands.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/ui_timer.h"
#include "shell/window.h"
#include "station/port_report.h"

namespace hexlane {

namespace {

bool any_slot(int8_t first, int8_t second) {
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        const int8_t status = transfer_state[slot].status;
        if (status == first || status == second)
            return true;
    }
    return false;
}

}  // namespace

void watch_transfers() {
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        watch_line(slot);
        check_receive_timeout(slot);
    }
    if (any_slot(SENDING, RECEIVING)) {
        show_activity_icon(true);
    } else if (!slot_is_busy(0) && !slot_is_busy(1)) {
        stop_ui_timer();
        show_activity_icon(false);
        update_menus();  // Send This works again
    }
}

void label_send_this() {
    char text[MACHINE_NAME_TEXT_SIZE + 16];
    char name[MACHINE_NAME_TEXT_SIZE];
    machine_name(chosen_machine(0), name);
    platform::format_text(text, sizeof text, "Send This - %s", name);
    platform::set_menu_text(COMMAND_SEND_THIS, text);
}

}  // namespace hexlane
