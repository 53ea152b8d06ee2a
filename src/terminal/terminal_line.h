// terminal_line.h: the terminal's serial line: a thread of its own that waits for the line's events, bytes
// that have come, and bytes that are to go out, one write after the other. All but `something_new` belong to
// the main thread.
#pragma once

#include "platform/serial.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace hexlane {

class TerminalLine {
public:
    // `something_new` is called on the line's thread when bytes have come or the line has gone.
    explicit TerminalLine(std::function<void()> something_new);
    ~TerminalLine();
    TerminalLine(const TerminalLine&) = delete;
    TerminalLine& operator=(const TerminalLine&) = delete;

    // Opens COM `port`. False on failure: platform::line_problem_text says why.
    bool open(int port, const platform::LineSettings& settings);

    // Drops what has not gone out, and gives how many bytes that were. What has come in stays to be taken.
    int64_t close();

    bool is_open() const { return line != platform::NO_LINE; }
    bool has_gone();
    platform::LineSettings settings() const;  // with the rate that the driver has set

    void send(std::string_view bytes);
    int64_t bytes_sent();     // that have left, on this line and those that were opened before
    int64_t bytes_waiting();  // still to go out
    bool is_held() const { return is_open() && platform::line_held(line); }
    bool errors(platform::LineErrors* counts) const {
        return is_open() && platform::line_errors(line, counts);
    }

    // Takes what has come since the last call.
    std::string take_received();

private:
    void run();
    void take_in();
    void write_next();        // with the lock held
    int64_t drop_outgoing();  // while no worker runs

    platform::LineHandle line = platform::NO_LINE;
    std::thread worker;
    std::function<void()> tell;

    std::mutex lock;  // guards what follows
    std::string received;
    std::string outgoing;  // not handed to the line yet
    std::string writing;   // the write that runs; empty when none does
    int64_t sent = 0;
    bool gone = false;
};

}  // namespace hexlane
