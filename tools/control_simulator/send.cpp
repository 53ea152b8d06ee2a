#include "send.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr int64_t SLICE_NS = 4000000;  // how often a paced send goes on, at most
constexpr std::size_t PIECE = 4096;

// ns that one character takes on the line; 0 when nothing is paced. A device paces itself.
int64_t character_time(const Options& o) {
    if (!o.device.empty() || o.rate == NOT_GIVEN)
        return 0;
    const int64_t bits = 1 + o.data_bits + (o.parity != Parity::NONE ? 1 : 0) + o.stop_bits;
    return bits * 1000000000 / o.rate;
}

// Keeps the pace: how many characters are due by now since the last hold.
struct Pace {
    int64_t per_character;
    int64_t since;
    int64_t sent;

    std::size_t due() const {
        if (per_character == 0)
            return PIECE;
        return static_cast<std::size_t>(std::max<int64_t>((now_ns() - since) / per_character + 1 - sent, 0));
    }
    int64_t next() const { return std::max(since + sent * per_character, now_ns() + SLICE_NS); }
};

std::size_t limit_of(const Options& o, std::size_t size) {
    if (o.hang_up_after == NOT_GIVEN || static_cast<std::size_t>(o.hang_up_after) > size)
        return size;
    return static_cast<std::size_t>(o.hang_up_after);
}

// Gives the number of bytes that have gone out.
std::size_t send_bytes(Session* s, const std::string& line_bytes, std::size_t limit) {
    Pace pace{character_time(s->options), now_ns(), 0};
    std::size_t at = 0;
    while (at < limit && s->end == End::NOT_YET) {
        if (s->held) {
            wait_to_send(s, 0);
            pace = {pace.per_character, now_ns(), 0};
            continue;
        }
        const std::size_t count = std::min({pace.due(), limit - at, PIECE});
        if (count == 0) {
            wait_to_send(s, pace.next());
            continue;
        }
        const int64_t written = write_line(s, line_bytes.data() + at, count);
        if (written > 0) {
            at += static_cast<std::size_t>(written);
            pace.sent += written;
            s->findings.line_bytes += written;
        }
        wait_until_writable(s);
    }
    return at;
}

}  // namespace

void send_program(Session* s, const std::string& line_bytes) {
    while (!s->started && s->end == End::NOT_YET)
        wait_to_send(s, 0);
    const std::size_t limit = limit_of(s->options, line_bytes.size());
    const std::size_t sent = s->end == End::NOT_YET ? send_bytes(s, line_bytes, limit) : 0;
    if (sent < limit) {
        add_fault(&s->findings, std::string(end_text(s->end)) + " with " +
                                    std::to_string(line_bytes.size() - sent) + " bytes still to send");
        return;
    }
    if (s->options.hang_up_after != NOT_GIVEN) {
        hang_up(s);
        return;
    }
    s->findings.passes = 1;
    while (s->end == End::NOT_YET)
        wait_to_send(s, 0);
    if (s->end != End::CLOSED && s->end != End::SILENCE)
        add_fault(&s->findings, std::string(end_text(s->end)) + " behind the last byte");
}

}  // namespace simulator
