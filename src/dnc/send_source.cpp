// send_source.cpp: reading the file that is being sent. It is not held open between reads. A file that is no
// longer the one that the send began with is not read any further: half of one program and half of another
// must not reach a machine. What has been read goes out, and the user is told.
//
// A stamp also changes where no byte does: a touch, a copy in the file's place, a file system that makes up
// inodes anew. So the reads look ahead: they carry on a checksum of the whole file, which is complete after
// a few of them. A file with another stamp and the same size is held against it before the change counts.

#include "dnc/crc32.h"
#include "dnc/transfer.h"
#include "platform/files.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int64_t LOOK_AHEAD = 256 * 1024;  // bytes of a read; no longer than the line waits for a disk

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

// Adds the bytes up to `end`. 0 when they can't be read, or the file is no longer what `stamp` says.
int add_bytes(FileHandle file, const FileStamp& stamp, int64_t end, SourceSum* sum) {
    uint8_t piece[16384];
    while (sum->bytes < end) {
        const int64_t wanted = std::min<int64_t>(end - sum->bytes, sizeof piece);
        if (file_read_at(file, sum->bytes, piece, static_cast<std::size_t>(wanted)) != wanted)
            return 0;
        sum->crc = crc32(sum->crc, piece, static_cast<std::size_t>(wanted));
        sum->bytes += wanted;
    }
    FileStamp now;
    return file_stamp(file, &now) && same_source(now, stamp);
}

void look_ahead(TransferState& t, FileHandle file) {
    if (t.source_sum.bytes == t.source_stamp.size)
        return;
    SourceSum sum = t.source_sum;
    if (add_bytes(file, t.source_stamp, std::min(sum.bytes + LOOK_AHEAD, t.source_stamp.size), &sum))
        t.source_sum = sum;
}

// Whether a file that has got the new stamp `stamp` holds the bytes that the send began with.
bool has_same_bytes(const TransferState& t, FileHandle file, const FileStamp& stamp) {
    SourceSum sum = {};
    return t.source_sum.bytes == t.source_stamp.size && stamp.size == t.source_stamp.size &&
           add_bytes(file, stamp, stamp.size, &sum) && sum.crc == t.source_sum.crc;
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
    const int known = file_stamp(file, &stamp);
    int64_t length = -1;
    if (known && !same_source(stamp, t.source_stamp) && !has_same_bytes(t, file, stamp)) {
        end_source(slot, TransferFault::SOURCE_CHANGED);
        length = 0;
    } else if (known) {
        t.source_stamp = stamp;
        length = file_read_at(file, t.file_position, transfer_buffers[slot].file_buffer, size);
        look_ahead(t, file);
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

// A NUL ends a piece of a line like a line feed, and is skipped: the filters never see it, but it is a byte
// of the file, and counts as taken when the piece in front of it has been used up. A piece that is empty for
// that reason is not the end.
void read_line(int slot) {
    constexpr uint8_t NUL = 0;
    TransferState& t = transfer_state[slot];
    uint8_t* buffer = transfer_buffers[slot].file_buffer;
    do {
        if (t.nul_behind)
            count_taken(slot, &NUL, 1);
        t.nul_behind = 0;
        const int64_t length = read_source(slot, LINE_LIMIT);
        if (length == 0) {
            t.last_buffer = 1;
            return;
        }
        int32_t taken = 0;
        while (taken < length && buffer[taken] != '\n' && buffer[taken] != '\0')
            taken++;
        const bool line_feed = taken < length && buffer[taken] == '\n';
        t.nul_behind = taken < length && !line_feed;
        t.file_count = taken + (line_feed ? 1 : 0);
        t.file_position += t.file_count + t.nul_behind;
    } while (t.file_count == 0);
}

void count_taken(int slot, const uint8_t* bytes, std::size_t count) {
    TransferTally& tally = transfer_state[slot].tally;
    tally.file_crc = crc32(tally.file_crc, bytes, count);
    tally.file_bytes += static_cast<int64_t>(count);
}

}  // namespace hexlane
