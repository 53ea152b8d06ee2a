// program.cpp: start-up in its order, the handover to a running program, and the message loop.

#include "frame/program.h"

#include <cstring>

#include "dnc/machine_table.h"
#include "dnc/port_engine.h"
#include "dnc/transfer_log.h"
#include "dnc/transfer_state.h"
#include "edit/block_commands.h"
#include "files/file_commands.h"
#include "files/file_questions.h"
#include "files/files_texts.h"
#include "frame/commands.h"
#include "frame/frame_texts.h"
#include "frame/main_window.h"
#include "frame/transfer_watch.h"
#include "macros/macro_table.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/instance.h"
#include "platform/process.h"
#include "search/search.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "station/machine_watch.h"
#include "station/port_report.h"
#include "store/merge.h"
#include "store/row_table.h"
#include "view/colors.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr const char* WINDOW_CLASS = "Zoltix";
constexpr const char* WINDOW_TITLE = "Hexlane NC Editor and DNC Communications";

// The file name as the command line gave it, when it is too long for a path.
const char* refused_name = nullptr;

void take_command_line(const char* file) {
    requested_file[0] = '\0';
    refused_name = nullptr;
    if (file != nullptr && file[0] != '\0' && !absolute_path(file, requested_file, sizeof requested_file)) {
        requested_file[0] = '\0';
        refused_name = file;
    }
}

// All that a second start does: hands its file over and brings the running program to the front. 0 when that
// has ended meanwhile. A folder, a device and a pipe are no file to hand over.
int hand_over() {
    if (requested_file[0] != '\0' && path_kind(requested_file) == PathKind::FILE) {
        if (hand_over_file(requested_file) != Handover::DONE)
            return 0;
        raise_other_instance();
        return 1;
    }
    return raise_other_instance() != Handover::REFUSED;
}

// Whether a running program has got all from this start. One that has ended meanwhile makes way; something
// that holds its name and answers nobody does not.
enum class OtherProgram { NONE, SERVED, MUTE };

OtherProgram ask_other_program() {
    constexpr int TRIES = 5;
    for (int i = 0; i < TRIES; i++) {
        if (claim_instance(directories.launch_dir) != 0)
            return OtherProgram::NONE;
        if (hand_over())
            return OtherProgram::SERVED;
    }
    return OtherProgram::MUTE;
}

int create_window() {
    MainWindowSpec spec = {};
    spec.class_name = WINDOW_CLASS;
    spec.title = WINDOW_TITLE;
    spec.procedure = main_window_proc;
    describe_commands(&spec);
    child[0].main_window = create_main_window(&spec);
    return child[0].main_window != NO_WINDOW;
}

void set_up_state() {
    child[0].file_open = 0;
    child[0].pending_row = -1;
    child[0].block_active = 0;
    block_clear();
    reset_store();
    reset_search();
    update_menus();
    create_directories();
    load_colors();
    merge_backup.merge_backup_active = 0;
    reset_macros();
    child[0].colors_enabled = 1;
    child[0].changes_colored = 0;
    clear_cut_block();
    clear_copy_block();
    block_clear();
    set_caret_visible(false);
    start_machine_table();
    for (int slot = 0; slot < SLOT_COUNT; slot++)
        port_init(slot, machine_of_slot(slot));
    send_continuous = 0;
    send_now = 0;
    background_requested = 0;
    label_send_this();
}

void show_program() {
    create_status_line();
    show_window(child[0].main_window, ShowWindow::NORMAL);
    show_activity_icon(false);
}

// A named file that does not exist is not made here, and nothing is said about it.
void open_first_file() {
    if (refused_name != nullptr)
        show_files_box(FilesBox::NOT_OPENED, refused_name, file_error_text(FileError::NAME_TOO_LONG));
    if (requested_file[0] != '\0' && path_kind(requested_file) != PathKind::NONE) {
        send_message(child[0].main_window, WM_COMMAND, COMMAND_OPEN, 0);
    }
    requested_file[0] = '\0';
}

}  // namespace

int program_main(const char* file) {
    const PointerShape pointer = begin_wait();
    reset_child();
    if (!find_home()) {
        end_wait(pointer);
        show_frame_box(FrameBox::NO_HOME, directories.launch_dir);
        return 1;
    }
    take_command_line(file);
    const OtherProgram other = ask_other_program();
    if (other != OtherProgram::NONE) {
        end_wait(pointer);
        if (other == OtherProgram::MUTE)
            warn_on_terminal("a running program does not answer; end it and start again");
        return other == OtherProgram::MUTE;
    }
    if (!create_window()) {
        release_instance();
        return 0;
    }
    set_up_state();
    end_wait(pointer);
    show_program();
    tell_machine_file();
    if (directories.doubt[0] != '\0')
        note_in_log(directories.doubt);
    tell_log_failure();
    open_first_file();
    const int code = run_message_loop();
    release_instance();
    return code;
}

}  // namespace hexlane
