#include "dnc/eia_code.h"
#include "dnc/filters.h"
#include "dnc/machine_fields.h"
#include "dnc/transfer_state.h"

namespace hexlane {

int receive_filter(int count, const uint8_t* bytes, int slot) {
    const MachineParams& machine = machine_of_slot(slot);
    const TransferState& t = transfer_state[slot];
    const int data_type = machine_setting(machine, Field::DATA_TYPE);
    const bool as_it_came =
        data_type == DATA_BINARY || machine_setting(machine, Field::EOB_CONVERSION) == EOB_NO_CONVERSION;
    uint8_t* out = transfer_buffers[slot].file_buffer;
    int stored = 0;
    for (int i = 0; i < count; i++) {
        uint8_t c = bytes[i];
        if (c == 0 && data_type != DATA_BINARY)
            continue;
        if (data_type == DATA_EIA)
            c = c == XOFF_EIA_ALTERNATE ? XOFF_DEFAULT : EIA_CODE.receive[c];
        if (as_it_came) {
            out[stored++] = c;
        } else if (c == t.eob_bytes[0] && t.eob_on) {
            out[stored++] = '\r';
            out[stored++] = '\n';
        } else if (c != t.eob_bytes[1] && c != t.eob_bytes[2]) {
            out[stored++] = c;
        }
    }
    return stored;
}

}  // namespace hexlane
