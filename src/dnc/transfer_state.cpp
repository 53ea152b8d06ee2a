#include "dnc/transfer_state.h"

#include <cstring>

namespace hexlane {

TransferState transfer_state[SLOT_COUNT];
TransferBuffers transfer_buffers[SLOT_COUNT];
int32_t send_continuous = 0;
int32_t send_now = 0;

void reset_transfer(int slot) {
    TransferState& t = transfer_state[slot];
    std::memset(&transfer_buffers[slot], 0, sizeof transfer_buffers[slot]);
    t.out_index = 0;
    t.in_index = 0;
    t.out_count = 0;
    t.source_count = 0;
    t.block_count = 0;
    t.start_offset = 0;
    t.file_position = 0;
    t.fill_done = 0;
    t.source_ended = 0;
    t.last_buffer = 0;
    t.nul_behind = 0;
    t.block_check = 0;
    t.need_start = 0;
    t.end_sent = 0;
    t.file_count = 0;
    t.carry_count = 0;
    t.prepared = 0;
}

bool slot_is_busy(int slot) {
    switch (transfer_state[slot].status) {
    case SENDING:
    case SEND_STANDBY:
    case XON_SEEN:
    case RECEIVING:
    case RECEIVE_STANDBY:
        return true;
    default:
        return false;
    }
}

bool is_active_file(const char* path) {
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        if (slot_is_busy(slot) && platform::same_path(transfer_state[slot].file_name, path))
            return true;
    }
    return false;
}

}  // namespace hexlane
