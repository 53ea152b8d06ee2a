// two_slots_test.cpp: the engine with both its slots at work at once over real ptys: two sends, two receives,
// and one of each, with workers that run side by side and a main thread that looks on as a screen does. Built
// with the thread sanitizer it shows that they share nothing without a lock.

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/console/console.h"
#include "platform/desktop.h"
#include "shell/child.h"
#include "unit/platform/temp_folder.h"
#include "unit/serial/serial_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr int ROWS = 1500;
constexpr int LOOK_TIMER = 1;
constexpr int LOOK_PERIOD_MS = 5;
int64_t seen_on_screen = 0;  // numbers that a screen would have shown, added up

bool all_closed() {
    return !port_slot[0].connected && !port_slot[1].connected;
}

int64_t serve(WindowHandle, uint32_t message, int64_t first, int64_t second) {
    if (message == TRANSFER_DONE_MESSAGE)
        if (send_has_ended(static_cast<int>(first), second))
            port_close(static_cast<int>(first));
    if (message == TRANSFER_FAILED_MESSAGE)
        if (transfer_has_failed(static_cast<int>(first), second))
            port_close(static_cast<int>(first));
    if (message == WM_TIMER) {
        for (int slot = 0; slot < SLOT_COUNT; slot++) {
            if (port_slot[slot].connected)
                seen_on_screen += transfer_state[slot].bytes_done + line_held(port_slot[slot].port_handle);
            if (end_silent_receive(slot))
                port_close(slot);
        }
    }
    if (all_closed())
        post_quit(0);
    return 0;
}

WindowHandle main_window() {
    static const WindowHandle window = [] {
        start_console();
        return make_console_window(serve);
    }();
    return window;
}

// A file of a slot's own, different in every row.
std::string program(int slot) {
    std::string text;
    for (int row = 0; row < ROWS; row++)
        text += "N" + std::to_string(row) + " G1 X" + std::to_string(row * (37 + slot) % 911) + "\r\n";
    return text;
}

// What a HEIDENHAIN machine makes of a line: the rows between the start of a block and its ETB.
std::string rows_of_blocks(const std::string& line) {
    std::string rows;
    std::size_t from = 2;  // behind ACK STX
    for (std::size_t etb; (etb = line.find('\x17', from)) != std::string::npos; from = etb + 3)
        rows += line.substr(from, line.rfind('\n', etb) + 1 - from);
    return rows;
}

class TwoSlots : public TempFolder {
protected:
    TwoSlots() {
        child[0].main_window = main_window();
        set_machine_defaults();
        for (int slot = 0; slot < SLOT_COUNT; slot++) {
            slot_machine[slot] = slot;
            machine_table[slot].port_index = static_cast<int8_t>(slot);
            machine_table[slot].receive_timeout_s = 1;
            line_set_device(slot + 1, machine[slot].device.c_str());
        }
    }
    ~TwoSlots() override {
        for (int slot = 0; slot < SLOT_COUNT; slot++)
            port_close(slot);
        for (std::thread& each : machines)
            each.join();
    }

    void name_file(int slot) {
        copy_text(transfer_state[slot].file_name, PATH_SIZE, path(std::to_string(slot)).c_str());
        transfer_state[slot].start_now = 1;
        ASSERT_EQ(port_init(slot, machine_table[slot]), 1);
        ASSERT_EQ(port_open(slot), 1) << line_problem_text();
    }

    // The machine takes what comes until `last` has, and answers each block of a line that has blocks.
    void begin_send(int slot, const std::string& last) {
        write(std::to_string(slot), program(slot));
        name_file(slot);
        TransferState& t = transfer_state[slot];
        send_now = 1;
        t.start_offset = 0;
        t.file_position = 0;
        ASSERT_EQ(prepare_send(slot), 1);
        machines.emplace_back([this, slot, last] {
            Machine& m = machine[slot];
            const bool answers = machine_table[slot].protocol == PROTOCOL_HEIDENHAIN;
            std::size_t seen = 0;
            wait_for(
                [&] {
                    const std::string& got = m.take();
                    for (std::size_t etb;
                         answers && (etb = got.find('\x17', seen)) + 2 < got.size() && etb != got.npos;) {
                        seen = etb + 3;
                        m.send("\x06");
                    }
                    return got.size() >= last.size() && got.ends_with(last);
                },
                60s);
        });
    }

    void begin_receive(int slot) {
        name_file(slot);
        ASSERT_EQ(prepare_receive(slot), 1);
        machines.emplace_back([this, slot] {
            const std::string bytes = program(slot);
            for (std::size_t done = 0; done < bytes.size(); done += 500)
                machine[slot].send(bytes.substr(done, 500));
        });
    }

    void run_until_closed() {
        start_timer(main_window(), LOOK_TIMER, LOOK_PERIOD_MS);
        run_message_loop();
        kill_timer(main_window(), LOOK_TIMER);
        for (std::thread& each : machines)
            each.join();
        machines.clear();
    }

    void expect_received(int slot) const {
        const std::string file = read(std::to_string(slot));
        EXPECT_EQ(transfer_state[slot].status, RECEIVE_DONE);
        EXPECT_TRUE(file == program(slot)) << file.size();
    }

    const PacingOff off;
    Machine machine[SLOT_COUNT];
    std::vector<std::thread> machines;
};

TEST_F(TwoSlots, SendAtOnceOneOfThemInBlocksThatAreAnswered) {
    machine_table[1].protocol = PROTOCOL_HEIDENHAIN;
    begin_send(0, program(0).substr(program(0).size() - 20));
    begin_send(1, "\x0C\x03");
    run_until_closed();
    EXPECT_EQ(transfer_state[0].status, SEND_DONE);
    EXPECT_EQ(transfer_state[1].status, SEND_DONE);
    EXPECT_TRUE(machine[0].take() == program(0));
    EXPECT_TRUE(rows_of_blocks(machine[1].take()) == program(1));
    EXPECT_EQ(transfer_state[1].tally.acks, ROWS);
}

TEST_F(TwoSlots, ReceiveAtOnce) {
    begin_receive(0);
    begin_receive(1);
    run_until_closed();
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        expect_received(slot);
    EXPECT_GT(seen_on_screen, 0);
}

TEST_F(TwoSlots, OneSendsWhileTheOtherReceives) {
    begin_receive(0);
    begin_send(1, program(1).substr(program(1).size() - 20));
    run_until_closed();
    expect_received(0);
    EXPECT_EQ(transfer_state[1].status, SEND_DONE);
    EXPECT_TRUE(machine[1].take() == program(1));
}

}  // namespace
}  // namespace hexlane
