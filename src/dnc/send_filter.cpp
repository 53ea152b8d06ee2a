// send_filter.cpp: compression, end-of-block conversion, block framing, code, one byte after the other.

#include "dnc/eia_code.h"
#include "dnc/filters.h"
#include "dnc/machine_fields.h"
#include "dnc/transfer_state.h"

#include <algorithm>

namespace hexlane {

namespace {

constexpr uint8_t LOWEST_CHECK = 0x20;  // a HEIDENHAIN block check is never a control character
constexpr int HIGHEST_SEQUENCE_CHAR = 128;
constexpr int PER_BYTE_MAX = 16;  // line bytes that one file byte can bring, generously
constexpr int OUTPUT_FILL_LIMIT = OUTPUT_BUFFER_SIZE - PER_BYTE_MAX;  // beyond it no further byte is taken

// What one fill works with: the machine's settings and the slot's buffers, looked up once.
struct Filter {
    TransferState& t;
    TransferBuffers& buffers;
    const MachineParams& machine;
    int protocol;
    bool eia;
    bool compress_comments;
    bool compress_line_numbers;
    bool compress_spaces;
    bool compress_tabs;
    bool compress_any;  // of the four above
    int dropped;        // the character to leave out, -1 for none
    bool plain;         // no option, code or framing looks at bytes between line ends, but for `dropped`
};

Filter make_filter(int slot) {
    const MachineParams& m = machine_of_slot(slot);
    const bool comments = machine_setting(m, Field::COMPRESS_COMMENTS) != 0;
    const bool numbers = machine_setting(m, Field::COMPRESS_LINE_NUMBERS) != 0;
    const bool spaces = machine_setting(m, Field::COMPRESS_SPACES) != 0;
    const bool tabs = machine_setting(m, Field::COMPRESS_TABS) != 0;
    const bool any = comments || numbers || spaces || tabs;
    const int protocol = machine_setting(m, Field::PROTOCOL);
    const bool eia = machine_setting(m, Field::DATA_TYPE) == DATA_EIA;
    const bool framed = protocol == PROTOCOL_HEIDENHAIN || protocol == PROTOCOL_BRIDGEPORT;
    return {transfer_state[slot],
            transfer_buffers[slot],
            m,
            protocol,
            eia,
            comments,
            numbers,
            spaces,
            tabs,
            any,
            machine_setting(m, Field::COMPRESS_CHARACTER_ON) != 0
                ? machine_setting(m, Field::COMPRESS_CHARACTER)
                : -1,
            !any && !eia && !framed};
}

// The last stage: one byte into the output buffer, or behind it into the carry.
void raw_out(Filter& f, uint8_t c) {
    if (f.eia) {
        c = EIA_CODE.send[c];
        if (c == 0)
            return;
    }
    if (f.t.out_count < OUTPUT_BUFFER_SIZE && f.t.carry_count == 0)
        f.buffers.output_buffer[f.t.out_count++] = c;
    else if (f.t.carry_count < CARRY_BUFFER_SIZE)
        f.buffers.carry_buffer[f.t.carry_count++] = c;
}

void mixed_out(Filter& f, uint8_t c) {
    raw_out(f, c);
    f.t.block_check = static_cast<uint8_t>(f.t.block_check ^ c);
}

// What goes out behind a line feed: the check byte, kept printable by a space, and the start of the next
// block.
void close_heidenhain_block(Filter& f) {
    if (f.t.block_check < LOWEST_CHECK)
        mixed_out(f, ' ');
    mixed_out(f, ETB);
    raw_out(f, f.t.block_check);
    f.t.block_check = 0;
    mixed_out(f, STX);
    f.t.tally.blocks++;
}

void close_bridgeport_block(Filter& f) {
    raw_out(f, ETB);
    f.t.block_count = 0;
    f.t.block_check = 0;
    f.t.wait_for_ack = 1;
    f.t.tally.blocks++;
}

// One byte through the framing of the machine's protocol.
void framed_out(Filter& f, uint8_t c) {
    switch (f.protocol) {
    case PROTOCOL_HEIDENHAIN:
        mixed_out(f, c);
        if (c == '\n')
            close_heidenhain_block(f);
        break;
    case PROTOCOL_BRIDGEPORT:
        mixed_out(f, c);
        if (++f.t.block_count >= BRIDGEPORT_BLOCK)
            close_bridgeport_block(f);
        break;
    default:
        raw_out(f, c);
    }
}

void repeated_out(Filter& f, int c, int count) {
    if (c < 0 || c > HIGHEST_SEQUENCE_CHAR)
        return;
    while (count-- > 0)
        raw_out(f, static_cast<uint8_t>(c));
}

// A blank in the middle is skipped and ends nothing.
void string_out(Filter& f, const uint8_t (&string)[MACHINE_STRING_SIZE]) {
    for (const uint8_t c : string) {
        if (c < 0x80)
            raw_out(f, c);
    }
}

void send_start_sequence(Filter& f) {
    f.t.need_start = 0;
    repeated_out(f, machine_setting(f.machine, Field::START_CHAR),
                 machine_setting(f.machine, Field::START_CHAR_COUNT));
    string_out(f, f.machine.start_string);
    if (f.protocol == PROTOCOL_HEIDENHAIN) {
        raw_out(f, ACK);
        mixed_out(f, STX);
    }
}

void send_end_sequence(Filter& f) {
    string_out(f, f.machine.end_string);
    repeated_out(f, machine_setting(f.machine, Field::END_CHAR),
                 machine_setting(f.machine, Field::END_CHAR_COUNT));
    switch (f.protocol) {
    case PROTOCOL_PHILLIPS:
        raw_out(f, EOT);
        break;
    case PROTOCOL_HEIDENHAIN:
        raw_out(f, FF);
        raw_out(f, ETX);
        break;
    case PROTOCOL_BRIDGEPORT:
        raw_out(f, ETB);
        raw_out(f, f.t.block_check);
        raw_out(f, EOT);
        f.t.tally.blocks++;
        break;
    default:
        break;
    }
}

// The four compression options. Gives true when the byte is dropped.
bool drop_compressed(Filter& f, uint8_t c) {
    TransferState& t = f.t;
    if (c == '\r' || c == '\n') {
        if (t.in_comment || (!t.line_has_output && t.comment_dropped)) {
            if (c == '\n') {
                t.comment_dropped = 0;
                t.in_comment = 0;
            }
            return true;
        }
        t.in_comment = 0;
        t.in_line_number = 0;
        return false;
    }
    if (t.in_comment && f.compress_comments) {
        if (c == ')')
            t.in_comment = 0;
        return true;
    }
    if (t.in_line_number) {
        if (c >= '0' && c <= '9')
            return true;
        t.in_line_number = 0;
        return false;  // not looked at again: not even '(' and 'N' mean anything here
    }
    if (c == '(') {
        t.in_comment = 1;
        t.comment_dropped = f.compress_comments ? 1 : t.comment_dropped;
        return f.compress_comments;
    }
    if (c == ')')
        t.in_comment = 0;
    if (c == 'N' && !t.in_comment && f.compress_line_numbers) {
        t.in_line_number = 1;
        return true;
    }
    return false;
}

// One file byte.
void filter_char(Filter& f, uint8_t c) {
    if (f.t.need_start)
        send_start_sequence(f);
    if (f.compress_any && drop_compressed(f, c))
        return;
    if ((c == ' ' && f.compress_spaces) || (c == '\t' && f.compress_tabs) || c == f.dropped)
        return;
    f.t.line_has_output = c != '\n';
    if (c == '\r' && f.t.eob_on) {
        for (int i = 0; i < f.t.eob_length; i++)
            framed_out(f, f.t.eob_bytes[i]);
        return;
    }
    if (c == '\n') {
        if (f.t.eob_on)
            return;  // the CR has stood for the whole line end
        framed_out(f, c);
        if (f.protocol == PROTOCOL_HEIDENHAIN)
            f.t.wait_for_ack = 1;
        return;
    }
    framed_out(f, c);
}

// Brings what was carried into the empty output buffer, which has room for all of it.
void take_carry(Filter& f) {
    static_assert(CARRY_BUFFER_SIZE < OUTPUT_BUFFER_SIZE);
    std::copy_n(f.buffers.carry_buffer, f.t.carry_count, f.buffers.output_buffer);
    f.t.out_count = f.t.carry_count;
    f.t.carry_count = 0;
}

// Takes the bytes of the file buffer that go out as they are, at most `limit`, in one run, as long as there
// is room for one more. Gives their number.
int take_plain(Filter& f, int limit) {
    if (f.t.need_start)
        return 0;
    const uint8_t* from = f.buffers.file_buffer + f.t.in_index;
    uint8_t* to = f.buffers.output_buffer + f.t.out_count;
    const int most = std::min(limit, OUTPUT_FILL_LIMIT - f.t.out_count);
    const int dropped = f.dropped;
    int count = 0;
    if (!f.t.eob_on && dropped < 0) {  // line ends go out as they are, too
        std::copy_n(from, most, to);
        count = most;
    }
    for (; count < most && from[count] != '\r' && from[count] != '\n' && from[count] != dropped; count++)
        to[count] = from[count];
    if (count > 0)
        f.t.line_has_output = to[count - 1] != '\n';
    f.t.out_count += count;
    f.t.in_index += count;
    f.t.source_count += count;
    return count;
}

// Takes at most `limit` bytes of the file buffer up to `end`. Stops behind the file's last byte, at a block
// that the machine must answer, and where the output buffer has no room for what one more byte can bring.
// A function of its own for the compiler too, whose code for the loop is a fifth faster for it.
[[gnu::noinline]] void take_source(Filter& f, int limit, int end) {
    limit = std::min({limit, end - f.t.in_index, std::max(f.t.total_bytes - f.t.source_count, 1)});
    while (limit > 0 && f.t.out_count <= OUTPUT_FILL_LIMIT && f.t.carry_count == 0) {
        if (f.plain)
            limit -= take_plain(f, limit);
        if (limit == 0)
            break;
        filter_char(f, f.buffers.file_buffer[f.t.in_index++]);
        f.t.source_count++;
        limit--;
        if (f.t.wait_for_ack)
            break;
    }
    f.t.source_ended = f.t.source_count >= f.t.total_bytes;
}

// The end sequence, once; 1 when all of it is in the output buffer.
int finish_fill(Filter& f) {
    if (f.t.need_start)
        send_start_sequence(f);  // a start point behind the last byte: no byte has brought it
    if (!f.t.end_sent) {
        send_end_sequence(f);
        f.t.end_sent = 1;
    }
    return f.t.carry_count == 0;
}

int fill(int slot, int limit) {
    Filter f = make_filter(slot);
    f.t.out_count = 0;
    take_carry(f);
    if (f.t.end_sent)
        return f.t.carry_count == 0;
    const int end = f.t.file_count;
    const bool nothing_left = f.t.in_index >= end && f.t.last_buffer;
    if (!f.t.source_ended && !nothing_left) {
        take_source(f, limit, end);
        if (!f.t.source_ended)
            return 0;
    }
    f.t.source_ended = 1;
    return finish_fill(f);
}

}  // namespace

int fill_from_buffer(int slot) {
    return fill(slot, FILL_LIMIT);
}

int fill_from_line(int slot) {
    return fill(slot, LINE_LIMIT);
}

}  // namespace hexlane
