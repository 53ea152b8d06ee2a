// serial_fixture.h: a machine at the far end of a pty, and a worker that waits on a line as the program's
// does.
#pragma once

#include "platform/serial.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

inline double ms_since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Waits for a condition; a failed test when it doesn't come true.
inline bool wait_for(const std::function<bool()>& condition, std::chrono::milliseconds limit = 10s) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > end) {
            ADD_FAILURE() << "waited in vain";
            return false;
        }
        std::this_thread::sleep_for(500us);
    }
    return true;
}

// The machine's side of a pty.
class Machine {
public:
    Machine() : pty(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
        char name[64];
        if (pty < 0 || grantpt(pty) != 0 || unlockpt(pty) != 0 || ptsname_r(pty, name, sizeof name) != 0) {
            std::abort();
        }
        device = name;
    }
    Machine(const Machine&) = delete;
    ~Machine() { hang_up(); }

    void hang_up() {
        if (pty >= 0) {
            close(pty);
            pty = -1;
        }
    }
    bool send(const std::string& bytes) {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t put = ::write(pty, bytes.data() + done, bytes.size() - done);
            if (put > 0) {
                done += static_cast<std::size_t>(put);
            } else if (pollfd file = {pty, POLLOUT, 0}; poll(&file, 1, 10'000) <= 0) {
                ADD_FAILURE() << "the line takes nothing";
                return false;
            }
        }
        return true;
    }
    // Adds what has come to `got`.
    const std::string& take() {
        char piece[4096];
        for (ssize_t count; (count = ::read(pty, piece, sizeof piece)) > 0;) {
            got.append(piece, static_cast<std::size_t>(count));
        }
        return got;
    }
    bool take_until(std::size_t size) {
        return wait_for([&] { return take().size() >= size; });
    }

    int pty;
    std::string device;
    std::string got;
};

inline LineSettings plain_settings(uint32_t rate) {
    LineSettings settings{};
    settings.baud_rate = rate;
    settings.byte_size = 8;
    settings.xon_char = 0x11;
    settings.xoff_char = 0x13;
    settings.event_char = 0x06;
    return settings;
}

constexpr uint32_t ALL_EVENTS = EV_RXCHAR | EV_RXFLAG | EV_TXEMPTY | EV_CTS;

// Opens COM `port` on the machine's line. Software handshake unless told otherwise.
inline LineHandle open_line(const Machine& machine, uint32_t rate, int port = 1) {
    line_set_device(port, machine.device.c_str());
    const LineHandle line = line_open(port);
    LineSettings settings = plain_settings(rate);
    settings.software_handshake = true;
    EXPECT_NE(line, NO_LINE) << line_problem_text();
    EXPECT_EQ(line_configure(line, settings), 1) << line_problem_text();
    line_set_mask(line, ALL_EVENTS);
    return line;
}

// Pacing off until the end of the scope, for lines that are opened in it.
struct PacingOff {
    PacingOff() { setenv("HEXLANE_LINE_PACING", "off", 1); }
    ~PacingOff() { unsetenv("HEXLANE_LINE_PACING"); }
    PacingOff(const PacingOff&) = delete;
};

// A thread that waits on a line and collects its events, until mask 0 or the line's failure.
class Worker {
public:
    explicit Worker(LineHandle line) : handle(line), thread([this] { work(); }) {}
    Worker(const Worker&) = delete;
    ~Worker() {
        line_set_mask(handle, 0);
        thread.join();
    }
    bool saw(uint32_t event) { return (seen & event) != 0; }
    bool waits_for(uint32_t event) {
        return wait_for([&] { return saw(event); });
    }

    std::atomic<uint32_t> seen{0};
    std::atomic<int> last_result{-1};  // of the wait that ended the thread
    std::atomic<int> id{0};            // of the thread, for /proc

private:
    void work() {
        id = gettid();
        uint32_t events = 0;
        int result = 0;
        while ((result = line_wait_event(handle, &events)) == 1 && events != 0) {
            seen |= events;
        }
        last_result = result;
    }
    LineHandle handle;
    std::thread thread;
};

// Nanoseconds that a thread of ours has run so far.
inline long long run_time_of(int thread_id) {
    const std::string path = "/proc/self/task/" + std::to_string(thread_id) + "/schedstat";
    std::FILE* file = std::fopen(path.c_str(), "re");
    long long time = -1;
    if (file == nullptr || std::fscanf(file, "%lld", &time) != 1) {
        ADD_FAILURE() << "no run time of thread " << thread_id;
    }
    if (file != nullptr) {
        std::fclose(file);
    }
    return time;
}

// Whether a thread goes to sleep and then uses no time at all for a fifth of a second.
inline void expect_asleep(int thread_id) {
    wait_for(
        [&] {
            const long long before = run_time_of(thread_id);
            std::this_thread::sleep_for(200ms);
            return run_time_of(thread_id) == before;
        },
        3s);
}

}  // namespace hexlane::platform
