// file_commands.cpp: Open, Close, Save, Save As, Merge, and what they share. The program's end is in
// program_end.cpp.

#include "files/file_commands.h"

#include <cstring>

#include "dnc/transfer_state.h"
#include "edit/block_commands.h"
#include "files/file_guard.h"
#include "files/file_questions.h"
#include "files/files_texts.h"
#include "platform/files.h"
#include "platform/instance.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/scroll.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "store/file_watch.h"
#include "store/load.h"
#include "store/merge.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/save.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

char requested_file[PATH_SIZE];

namespace {

constexpr const char* NAME_FILE = "%s/newnm.fil";

// 1, or 0 with last_file_error.
int write_name_file(const char* name) {
    char path[PATH_SIZE];
    if (!format_text(path, sizeof path, NAME_FILE, directories.start_dir)) {
        set_last_file_error(FileError::NAME_TOO_LONG);
        return 0;
    }
    delete_file(path);
    FileHandle file = file_create(path, FileCreate::PRIVATE);
    if (file == NO_FILE)
        return 0;
    const int written = file_write_at(file, 0, name, std::strlen(name));
    return file_close(file) && written;
}

void clear_block_records() {
    block_clear();
    clear_cut_block();
    clear_copy_block();
}

void caret_to_origin() {
    child[0].caret_col = 0;
    child[0].caret_row = 0;
    child[0].current_row = 0;
    place_caret_now();
}

void show_document() {
    set_caret_visible(true);
    repaint_now();
    show_file_name();
    if (child[0].file_open)
        show_status(STATUS_EDIT_MODE);
    else
        show_position();
    update_menus();
}

// Loads file_path after a save or a merge: rows are numbered as before, so the caret keeps its place.
int load_again() {
    const PointerShape pointer = begin_wait();
    close_document();
    const int loaded = load_file();
    end_wait(pointer);
    if (loaded)
        bound_caret();
    else
        caret_to_origin();
    child[0].modified = loaded && child[0].modified;
    clear_block_records();
    update_scroll_values();
    if (!loaded)
        show_document();  // the empty one, whatever the caller had on show
    return loaded;
}

// Makes `path` the document in the place of the one that is open.
void open_file(const char* path, const char* title) {
    close_document();
    blank_client(child[0].main_window);
    copy_text(child[0].file_path, PATH_SIZE, path);
    copy_text(child[0].file_title, PATH_SIZE, title);
    set_file_dir();
    child[0].modified = 0;
    const PointerShape pointer = begin_wait();
    load_file();
    end_wait(pointer);
    caret_to_origin();
    child[0].vscroll_pos = 0;
    child[0].hscroll_pos = 0;
    child[0].mouse_pressed = 0;
    update_menus();
    clear_block_records();
}

// Cuts the name off: the folder, with its '/'.
void cut_title(char path[PATH_SIZE]) {
    path[file_title_of(path) - path] = '\0';
}

// Whether two paths are one entry of a folder, links followed. Two hard links to one file are two entries:
// each can be replaced without the other. One folder may be reached by two paths.
bool same_entry(const char* left, const char* right) {
    char left_target[PATH_SIZE];
    char right_target[PATH_SIZE];
    if (!same_path(left, right) || !follow_links(left, left_target, sizeof left_target) ||
        !follow_links(right, right_target, sizeof right_target) ||
        !equal_ignoring_case(file_title_of(left_target), file_title_of(right_target)))
        return false;
    cut_title(left_target);
    cut_title(right_target);
    return same_path(left_target, right_target);
}

// A name for Save As that is no file of a port.
int ask_free_name(FileDialog* dialog) {
    while (ask_save_name(dialog)) {
        if (!is_active_file(dialog->path))
            return 1;
        show_files_box(FilesBox::SAVE_ACTIVE_FILE);
    }
    return 0;
}

// The active file saved under another name, which becomes the active file. 1 when that was done.
int save_under_other_name() {
    FileDialog dialog;
    bool same = false;
    for (GuardAnswer answer = GuardAnswer::SAVE_AS; answer != GuardAnswer::WRITE;) {
        if (answer == GuardAnswer::STOP || !guard_rows() || !ask_free_name(&dialog))
            return 0;
        same = same_entry(dialog.path, child[0].file_path);
        answer = same ? guard_save() : GuardAnswer::WRITE;
    }
    const PointerShape pointer = begin_wait();
    const int saved = same ? save_file() : save_file_as(dialog.path);
    end_wait(pointer);
    if (!saved)
        return 0;
    if (!same)
        note_saved_as(dialog.path);
    close_document();
    copy_text(child[0].file_path, PATH_SIZE, dialog.path);
    copy_text(child[0].file_title, PATH_SIZE, dialog.file_title);
    set_file_dir();
    load_again();
    show_document();
    return 1;
}

// The document written in the place of its file. 1 when it is saved and its table must be loaded afresh, or
// was saved under another name; 0 when the caller's command has to stop.
int save_document(bool* needs_load) {
    *needs_load = false;
    const GuardAnswer answer = guard_save();
    if (answer == GuardAnswer::SAVE_AS)
        return save_under_other_name();
    if (answer == GuardAnswer::STOP)
        return 0;
    const PointerShape pointer = begin_wait();
    const int saved = save_file();
    end_wait(pointer);
    *needs_load = saved;
    return saved;
}

// What stands before every command that drops the document. Gives 1 to go on, 0 to stop; `needs_load` takes
// whether a save has left the document without a table.
int settle_changes(bool* needs_load) {
    *needs_load = false;
    if (!child[0].modified)
        return 1;
    const SaveAnswer answer = ask_save();
    if (answer == SaveAnswer::CANCEL)
        return 0;
    return answer == SaveAnswer::NO || save_document(needs_load);
}

void show_closed() {
    close_document();
    blank_client(child[0].main_window);
    child[0].modified = 0;
    child[0].file_path[0] = '\0';
    child[0].file_title[0] = '\0';
    set_last_file_row(0);
    show_file_name();
    show_status(STATUS_BLANK);
    caret_to_origin();
    block_clear();
    show_position();
    set_caret_visible(true);
    repaint_now();
    update_menus();
}

// A document that was changed, or whose file was replaced, is written first, so that the splice point is a
// place in the file on disk. 1 when the document is the file now.
int settle_for_merge() {
    const PointerShape pointer = begin_wait();
    const int saved = save_file_keeping_merge();
    end_wait(pointer);
    if (!saved || !load_again())
        return 0;
    if (merge_counts()) {  // an earlier merge is still to be confirmed
        note_merged_file();
        child[0].modified = 1;
    }
    return 1;
}

bool merge_needs_save() {
    RowRecord record;
    // A row that stands nowhere in the file (the end row of a file without a line end) is no reason: the
    // merge then goes to the file's end.
    bool fresh = false;
    return child[0].modified || document_change(&fresh) != FileChange::NONE ||
           !read_record(child[0].current_row, &record) || record.origin == ORIGIN_CHANGE;
}

// A requested file that a port is using is refused, and the user chooses another one.
bool take_requested_file() {
    if (requested_file[0] == '\0')
        return false;
    note_named_file(requested_file);
    if (!is_active_file(requested_file))
        return true;
    show_files_box(FilesBox::OPEN_ACTIVE_FILE);
    requested_file[0] = '\0';
    return false;
}

// A name to open that is no file of a port; `refusal` tells of one that is.
int ask_quiet_file(FileDialog* dialog, FilesBox refusal) {
    while (ask_open_name(dialog)) {
        if (!is_active_file(dialog->path))
            return 1;
        show_files_box(refusal);
    }
    return 0;
}

}  // namespace

void open_requested_file() {
    char title[PATH_SIZE];
    copy_text(title, sizeof title, file_title_of(requested_file));
    open_file(requested_file, title);
    requested_file[0] = '\0';
    show_document();
}

void command_open() {
    bool needs_load = false;
    if (!settle_changes(&needs_load)) {
        requested_file[0] = '\0';
        return;
    }
    if (take_requested_file()) {
        open_requested_file();
        return;
    }
    FileDialog dialog;
    if (ask_quiet_file(&dialog, FilesBox::OPEN_ACTIVE_FILE))
        open_file(dialog.path, dialog.file_title);
    else if (needs_load)
        load_again();
    show_document();
}

void command_close() {
    bool needs_load = false;
    if (settle_changes(&needs_load))
        show_closed();
}

int save_and_reload() {
    const PointerShape pointer = begin_wait();
    const int saved = save_file();
    end_wait(pointer);
    if (!saved)
        return 0;
    load_again();
    place_caret_now();
    repaint_now();
    show_file_name();
    show_position();
    update_menus();
    return 1;
}

int reload_document() {
    child[0].modified = 0;
    const int loaded = load_again();
    show_document();
    return loaded;
}

void command_save() {
    if (!child[0].modified) {
        update_menus();
        return;
    }
    const GuardAnswer answer = guard_save();
    if (answer == GuardAnswer::WRITE)
        save_and_reload();
    else if (answer == GuardAnswer::SAVE_AS)
        save_under_other_name();
}

void command_save_as() {
    save_under_other_name();
}

void command_merge() {
    if (show_files_box(FilesBox::MERGE_QUESTION) != 0)
        return;
    FileDialog dialog;
    if (!ask_quiet_file(&dialog, FilesBox::MERGE_ACTIVE_FILE))
        return;
    const GuardAnswer answer = guard_save();
    if (answer == GuardAnswer::SAVE_AS)
        save_under_other_name();
    if (answer != GuardAnswer::WRITE || (merge_needs_save() && !settle_for_merge()))
        return;
    copy_text(child[0].merge_path, PATH_SIZE, dialog.path);
    if (same_path(child[0].merge_path, child[0].file_path)) {
        show_files_box(FilesBox::MERGE_WITH_ITSELF);
        repaint_now();
        update_menus();  // the pending save has ended what was cut
        return;
    }
    const PointerShape pointer = begin_wait();
    const int merged = merge_file();
    end_wait(pointer);
    if (merged) {
        load_again();
        if (merge_counts())
            note_merged_file();  // the load may have stripped NULs from it
        update_scrollbar(child[0].main_window);
        show_file_name();
        show_status(STATUS_BLANK);
    }
    repaint_now();
    update_menus();
}

void take_handovers() {
    char path[PATH_SIZE];
    while (take_handover(path, sizeof path)) {
        if (path_kind(path) != PathKind::FILE)
            continue;
        if (write_name_file(path))
            send_message(child[0].main_window, OPEN_REQUEST_MESSAGE, 0, 0);
        else
            show_files_box(FilesBox::NAME_NOT_WRITTEN, path, file_error_text(last_file_error()));
    }
}

void open_request() {
    char path[PATH_SIZE];
    format_text(path, sizeof path, NAME_FILE, directories.start_dir);
    FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE)
        return;
    char name[PATH_SIZE] = "";
    const int64_t length = file_read_at(file, 0, name, sizeof name);
    file_close(file);
    delete_file(path);
    if (length <= 0 || length >= static_cast<int64_t>(sizeof name))
        return;  // no name, or one that is too long to be a path
    name[length] = '\0';
    copy_text(requested_file, sizeof requested_file, name);
    send_message(child[0].main_window, WM_COMMAND, 1001, 0);
}

}  // namespace hexlane
