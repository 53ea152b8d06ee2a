// send_source.cpp: reading the file that is being sent. It is not held open between reads. A file that is no
// longer the one that the send began with is not read any further: half of one program and half of another
// must not reach a machine. What has been read goes out, and the user is told.

#include "dnc/transfer.h"
#include "platform/files.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

bool same_source(const FileStamp& left, const FileStamp& right) {
    return left.device == right.device && left.inode == right.inode && left.size == right.size &&
           left.modified_ns == right.modified_ns;
}

void end_source(int slot, TransferFault fault) {
    TransferState& t = transfer_state[slot];
    t.last_buffer = 1;
    t.file_count = 0;
    if (t.fault == TransferFault::NONE)
        t.fault = fault;
}

// Reads up to `size` bytes at file_position into the file buffer. Gives their number; 0 at the end of the
// file, and after a fault, which is noted.
int64_t read_source(int slot, std::size_t size) {
    TransferState& t = transfer_state[slot];
    t.in_index = 0;
    t.file_count = 0;
    FileHandle file = file_open(t.file_name, FileAccess::READ);
    if (file == NO_FILE) {
        end_source(slot, TransferFault::SOURCE_CHANGED);
        return 0;
    }
    FileStamp stamp;
    int64_t length = -1;
    if (file_stamp(file, &stamp) && !same_source(stamp, t.source_stamp)) {
        end_source(slot, TransferFault::SOURCE_CHANGED);
        length = 0;
    } else {
        length = file_read_at(file, t.file_position, transfer_buffers[slot].file_buffer, size);
    }
    file_close(file);
    if (length < 0) {
        end_source(slot, TransferFault::CANNOT_READ);
        return 0;
    }
    return length;
}

}  // namespace

void read_chunk(int slot) {
    TransferState& t = transfer_state[slot];
    const int64_t length = read_source(slot, FILE_BUFFER_SIZE);
    t.file_position += static_cast<int32_t>(length);
    t.file_count = static_cast<int32_t>(length);
    if (length < FILE_BUFFER_SIZE)
        t.last_buffer = 1;
}

// A NUL ends a piece of a line like a line feed, and is skipped. A piece that is empty for that reason is not
// the end.
void read_line(int slot) {
    TransferState& t = transfer_state[slot];
    uint8_t* buffer = transfer_buffers[slot].file_buffer;
    do {
        const int64_t length = read_source(slot, LINE_LIMIT);
        if (length == 0) {
            t.last_buffer = 1;
            return;
        }
        int32_t taken = 0;
        while (taken < length && buffer[taken] != '\n' && buffer[taken] != '\0')
            taken++;
        const bool line_feed = taken < length && buffer[taken] == '\n';
        t.file_count = taken + (line_feed ? 1 : 0);
        t.file_position += taken < length ? taken + 1 : taken;
    } while (t.file_count == 0);
}

}  // namespace hexlane
