// program_end.cpp: WM_CLOSE, from the question about changes to the window's end.

#include "frame/child.h"
#include "frame/command_state.h"
#include "frame/directories.h"
#include "frame/file_commands.h"
#include "frame/file_guard.h"
#include "frame/file_questions.h"
#include "frame/main_window.h"
#include "platform/desktop.h"
#include "store/merge.h"
#include "store/row_table.h"
#include "store/save.h"

namespace hexlane {

using namespace platform;

namespace {

// Yes at the question: 1 when the document is safe on the disk.
int save_at_end() {
    const GuardAnswer answer = guard_save();
    if (answer == GuardAnswer::SAVE_AS) {
        command_save_as();
        return !child[0].modified;
    }
    if (answer == GuardAnswer::STOP)
        return 0;
    const PointerShape pointer = begin_wait();
    const int saved = save_file();
    end_wait(pointer);
    return saved;
}

// Gives 1 when nothing holds the program back any more.
int settle_at_end() {
    if (!child[0].modified)
        return 1;
    switch (ask_save()) {
    case SaveAnswer::CANCEL:
        return 0;
    case SaveAnswer::YES:
        return save_at_end();
    default:
        if (merge_counts()) {
            close_document();
            undo_merge();
        }
        return 1;
    }
}

}  // namespace

void close_program() {
    stop_ui_timer();
    if (!settle_at_end())
        return;
    close_document();
    cleanup_temp_files();
    show_help(HelpRequest::QUIT, 0);
    destroy_window(child[0].main_window);
}

}  // namespace hexlane
