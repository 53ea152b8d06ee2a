// transfer_commands.cpp: the commands `send` and `receive`.

#include "cli/receive_target.h"
#include "cli/transfer_run.h"
#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/files.h"
#include "platform/process.h"
#include "platform/serial.h"
#include "shell/directories.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int SLOT = 0;
constexpr int64_t LARGEST_FILE = 2147483647;  // bytes; places in it are 32-bit numbers

int file_trouble(const std::string& what) {
    return refuse(EXIT_CANNOT,
                  "cannot " + what + " " + run.options.file + ": " + file_error_text(last_file_error()));
}

// Finds the byte at which row `row` (from 1) begins. Gives 1; 0 when the file ends before; -1 when it cannot
// be read.
int find_row(FileHandle file, int64_t row, int64_t* offset) {
    char piece[65536];
    int64_t at = 0;
    int64_t length = 0;
    *offset = 0;
    while (row > 1 && (length = file_read_at(file, at, piece, sizeof piece)) > 0) {
        for (int64_t i = 0; i < length && row > 1; i++) {
            if (piece[i] == '\n' && --row == 1)
                *offset = at + i + 1;
        }
        at += length;
    }
    return row == 1 ? 1 : length < 0 ? -1 : 0;
}

// The start point in the file, which can be sent. An exit code.
int find_start(int64_t* offset) {
    const FileHandle file = file_open(run.file, FileAccess::READ);
    if (file == NO_FILE)
        return file_trouble("open");
    const int64_t size = file_size(file);
    const int found = size < 0 ? -1 : find_row(file, run.options.from_row, offset);
    const FileError error = last_file_error();
    file_close(file);
    set_last_file_error(error);
    if (found < 0)
        return file_trouble("read");
    if (found == 0)
        return refuse_use(run.options.file + " has no row " + std::to_string(run.options.from_row));
    if (size > LARGEST_FILE)
        return refuse(EXIT_CANNOT, run.options.file + " is larger than 2 GB");
    return EXIT_COMPLETE;
}

// Machines, and the absolute name of the file. An exit code.
int begin_command(const Words& words, bool sending) {
    run.sending = sending;
    const std::string wrong = read_transfer_options(words, sending, &run.options);
    if (!wrong.empty())
        return refuse_use(wrong);
    const std::string reason = load_machines();
    if (!reason.empty())
        return refuse(EXIT_CANNOT, reason);
    if (!absolute_path(run.options.file.c_str(), run.file, sizeof run.file))
        return refuse(EXIT_CANNOT, "the name of " + run.options.file + " is too long");
    copy_text(transfer_state[SLOT].file_name, PATH_SIZE, run.file);
    return EXIT_COMPLETE;
}

int send_file() {
    int64_t offset = 0;
    int code = find_start(&offset);
    if (code != EXIT_COMPLETE)
        return code;
    code = open_transfer_port();
    if (code != EXIT_COMPLETE)
        return code;
    TransferState& t = transfer_state[SLOT];
    t.start_offset = static_cast<int32_t>(offset);
    t.file_position = static_cast<int32_t>(offset);
    send_now = run.options.queue ? 0 : 1;
    send_continuous = run.options.continuous ? 1 : 0;
    if (!prepare_send(SLOT)) {
        const FileError error = last_file_error();
        port_close(SLOT);
        set_last_file_error(error);
        return file_trouble("read");
    }
    run.file_size = t.total_bytes;
    run.left = run.file;
    code = run_transfer();
    print_receipt();
    return code;
}

int receive_file() {
    const std::string refusal = claim_target();
    if (!refusal.empty())
        return refuse(EXIT_CANNOT, refusal);
    int code = open_transfer_port();
    if (code != EXIT_COMPLETE)
        return code;
    const FileHandle file = open_target();
    if (file == NO_FILE) {
        const FileError error = last_file_error();
        port_close(SLOT);
        set_last_file_error(error);
        return file_trouble("write");
    }
    copy_text(transfer_state[SLOT].file_name, PATH_SIZE, target_name());
    begin_receiving(SLOT, file);
    code = run_transfer();
    const std::string reason = finish_target(code == EXIT_COMPLETE);
    if (!reason.empty()) {
        run.not_in_place = true;
        code = refuse(EXIT_NOT_COMPLETE, reason);
    }
    print_receipt();
    return code;
}

int run_command(const Words& words, bool sending) {
    const int code = begin_command(words, sending);
    if (code != EXIT_COMPLETE)
        return code;
    return sending ? send_file() : receive_file();
}

}  // namespace

int run_send(const Words& words) {
    return run_command(words, true);
}

int run_receive(const Words& words) {
    return run_command(words, false);
}

}  // namespace hexlane
