#include "dnc/transfer_log.h"

#include "dnc/log_lines.h"

#include "dnc/machine_fields.h"
#include "dnc/port_engine.h"
#include "dnc/receipt.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/serial.h"
#include "platform/text.h"
#include "shell/directories.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr std::size_t TIME_SIZE = 32;
// One transfer; wiped by begin_log_entry.
struct LogEntry {
    bool open;  // begun and not written yet
    bool sending;
    uint32_t start_tick;
    uint32_t last_look;
    uint32_t held_ms;
    char started[TIME_SIZE];
    char file[PATH_SIZE];  // as the log has it
};
LogEntry entries[SLOT_COUNT];
bool failure_noted = false;           // once a run
FileError failure = FileError::NONE;  // nobody has taken it yet

// Numbers that the worker changes, as they stand now.
TransferTally tally_of(int slot) {
    const LockGuard guard(port_slot[slot].step_lock);
    return transfer_state[slot].tally;
}

uint32_t rate_set(int slot) {
    LineSettings settings = {};
    const bool open = port_slot[slot].connected || port_slot[slot].port_handle != NO_LINE;
    return open && line_settings(port_slot[slot].port_handle, &settings) ? settings.baud_rate : 0;
}

const char* result_of(const TransferState& t) {
    if (t.fault != TransferFault::NONE)
        return "not complete";
    return t.status == SEND_DONE || t.status == RECEIVE_DONE ? "complete" : "stopped";
}

// The file open at its end, after it has been given a new one if it is full; NO_FILE on failure.
FileHandle open_log(int64_t* length) {
    char path[PATH_SIZE];
    char old[PATH_SIZE];
    if (!name_log("transfers.log", path) || !name_log("transfers.old", old))
        return NO_FILE;
    FileHandle file = file_open(path, FileAccess::READ_WRITE);
    if (file == NO_FILE && last_file_error() != FileError::NOT_FOUND)
        return NO_FILE;
    if (file != NO_FILE && file_size(file) >= LOG_LIMIT) {
        file_close(file);
        file = NO_FILE;
        if (!rename_file(path, old))
            return NO_FILE;
    }
    if (file == NO_FILE)
        file = file_create(path, FileCreate::NEW);
    *length = file != NO_FILE ? file_size(file) : -1;
    return file;
}

int append_line(const char* line) {
    int64_t length = 0;
    FileHandle file = open_log(&length);
    if (file == NO_FILE)
        return 0;
    const int written =
        length >= 0 && file_write_at(file, length, line, std::strlen(line)) && file_flush(file);
    return file_close(file) && written;
}

// A file's name may hold a line end.
void make_one_line(char* text) {
    for (; *text != '\0'; text++) {
        if (*text == '\n' || *text == '\r')
            *text = ' ';
    }
}

// "sent /home/me/part.nc; machine 3, LATHE, heidenhain, ascii; ..."
void join_entries(const Receipt& receipt, char line[LOG_LINE_SIZE]) {
    ReceiptEntry parts[RECEIPT_ENTRIES];
    const int count = receipt_entries(receipt, parts);
    line[0] = '\0';
    for (int i = 0; i < count; i++) {
        append_text(line, LOG_LINE_SIZE, i == 0 ? "" : "; ");
        append_text(line, LOG_LINE_SIZE, parts[i].name);
        append_text(line, LOG_LINE_SIZE, " ");
        append_text(line, LOG_LINE_SIZE, parts[i].text);
    }
}

}  // namespace

int name_log(const char* title, char* path) {
    if (format_text(path, PATH_SIZE, "%s/%s", directories.launch_dir, title))
        return 1;
    set_last_file_error(FileError::NAME_TOO_LONG);
    return 0;
}

void write_log_line(char line[LOG_LINE_SIZE]) {
    make_one_line(line);
    append_text(line, LOG_LINE_SIZE, "\n");
    if (append_line(line) || failure_noted)
        return;
    failure_noted = true;
    failure = last_file_error();
}

const char* take_log_failure() {
    if (failure == FileError::NONE)
        return nullptr;
    const char* reason = file_error_text(failure);
    failure = FileError::NONE;
    return reason;
}

bool is_in_open_entry(const char* file) {
    for (const LogEntry& entry : entries) {
        if (entry.open && !entry.sending && std::strcmp(entry.file, file) == 0)
            return true;
    }
    return false;
}

void begin_log_entry(int slot, bool sending) {
    LogEntry& entry = entries[slot];
    entry = {};
    entry.open = true;
    entry.sending = sending;
    entry.start_tick = tick_ms();
    entry.last_look = entry.start_tick;
    time_of_day(entry.started, sizeof entry.started);
    copy_text(entry.file, sizeof entry.file, transfer_state[slot].file_name);
    make_one_line(entry.file);
    if (sending)
        return;
    char line[LOG_LINE_SIZE];
    format_text(line, sizeof line, "%s%s%s%s", RECEIVE_BEGUN, entry.started, FILE_OF_BEGUN, entry.file);
    write_log_line(line);
}

void drop_log_entry(int slot) {
    LogEntry& entry = entries[slot];
    entry.open = false;
    char line[LOG_LINE_SIZE];
    format_text(line, sizeof line, "%s%s; result not begun: %s", RECEIVE_ENDED, entry.file,
                file_error_text(last_file_error()));
    write_log_line(line);
}

void watch_line(int slot) {
    LogEntry& entry = entries[slot];
    const uint32_t now = tick_ms();
    if (entry.open && port_slot[slot].connected && line_held(port_slot[slot].port_handle))
        entry.held_ms += now - entry.last_look;
    entry.last_look = now;
}

void end_log_entry(int slot) {
    LogEntry& entry = entries[slot];
    if (!entry.open)
        return;
    entry.open = false;
    const TransferState& t = transfer_state[slot];
    char port[PATH_SIZE + 16];
    char ended[TIME_SIZE];
    line_name(port_slot[slot].port_number, port, sizeof port);
    time_of_day(ended, sizeof ended);
    Receipt receipt = {};
    receipt.sending = entry.sending;
    receipt.result = result_of(t);
    receipt.complete = std::strcmp(receipt.result, "complete") == 0;
    receipt.file = t.file_name;
    receipt.machine = slot_machine[slot];
    receipt.settings = &machine_of_slot(slot);
    receipt.port = port;
    receipt.rate = rate_set(slot);
    receipt.tally = tally_of(slot);
    receipt.cut_bytes = bytes_of_running_write(slot);
    receipt.held_s = entry.held_ms / 1000.0;
    receipt.started = entry.started;
    receipt.ended = ended;
    receipt.took_s = (tick_ms() - entry.start_tick) / 1000.0;
    char line[LOG_LINE_SIZE];
    join_entries(receipt, line);
    write_log_line(line);
}

void log_failed_open(int slot) {
    char port[PATH_SIZE + 16];
    char machine[MACHINE_NAME_TEXT_SIZE];
    char now[TIME_SIZE];
    char line[LOG_LINE_SIZE];
    line_name(port_slot[slot].port_number, port, sizeof port);
    machine_name(machine_of_slot(slot), machine);
    time_of_day(now, sizeof now);
    format_text(line, sizeof line, "not opened %s; machine %d, %s; at %s; reason %s", port,
                slot_machine[slot] + 1, machine, now, line_problem_text());
    write_log_line(line);
}

void note_in_log(const char* text) {
    char now[TIME_SIZE];
    char line[LOG_LINE_SIZE];
    time_of_day(now, sizeof now);
    format_text(line, sizeof line, "note %s; at %s", text, now);
    write_log_line(line);
}

void format_row_tip(int slot, char* text, std::size_t size) {
    const MachineParams& machine = machine_of_slot(slot);
    const bool connected = port_slot[slot].connected;
    const int number =
        connected ? port_slot[slot].port_number : machine_setting(machine, Field::PORT_INDEX) + 1;
    const uint32_t asked =
        connected ? port_slot[slot].baud_rate : BAUD_RATES[machine_setting(machine, Field::BAUD_INDEX)];
    char port[PATH_SIZE + 16];
    line_name(number, port, sizeof port);
    char set[32] = "";
    if (connected)
        format_text(set, sizeof set, ", %u set", rate_set(slot));
    const TransferTally tally = tally_of(slot);
    format_text(text, size,
                "%s, %u baud asked%s\n%lld bytes over the line, %lld of the file\n%d blocks, %d "
                "answered\nheld by the machine for %.1f s",
                port, asked, set, static_cast<long long>(tally.line_bytes),
                static_cast<long long>(tally.file_bytes), tally.blocks, tally.acks,
                entries[slot].held_ms / 1000.0);
}

}  // namespace hexlane
