// merge.cpp: splicing a second file into the active file, and taking the first state back at the program's
// end. The backup is complete on the disk before the merged file takes the active file's place.

#include "store/merge.h"

#include <algorithm>

#include "platform/files.h"
#include "platform/text_stream.h"
#include "shell/child.h"
#include "store/copy_buffer.h"
#include "store/load.h"
#include "store/replace_file.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/store_texts.h"

namespace hexlane {

using namespace platform;

MergeBackup merge_backup = {0, "", "", "", {}};

namespace {

constexpr char LINE_END[] = "\r\n";
constexpr int LINE_END_SIZE = sizeof LINE_END - 1;

struct Splice {
    FileHandle active;  // the active file as it was opened
    FileHandle merged;  // what comes in
    int64_t active_size;
    int64_t merged_size;
    int64_t position;    // where in the active file
    bool end_in_front;   // the row in front has no line end there and gets one
    bool end_of_merged;  // the same for the last row that comes in
};

int tell_merge_failure(const char* path) {
    show_store_box(StoreBox::NOT_MERGED, path, file_error_text(last_file_error()));
    return 0;
}

bool is_row_end(uint8_t byte) {
    return byte == '\n' || byte == '\0';
}

// Whether a row has text in front of `position` and no row end there; -1 when the file can't be read.
int lacks_row_end(FileHandle file, int64_t position) {
    uint8_t last = '\n';
    if (position > 0 && file_read_at(file, position - 1, &last, 1) != 1)
        return -1;
    return !is_row_end(last);
}

// Where the caret's row begins in the file; the end of the file for a row that stands nowhere in it. What
// comes in begins a row of its own there, and ends it if the caret's row stands behind it.
int find_splice_point(Splice* splice) {
    RowRecord record;
    if (!read_record(child[0].current_row, &record))
        return 0;
    splice->position = record.origin == ORIGIN_FILE ? record.position : splice->active_size;
    const int front = lacks_row_end(splice->active, splice->position);
    const int behind = lacks_row_end(splice->merged, splice->merged_size);
    splice->end_in_front = front > 0 && splice->merged_size > 0;
    splice->end_of_merged = behind > 0 && splice->position < splice->active_size;
    return front >= 0 && behind >= 0;
}

// Copies the active file to a new name "DX" and the lowest free number beside it, flushed. Beside a link's
// target, where the undoing can exchange the two: the link itself may lie on another file system. Gives 1 and
// the name, or 0 on failure, when no backup is left.
int make_backup(const Splice& splice, char path[PATH_SIZE]) {
    char target[PATH_SIZE];
    if (!follow_links(child[0].file_path, target, sizeof target))
        return 0;
    const auto folder = static_cast<int>(file_title_of(target) - target);
    FileHandle backup = NO_FILE;
    for (int n = 1; backup == NO_FILE; n++) {
        if (!format_text(path, PATH_SIZE, "%.*sDX%d", folder, target, n)) {
            set_last_file_error(FileError::NAME_TOO_LONG);
            return 0;
        }
        if (path_kind(path) != PathKind::NONE)
            continue;
        backup = file_create(path, FileCreate::NEW);
        if (backup == NO_FILE && last_file_error() != FileError::EXISTS)
            return 0;
    }
    const bool whole =
        file_copy_range(splice.active, 0, backup, 0, splice.active_size) == splice.active_size &&
        file_adopt_mode(backup, splice.active) && file_flush(backup);
    const FileError reason = last_file_error();
    const bool closed = file_close(backup);
    if (whole && closed)
        return 1;
    if (!whole)
        set_last_file_error(reason);
    const FileError kept = last_file_error();
    delete_file(path);
    set_last_file_error(kept);
    return 0;
}

// Whether the table has place for both files: no merge may make a file that can't be loaded. -1 when the
// merged file can't be read.
int rows_fit(const Splice& splice) {
    int64_t rows = int64_t{child[0].last_file_row} + 1;
    for (int64_t position = 0; position < splice.merged_size;) {
        const int64_t length = file_read_at(splice.merged, position, copy_buffer, sizeof copy_buffer);
        if (length == 0)
            set_last_file_error(FileError::IO);  // it has become shorter under us
        if (length <= 0)
            return -1;
        rows += std::count_if(copy_buffer, copy_buffer + length, is_row_end);
        position += length;
    }
    // A last row without a row end is one more all the same: it gets one, or an end row behind it.
    if (lacks_row_end(splice.merged, splice.merged_size) != 0)
        rows++;
    return rows <= MAX_ROWS;
}

int write_merged(const Splice& splice, Replacement* output) {
    return replacement_copy(output, splice.active, 0, splice.position) &&
           (!splice.end_in_front || replacement_write(output, LINE_END, LINE_END_SIZE)) &&
           replacement_copy(output, splice.merged, 0, splice.merged_size) &&
           (!splice.end_of_merged || replacement_write(output, LINE_END, LINE_END_SIZE)) &&
           replacement_copy(output, splice.active, splice.position, splice.active_size - splice.position) &&
           finish_replacement(output, splice.active);
}

void note_backup(const char* backup) {
    if (!merge_counts()) {
        merge_backup.merge_backup_active = 1;
        copy_text(merge_backup.merge_restore_path, PATH_SIZE, child[0].file_path);
        copy_text(merge_backup.merge_backup_path, PATH_SIZE, backup);
        copy_text(merge_backup.document_path, PATH_SIZE, child[0].file_path);
    }
    note_merged_file();
}

int splice_file(Splice* splice) {
    splice->active = stream_file(child[0].file_stream);
    splice->active_size = file_size(splice->active);
    splice->merged_size = file_size(splice->merged);
    if (splice->active_size < 0 || splice->merged_size < 0 || !find_splice_point(splice))
        return tell_merge_failure(child[0].merge_path);
    if (splice->active_size + splice->merged_size + 2 * LINE_END_SIZE > MAX_FILE_SIZE) {
        set_last_file_error(FileError::TOO_LARGE);
        return tell_merge_failure(child[0].merge_path);
    }
    const int fit = rows_fit(*splice);
    if (fit < 0)
        return tell_merge_failure(child[0].merge_path);
    if (fit == 0) {
        char limit[24];
        format_text(limit, sizeof limit, "%d", MAX_ROWS);
        show_store_box(StoreBox::MERGE_TOO_MANY_ROWS, child[0].merge_path, limit);
        return 0;
    }
    char backup[PATH_SIZE];
    if (!make_backup(*splice, backup)) {
        show_store_box(StoreBox::NO_MERGE_BACKUP, child[0].file_path, file_error_text(last_file_error()));
        return 0;
    }
    Replacement output;
    if (begin_replacement(&output, child[0].file_path) && write_merged(*splice, &output)) {
        note_backup(backup);
        return 1;
    }
    abandon_replacement(&output);
    const FileError reason = last_file_error();
    delete_file(backup);
    set_last_file_error(reason);
    return tell_merge_failure(child[0].merge_path);
}

bool is_merged_file(const char* path) {
    const FileStamp& merged = merge_backup.merged;
    FileStamp found;
    return path_stamp(path, &found) && found.device == merged.device && found.inode == merged.inode &&
           found.size == merged.size && found.modified_ns == merged.modified_ns;
}

// The file before the merge, and where the box tells the user to look.
int tell_undoing(StoreBox box, const char* where) {
    show_store_box(box, merge_backup.merge_restore_path, where);
    return 0;
}

int tell_undo_failure(const char* backup) {
    char subject[2 * PATH_SIZE];
    format_text(subject, sizeof subject, "%s: %s", merge_backup.merge_restore_path,
                file_error_text(last_file_error()));
    show_store_box(StoreBox::UNDO_FAILED, subject, backup);
    return 0;
}

// Deletes what the merge made, which is no longer in the file's place.
int delete_merged(const char* path) {
    if (!delete_file(path))
        tell_undoing(StoreBox::MERGED_FILE_LEFT, path);
    return 1;
}

// The two files have changed places in one step. What came out of the target's place is looked at only now,
// so that nothing that another program has put there can be lost.
int settle_exchange(const char* backup, const char* target) {
    if (is_merged_file(backup))
        return delete_merged(backup);
    if (exchange_files(backup, target))
        return tell_undoing(StoreBox::MERGE_NOT_UNDONE, backup);
    tell_undoing(StoreBox::OTHER_FILE_ASIDE, backup);
    return 1;
}

// The same in two steps, for file systems that cannot exchange.
int move_back(const char* backup, const char* target) {
    char aside[PATH_SIZE];
    if (!is_merged_file(target))
        return tell_undoing(StoreBox::MERGE_NOT_UNDONE, backup);
    if (!format_text(aside, sizeof aside, "%s.merged", backup)) {
        set_last_file_error(FileError::NAME_TOO_LONG);
        return tell_undo_failure(backup);
    }
    if (!rename_to_new(target, aside))
        return tell_undo_failure(backup);
    const bool moved = is_merged_file(aside) && rename_to_new(backup, target);
    if (moved)
        return delete_merged(aside);
    const FileError reason = last_file_error();
    const bool others = !is_merged_file(aside);
    if (!rename_to_new(aside, target))
        return tell_undoing(StoreBox::MERGED_FILE_ASIDE, aside);
    set_last_file_error(reason);
    return others ? tell_undoing(StoreBox::MERGE_NOT_UNDONE, backup) : tell_undo_failure(backup);
}

int put_back(const char* backup, const char* target) {
    if (path_kind(backup) == PathKind::NONE)
        return tell_undoing(StoreBox::MERGE_BACKUP_GONE, backup);
    if (path_kind(target) == PathKind::NONE)
        return tell_undoing(StoreBox::MERGED_FILE_GONE, backup);
    return exchange_files(backup, target) ? settle_exchange(backup, target) : move_back(backup, target);
}

bool is_merged_document() {
    return merge_counts() || same_path(child[0].file_path, merge_backup.document_path);
}

}  // namespace

bool merge_counts() {
    return merge_backup.merge_backup_active && same_path(child[0].file_path, merge_backup.merge_restore_path);
}

int merge_file() {
    set_file_dir();
    Splice splice = {};
    splice.merged = file_open(child[0].merge_path, FileAccess::READ);
    if (splice.merged == NO_FILE)
        return tell_merge_failure(child[0].merge_path);
    const int merged = splice_file(&splice);
    file_close(splice.merged);
    if (merged) {
        child[0].modified = 1;
        close_document();
    }
    return merged;
}

void note_merged_file() {
    path_stamp(child[0].file_path, &merge_backup.merged);
}

void note_saved_as(const char* path) {
    if (!merge_backup.merge_backup_active)
        return;
    const bool merged = is_merged_document();
    if (same_path(path, merge_backup.merge_restore_path)) {
        if (merged)
            delete_file(merge_backup.merge_backup_path);
        merge_backup.merge_backup_active = 0;
    } else if (merged || same_path(path, merge_backup.document_path)) {
        copy_text(merge_backup.document_path, PATH_SIZE, merged ? path : merge_backup.merge_restore_path);
    }
}

void confirm_merge() {
    if (!merge_backup.merge_backup_active || !is_merged_document())
        return;
    delete_file(merge_backup.merge_backup_path);
    merge_backup.merge_backup_active = 0;
}

int undo_merge() {
    if (!merge_counts())
        return 0;
    merge_backup.merge_backup_active = 0;
    const char* backup = merge_backup.merge_backup_path;
    char target[PATH_SIZE];
    if (!follow_links(merge_backup.merge_restore_path, target, sizeof target))
        return tell_undo_failure(backup);
    if (!put_back(backup, target))
        return 0;
    // As behind each replacement: a folder that can't be flushed leaves a whole file under the name.
    (void)flush_folder_of(target);
    return 1;
}

}  // namespace hexlane
