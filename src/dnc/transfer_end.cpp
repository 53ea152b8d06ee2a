#include "dnc/transfer_end.h"

#include "dnc/port_engine.h"
#include "dnc/transfer_state.h"
#include "platform/files.h"
#include "platform/serial.h"

namespace hexlane {

using namespace platform;

bool transfer_end_text(int slot, char text[END_TEXT_SIZE]) {
    const TransferState& t = transfer_state[slot];
    switch (t.fault) {
    case TransferFault::LINE_GONE: {
        char port[PATH_SIZE + 16];
        line_name(port_slot[slot].port_number, port, sizeof port);
        format_text(text, END_TEXT_SIZE,
                    "File Transmission Terminated.\n\n%s has gone: the adapter was unplugged or the line was "
                    "hung up.",
                    port);
        return true;
    }
    case TransferFault::SOURCE_CHANGED:
        format_text(text, END_TEXT_SIZE,
                    "File Transmission Terminated.\n\n%s was changed or removed by another program while it "
                    "was being sent. What the machine has is not the whole program.",
                    t.file_name);
        return true;
    case TransferFault::CANNOT_READ:
        format_text(text, END_TEXT_SIZE,
                    "File Transmission Terminated.\n\n%s could not be read. What the machine has is not the "
                    "whole program.",
                    t.file_name);
        return true;
    case TransferFault::CANNOT_WRITE:
        format_text(text, END_TEXT_SIZE,
                    "File Transmission Terminated.\n\nReceived data could not be written to %s: %s. What "
                    "came before is in the file.",
                    t.file_name, file_error_text(t.fault_error));
        return true;
    case TransferFault::BYTES_LOST:
        format_text(
            text, END_TEXT_SIZE,
            "File Transmission Terminated.\n\nBytes were lost on the line while %s was being received: the "
            "machine sent faster than the port could take them. The file is not the whole program.",
            t.file_name);
        return true;
    default: {
        const bool complete = t.status == SEND_DONE || t.status == RECEIVE_DONE;
        copy_text(text, END_TEXT_SIZE,
                  complete ? "File Transmission Complete." : "File Transmission Terminated.");
        return false;
    }
    }
}

}  // namespace hexlane
