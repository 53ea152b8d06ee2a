// The line over a pty does what every serial line does.

#include "../scripted/line_conformance.h"

#include "serial_fixture.h"

namespace hexlane::platform {
namespace {

struct PtyStation final : LineStation {
    PtyStation() { line_set_device(1, machine.device.c_str()); }
    void feed(const std::string& bytes) override { machine.send(bytes); }
    const std::string& sent() override { return machine.take(); }
    void hang_up() override { machine.hang_up(); }
    bool wait_for(const std::function<bool()>& condition) override {
        return hexlane::platform::wait_for(condition);
    }
    void let_pass(int ms) override { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

    Machine machine;
};

}  // namespace

std::unique_ptr<LineStation> make_line_station() {
    return std::make_unique<PtyStation>();
}

}  // namespace hexlane::platform
