#include "station/port_report.h"

#include "dnc/machine_table.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "dnc/transfer_end.h"
#include "dnc/transfer_log.h"
#include "shell/boxes.h"
#include "station/station_texts.h"

namespace hexlane {

using namespace platform;

int32_t background_requested = 0;

namespace {

constexpr BoxText ENDED = {"%s", "Communications", BoxIcon::INFORMATION, BUTTONS_OK};
constexpr BoxText FAILED = {"%s", "Communications", BoxIcon::STOP, BUTTONS_OK};

bool closing[SLOT_COUNT];  // close_port_and_report is under way

int open_and_tell(int slot, int (*open)(int slot)) {
    if (port_init(slot, machine_of_slot(slot)) != 1)
        return 0;
    const int opened = open(slot);
    tell_log_failure();
    if (opened < 0)
        show_dnc_box(DncBox::WORKER_FAILED);
    return opened == 1;
}

bool asks_before_close(const TransferState& t) {
    return t.fault == TransferFault::NONE &&
           (t.status == RECEIVING || (t.status == SENDING && !background_requested));
}

}  // namespace

int open_port(int slot) {
    return open_and_tell(slot, port_open);
}

int open_port_for_blocks(int slot) {
    return open_and_tell(slot, port_open_for_blocks);
}

void close_port(int slot) {
    port_close(slot);
    tell_log_failure();
}

int close_port_and_report(int slot) {
    const TransferState& t = transfer_state[slot];
    if (closing[slot] || !port_slot[slot].connected)
        return 1;
    closing[slot] = true;
    // A transfer that comes to its end while the question is up is closed whatever the answer.
    if (asks_before_close(t) && show_dnc_box(DncBox::DISCONNECT) != 0 && asks_before_close(t)) {
        closing[slot] = false;
        return 0;
    }
    port_disconnect(slot);
    tell_log_failure();
    tell_transfer_end(slot);
    port_release(slot);
    closing[slot] = false;
    return 1;
}

void tell_transfer_end(int slot) {
    char text[END_TEXT_SIZE];
    const bool fault = transfer_end_text(slot, text);
    show_box(fault ? FAILED : ENDED, text);
}

bool is_being_closed(int slot) {
    return closing[slot];
}

void check_receive_timeout(int slot) {
    if (end_silent_receive(slot))
        close_port_and_report(slot);
}

void finish_transfer(int slot, int64_t transfer_number) {
    if (send_has_ended(slot, transfer_number))
        close_port_and_report(slot);
}

void finish_failed_transfer(int slot, int64_t transfer_number) {
    if (transfer_has_failed(slot, transfer_number))
        close_port_and_report(slot);
}

void tell_log_failure() {
    const char* reason = take_log_failure();
    if (reason != nullptr)
        show_dnc_box(DncBox::LOG_NOT_WRITTEN, reason);
}

}  // namespace hexlane
