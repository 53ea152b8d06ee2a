#include "terminal/terminal_line.h"

#include <algorithm>
#include <utility>

namespace hexlane {

using namespace platform;

namespace {

constexpr std::size_t WRITE_MAX = 512;  // bytes of one write: Close and Clear need not wait for more
constexpr uint32_t EVENTS = EV_RXCHAR | EV_TXEMPTY;

}  // namespace

TerminalLine::TerminalLine(std::function<void()> something_new) : tell(std::move(something_new)) {}

TerminalLine::~TerminalLine() {
    close();
}

bool TerminalLine::open(int port, const LineSettings& settings) {
    close();
    const LineHandle opened = line_open(port);
    if (opened == NO_LINE)
        return false;
    if (!line_configure(opened, settings)) {
        line_close(opened);
        return false;
    }
    line = opened;
    gone = false;
    line_set_mask(line, EVENTS);
    line_set_dtr(line, true);
    worker = std::thread([this] { run(); });
    return true;
}

int64_t TerminalLine::close() {
    if (!is_open())
        return 0;
    line_set_mask(line, 0);
    worker.join();
    take_in();
    const int64_t dropped = drop_outgoing();
    line_purge(line);
    line_set_dtr(line, false);
    line_close(line);
    line = NO_LINE;
    return dropped;
}

// A write that was cut off has left as far as the driver has it.
int64_t TerminalLine::drop_outgoing() {
    const std::lock_guard guard(lock);
    const int64_t handed = writing.empty() ? 0 : line_written(line);
    const auto waiting = static_cast<int64_t>(outgoing.size() + writing.size());
    sent += handed;
    outgoing.clear();
    writing.clear();
    return waiting - handed;
}

bool TerminalLine::has_gone() {
    const std::lock_guard guard(lock);
    return gone;
}

LineSettings TerminalLine::settings() const {
    LineSettings real = {};
    line_settings(line, &real);
    return real;
}

void TerminalLine::send(std::string_view bytes) {
    if (!is_open())
        return;
    const std::lock_guard guard(lock);
    outgoing += bytes;
    write_next();
}

int64_t TerminalLine::bytes_sent() {
    const std::lock_guard guard(lock);
    return sent;
}

int64_t TerminalLine::bytes_waiting() {
    const std::lock_guard guard(lock);
    return static_cast<int64_t>(outgoing.size() + writing.size());
}

std::string TerminalLine::take_received() {
    const std::lock_guard guard(lock);
    return std::exchange(received, {});
}

// Hands the next bytes to the line if no write runs.
void TerminalLine::write_next() {
    if (!writing.empty() || outgoing.empty())
        return;
    writing = outgoing.substr(0, WRITE_MAX);
    outgoing.erase(0, writing.size());
    if (!line_write(line, writing.data(), static_cast<int>(writing.size()))) {
        outgoing.insert(0, writing);  // the line has failed: its wait tells, and close counts what is lost
        writing.clear();
    }
}

void TerminalLine::take_in() {
    char bytes[RECEIVE_RING];
    int count = 0;
    while ((count = line_read(line, bytes, sizeof bytes)) > 0) {
        const std::lock_guard guard(lock);
        received.append(bytes, static_cast<std::size_t>(count));
    }
}

void TerminalLine::run() {
    for (;;) {
        uint32_t events = 0;
        const bool failed = !line_wait_event(line, &events) || (events & EV_GONE) != 0;
        if (failed || (events & EV_RXCHAR) != 0) {
            take_in();
            {
                const std::lock_guard guard(lock);
                gone = gone || failed;
            }
            tell();
        }
        if (failed || events == 0)
            return;
        if ((events & EV_TXEMPTY) != 0) {
            const std::lock_guard guard(lock);
            sent += static_cast<int64_t>(writing.size());
            writing.clear();
            write_next();
        }
    }
}

}  // namespace hexlane
