#include "frame/compare_command.h"

#include "compare/compare.h"
#include "compare/compare_texts.h"
#include "dnc/transfer_state.h"
#include "files/file_guard.h"
#include "files/file_questions.h"
#include "frame/frame_texts.h"
#include "platform/files.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "store/file_watch.h"
#include "store/save.h"

namespace hexlane {

using namespace platform;

namespace {

// A document that differs from its file, or whose file is no longer the one that was opened, is compared as a
// copy. Gives 1 when compare_path names what to read; `is_copy` takes whether that is such a copy.
int name_left_side(bool* is_copy) {
    bool fresh = false;
    *is_copy = child[0].modified || document_change(&fresh) != FileChange::NONE;
    if (!*is_copy) {
        copy_text(child[0].compare_path, PATH_SIZE, child[0].file_path);
        return 1;
    }
    const PointerShape pointer = begin_wait();
    show_status(STATUS_SAVING);
    const int written = write_compare_snapshot();
    end_wait(pointer);
    show_position();
    return written;
}

int ask_right_side(FileDialog* dialog) {
    while (ask_open_name(dialog)) {
        if (!is_active_file(dialog->path))
            return 1;
        show_frame_box(FrameBox::COMPARE_ACTIVE_FILE);
    }
    return 0;
}

void show_results() {
    const ResultsAnswer answer = show_results_screen();
    if (!answer.print_requested)
        return;
    const PointerShape pointer = begin_wait();
    const bool printed = print_compare_report(answer.differences_only);
    end_wait(pointer);
    if (!printed)
        show_compare_box(CompareBox::CANNOT_PRINT);
    tell_disturbance();  // rows may have gone while they were printed
}

}  // namespace

void command_compare() {
    bool is_copy = false;
    FileDialog dialog;
    if (guard_rows() && name_left_side(&is_copy)) {
        if (ask_right_side(&dialog)) {
            begin_compare(child[0].compare_path, child[0].file_title, dialog.path, dialog.file_title);
            start_compare_dialog();
            if (compare.state == CompareState::DONE)
                show_results();
            close_compare();
        }
        if (is_copy)
            delete_file(child[0].compare_path);
    }
    show_status(STATUS_EDIT_MODE);
}

}  // namespace hexlane
