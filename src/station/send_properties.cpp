// send_properties.cpp: the view SEND.

#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "dnc/transfer_state.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "station/activity.h"
#include "station/start_point.h"

#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t START_POINT_BUTTON = 3;
constexpr int16_t ONCE_RADIO = 101;
constexpr int16_t CONTINUOUS_RADIO = 102;
constexpr int16_t NOW_RADIO = 103;
constexpr int16_t QUEUE_RADIO = 104;

constexpr ControlSpec CONTROLS[] = {
    {ONCE_RADIO, ControlKind::RADIO, "&Once", 0, 0, 1, 1, 0, CONTROL_GROUP, nullptr},
    {CONTINUOUS_RADIO, ControlKind::RADIO, "&Continuous", 1, 0, 1, 1, 0, 0, nullptr},
    {NOW_RADIO, ControlKind::RADIO, "&Now", 0, 1, 1, 1, 0, CONTROL_GROUP, nullptr},
    {QUEUE_RADIO, ControlKind::RADIO, "&Queue", 1, 1, 1, 1, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 3, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 3, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
    {START_POINT_BUTTON, ControlKind::BUTTON, "&Start Point", 2, 0, 1, 2, 0, CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec SEND_VIEW = {"SEND", "Send Properties", 0, CONTROLS,
                                static_cast<int16_t>(std::size(CONTROLS))};

void show_answers(ViewHandle view) {
    const bool hardware = machine_setting(machine_of_slot(send_slot), Field::HANDSHAKE) == HANDSHAKE_HARDWARE;
    tick_radio(view, ONCE_RADIO, send_continuous ? 1 : 0);
    tick_radio(view, NOW_RADIO, send_now || hardware ? 0 : 1);
    view_enable_control(view, QUEUE_RADIO, !hardware);
}

void end_view(ViewHandle view, int8_t status, int result) {
    transfer_state[send_slot].status = status;
    view_end(view, result);
}

int64_t send_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        show_answers(view);
        return 1;
    }
    const int id = message == WM_COMMAND ? low_word(first) : 0;
    if (id == OK_BUTTON) {
        send_continuous = view_checked(view, CONTINUOUS_RADIO);
        send_now = view_checked(view, NOW_RADIO);
        end_view(view, SEND_STANDBY, 1);
        return 1;
    }
    if (id == CANCEL_BUTTON || message == WM_CLOSE) {
        end_view(view, PORT_IDLE, 0);
        return 1;
    }
    if (id == START_POINT_BUTTON) {
        show_start_point();
        return 1;
    }
    return view_default(view, message, first, second);
}

}  // namespace

// A view that cannot be shown counts as cancelled.
void show_send_properties() {
    if (show_view(&SEND_VIEW, send_proc) == 0)
        transfer_state[send_slot].status = PORT_IDLE;
}

}  // namespace hexlane
