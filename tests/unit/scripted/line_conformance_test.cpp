// line_conformance_test.cpp: the scripted serial line does what every serial line does.

#include "line_conformance.h"

#include "platform/scripted/line_hooks.h"
#include "platform/scripted/test_hooks.h"

namespace hexlane::platform {
namespace {

constexpr int LIMIT_MS = 10'000;

struct ScriptedStation final : LineStation {
    ScriptedStation() {
        reset_desktop();
        line_set_device(1, "/dev/machine");
    }
    void feed(const std::string& bytes) override { feed_line(1, bytes); }
    const std::string& sent() override {
        all += take_sent(1);
        return all;
    }
    void hang_up() override { unplug_line(1); }
    bool wait_for(const std::function<bool()>& condition) override {
        // A condition without an event of its own, as "held", needs time that passes.
        for (int ms = 0; ms < LIMIT_MS && !advance_until(condition, 1); ms++) {
        }
        return condition();
    }
    void let_pass(int ms) override { advance_clock(ms); }

    std::string all;
};

}  // namespace

std::unique_ptr<LineStation> make_line_station() {
    return std::make_unique<ScriptedStation>();
}

}  // namespace hexlane::platform
