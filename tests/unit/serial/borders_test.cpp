// The borders between a line's worker and its other callers: the lock, the wake-up, and what an opening
// leaves behind.

#include "platform/posix/serial_driver.h"
#include "serial_fixture.h"

namespace hexlane::platform {
namespace {

// A driver whose error counters a test serves, until the end of the scope.
struct CountingDriver {
    explicit CountingDriver(int (*counts)(int, LineErrors*)) { line_driver.error_counts = counts; }
    ~CountingDriver() { line_driver = TTY_DRIVER; }
    CountingDriver(const CountingDriver&) = delete;
};

// While the driver is asked for its errors, the line belongs to whoever asks.
TEST(Borders, EachCallWaitsForTheOneThatHasTheLine) {
    static std::function<void()> call;
    static std::atomic<bool> ended;
    static std::thread caller;
    static bool waits;
    const CountingDriver driver([](int, LineErrors*) {
        if (call) {
            ended = false;
            caller = std::thread([] {
                call();
                ended = true;
            });
            std::this_thread::sleep_for(30ms);  // long enough for a call that waits for nothing
            waits = !ended;
        }
        return 1;
    });
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    char bytes[16];
    LineSettings settings = plain_settings(9600);
    const struct {
        const char* name;
        std::function<void()> act;
    } calls[] = {
        {"read", [&] { line_read(line, bytes, sizeof bytes); }},
        {"queue length", [&] { line_queue_length(line); }},
        {"set mask", [&] { line_set_mask(line, ALL_EVENTS); }},
        {"settings", [&] { line_settings(line, &settings); }},
        {"configure", [&] { line_configure(line, settings); }},
        {"write", [&] { line_write(line, bytes, 0); }},
        {"written", [&] { line_written(line); }},
        {"held", [&] { line_held(line); }},
        {"purge", [&] { line_purge(line); }},
    };
    for (const auto& one : calls) {
        call = one.act;
        LineErrors errors;
        line_errors(line, &errors);
        caller.join();
        EXPECT_TRUE(waits) << one.name;
    }
    call = nullptr;
    line_close(line);
}

TEST(Borders, ErrorsCountFromTheOpeningOn) {
    static LineErrors of_driver = {1, 2, 3};
    const CountingDriver driver([](int, LineErrors* errors) {
        *errors = of_driver;
        return 1;
    });
    Machine machine;
    for (const LineErrors& more : {LineErrors{1, 0, 5}, LineErrors{0, 0, 0}}) {
        const LineHandle line = open_line(machine, 9600);
        of_driver = {of_driver.parity + more.parity, of_driver.framing, of_driver.overrun + more.overrun};
        LineErrors errors;
        EXPECT_EQ(line_errors(line, &errors), 1);
        EXPECT_EQ(errors.parity, more.parity);
        EXPECT_EQ(errors.framing, more.framing);
        EXPECT_EQ(errors.overrun, more.overrun);
        line_close(line);
    }
}

TEST(Borders, APurgeOfAFullRingWakesTheWorkerThatHadNoRoom) {
    Machine machine;
    const LineHandle line = open_line(machine, 9600);
    {
        Worker worker(line);
        machine.send(std::string(RECEIVE_RING, 'x'));
        ASSERT_TRUE(wait_for([&] { return line_queue_length(line) == RECEIVE_RING; }));
        expect_asleep(worker.id);
        line_purge(line);
        machine.send("y");
        EXPECT_TRUE(wait_for([&] { return line_queue_length(line) == 1; }, 3s));
    }
    line_close(line);
}

}  // namespace
}  // namespace hexlane::platform
