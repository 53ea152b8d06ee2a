// transfer_run.cpp: a port, a message loop and the timers around one transfer of the engine.

#include "cli/transfer_run.h"

#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_end.h"
#include "platform/clock.h"
#include "platform/console/console.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/serial.h"
#include "shell/child.h"

#include <ctime>

namespace hexlane {

using namespace platform;

TransferRun run;

namespace {

constexpr int SLOT = 0;
constexpr uint32_t STOP_MESSAGE = 0x8100;
constexpr int LOOK_TIMER = 1;
constexpr int LOOK_PERIOD_MS = 50;
constexpr int LOOKS_PER_PROGRESS = 4;
constexpr int64_t NS_PER_SECOND = 1'000'000'000;

int64_t time_ns() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * NS_PER_SECOND + now.tv_nsec;
}

// What the worker changes, as it stands now. The filters are ahead of the line by the write that runs, and at
// a slow rate one write takes a minute: of its bytes of the file only the part counts that has gone out.
void take_numbers() {
    const TransferState& t = transfer_state[SLOT];
    const PortSlot& port = port_slot[SLOT];
    const LockGuard guard(port.step_lock);
    run.tally = t.tally;
    run.cut_bytes = bytes_of_running_write(SLOT);
    run.line_now = t.tally.line_bytes + run.cut_bytes;
    const int64_t all = t.tally.line_bytes + (port.write_running ? port.write_count : 0);
    run.file_now = run.sending ? t.tally.file_bytes * run.line_now / (all > 0 ? all : 1) : t.tally.file_bytes;
    run.status = t.status;
    run.fault = t.fault;
}

// The first end that comes is the one.
void note_end() {
    if (run.end_tick_ns != 0)
        return;
    run.end_tick_ns = time_ns();
    time_of_day(run.ended, sizeof run.ended);
    take_numbers();
}

// In the form of the boxes of this program.
void tell_end() {
    char text[END_TEXT_SIZE];
    const bool fault = transfer_end_text(SLOT, text);
    message_box(text, "", fault ? BoxIcon::STOP : BoxIcon::INFORMATION, BUTTONS_OK);
}

// Closing may find that the medium did not take the last of a received file, or that the line has lost bytes.
void stop_transfer() {
    note_end();
    port_close(SLOT);
    run.fault = transfer_state[SLOT].fault;
    if (run.fault == TransferFault::CANNOT_WRITE || run.fault == TransferFault::BYTES_LOST)
        tell_end();
    post_quit(0);
}

// The engine has come to an end by itself.
void close_and_tell() {
    port_close(SLOT);
    tell_end();
    run.fault = transfer_state[SLOT].fault;
    post_quit(0);
}

// What is shown would come into the end time, so the numbers are taken ahead of every look.
void look(int64_t now) {
    static int64_t last_look = now;
    static int looks = 0;
    take_numbers();
    run.held = line_held(port_slot[SLOT].port_handle);
    run.held_ns += run.held ? now - last_look : 0;
    last_look = now;
    if (++looks % LOOKS_PER_PROGRESS == 0)
        show_progress(now);
    const int64_t waited = now - run.start_tick_ns;
    if (run.options.wait_s != 0 && run.status == RECEIVE_STANDBY &&
        waited >= run.options.wait_s * NS_PER_SECOND) {
        run.nothing_came = true;
        stop_transfer();
        return;
    }
    if (end_silent_receive(SLOT)) {
        note_end();
        close_and_tell();
    }
}

int64_t handle_message(WindowHandle, uint32_t message, int64_t first, int64_t second) {
    if (!port_slot[SLOT].connected)
        return 0;
    switch (message) {
    case TRANSFER_DONE_MESSAGE:
        note_end();
        if (send_has_ended(static_cast<int>(first), second))
            close_and_tell();
        break;
    case TRANSFER_FAILED_MESSAGE:
        note_end();
        if (transfer_has_failed(static_cast<int>(first), second))
            close_and_tell();
        break;
    case STOP_MESSAGE:
        run.stopped = true;
        stop_transfer();
        break;
    case WM_TIMER:
        look(time_ns());
        break;
    default:
        break;
    }
    return 0;
}

// "COM2" in any case, 1 to 4; 0 for the name of a device.
int com_number(const std::string& port) {
    for (int com = 1; com <= PORT_COUNT; com++) {
        if (equal_ignoring_case(port.c_str(), ("COM" + std::to_string(com)).c_str()))
            return com;
    }
    return 0;
}

// For this run alone: the table is not saved. False when the port's name is too long.
bool use_options(MachineParams* machine) {
    const int com = com_number(run.options.port);
    if (com != 0)
        set_field(machine, Field::PORT_INDEX, com - 1);
    if (run.options.timeout_s != 0)
        set_field(machine, Field::RECEIVE_TIMEOUT_S, static_cast<int>(run.options.timeout_s));
    run.com = machine_setting(*machine, Field::PORT_INDEX) + 1;
    if (com == 0 && !run.options.port.empty() && !line_set_device(run.com, run.options.port.c_str()))
        return false;
    line_name(run.com, run.port, sizeof run.port);
    return true;
}

int exit_code() {
    if (run.nothing_came)
        return EXIT_NOTHING_CAME;
    if (run.stopped)
        return EXIT_STOPPED;
    const bool done = run.sending ? run.status == SEND_DONE : run.status == RECEIVE_DONE;
    return done && run.fault == TransferFault::NONE ? EXIT_COMPLETE : EXIT_NOT_COMPLETE;
}

}  // namespace

int open_transfer_port() {
    run.machine = run.options.machine.empty() ? slot_machine[SLOT] : find_machine(run.options.machine);
    if (run.machine < 0)
        return refuse_use("there is no machine '" + run.options.machine + "', or more than one of that name");
    MachineParams& machine = machine_table[run.machine];
    if (!use_options(&machine))
        return refuse(EXIT_CANNOT, "the name of the port " + run.options.port + " is too long");
    if (run.options.queue && machine_setting(machine, Field::HANDSHAKE) == HANDSHAKE_HARDWARE)
        return refuse_use("machine " + std::to_string(run.machine + 1) +
                          " has the hardware handshake: it cannot ask with DC1, so --queue makes no sense");
    start_console();
    child[0].main_window = make_console_window(handle_message);
    before_box = end_progress;
    slot_machine[SLOT] = run.machine;
    transfer_state[SLOT].start_now = run.options.queue ? 0 : 1;
    transfer_state[SLOT].status = run.options.queue ? SEND_STANDBY : PORT_IDLE;
    if (port_init(SLOT, machine) != 1)
        return refuse(EXIT_CANNOT, "cannot make a lock");
    const int opened = port_open(SLOT);
    if (opened < 0)
        return refuse(EXIT_CANNOT, "cannot start a thread");
    if (!opened)
        return refuse(EXIT_CANNOT, std::string("cannot open ") + run.port + ". " + line_problem_text());
    LineSettings settings = {};
    run.rate = line_settings(port_slot[SLOT].port_handle, &settings) ? settings.baud_rate : 0;
    run.start_tick_ns = time_ns();
    time_of_day(run.started, sizeof run.started);
    return EXIT_COMPLETE;
}

int run_transfer() {
    post_signals(child[0].main_window, STOP_MESSAGE);
    begin_progress();
    start_timer(child[0].main_window, LOOK_TIMER, LOOK_PERIOD_MS);
    run_message_loop();
    kill_timer(child[0].main_window, LOOK_TIMER);
    end_progress();
    return exit_code();
}

}  // namespace hexlane
