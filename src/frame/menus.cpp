#include "frame/menus.h"

#include "dnc/transfer_state.h"
#include "edit/block_commands.h"
#include "frame/commands.h"
#include "frame/transfer_watch.h"
#include "macros/macro_table.h"
#include "platform/desktop.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

bool is_enabled(Enabled rule) {
    if (rule == Enabled::ALWAYS)
        return true;
    if (!child[0].file_open)
        return false;
    switch (rule) {
    case Enabled::BLOCK_MARKED:
        return !macros.recording && child[0].block_active != 0;
    case Enabled::CUT_OR_COPIED:
        return !macros.recording && (copy_block.start.row >= 0 || cut_block.start.row >= 0);
    case Enabled::PORT_QUIET:
        return transfer_state[0].status != SENDING && transfer_state[0].status != RECEIVING;
    case Enabled::MACRO_THERE:
        return !macros.recording && macros.count > 0;
    case Enabled::NOT_RECORDING:
        return !macros.recording;
    case Enabled::RECORDING:
        return macros.recording;
    default:
        return true;
    }
}

}  // namespace

void work_out_menus() {
    label_send_this();
    for (int i = 0; i < COMMAND_COUNT; i++) {
        const Command& command = COMMANDS[i];
        if (command.id != 0 && command.popup != 0)
            set_menu_enabled(command.id, command.run != nullptr && is_enabled(command.enabled));
    }
}

}  // namespace hexlane
