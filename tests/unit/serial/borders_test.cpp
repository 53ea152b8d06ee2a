// The borders between a line's worker and its other callers, and what an opening leaves behind.

#include "platform/posix/serial_driver.h"
#include "serial_fixture.h"

namespace hexlane::platform {
namespace {

// While the driver is asked for its errors, the line belongs to whoever asks.
TEST(Borders, EachCallWaitsForTheOneThatHasTheLine) {
    static std::function<void()> call;
    static std::atomic<bool> ended;
    static std::thread caller;
    static bool waits;
    line_driver.error_counts = [](int, LineErrors*) {
        if (call) {
            ended = false;
            caller = std::thread([] {
                call();
                ended = true;
            });
            // Long enough for a call that waits for nothing.
            for (const auto begin = Clock::now(); !ended && ms_since(begin) < 30;)
                std::this_thread::yield();
            waits = !ended;
        }
        return 1;
    };
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    char bytes[16];
    LineSettings settings = plain_settings(9600);
    const std::function<void()> calls[] = {
        [&] { line_read(line, bytes, sizeof bytes); },
        [&] { line_queue_length(line); },
        [&] { line_set_mask(line, ALL_EVENTS); },
        [&] { line_configure(line, settings); },
        [&] { line_write(line, bytes, 0); },
        [&] { line_written(line); },
        [&] { line_purge(line); },
    };
    for (const auto& one : calls) {
        call = one;
        LineErrors errors;
        line_errors(line, &errors);
        caller.join();
        EXPECT_TRUE(waits) << "call " << &one - calls;
    }
    call = nullptr;
    line_close(line);
    line_driver = TTY_DRIVER;
}

TEST(Borders, ErrorsCountFromTheOpeningOn) {
    static uint32_t overruns = 3;
    line_driver.error_counts = [](int, LineErrors* errors) {
        *errors = {1, 2, overruns};
        return 1;
    };
    Machine machine;
    for (const uint32_t more : {5U, 0U}) {
        const LineHandle line = open_line(machine, 9600);
        overruns += more;
        LineErrors errors;
        EXPECT_EQ(line_errors(line, &errors), 1);
        EXPECT_EQ(errors.overrun, more);
        line_close(line);
    }
    line_driver = TTY_DRIVER;
}

}  // namespace
}  // namespace hexlane::platform
