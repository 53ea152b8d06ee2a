// save.cpp: the walk over the table that streams all rows into a new file, and its three users.
//
// Unchanged rows stand in the file one behind the other, so a run of them is copied as one piece of raw
// bytes. Everything else goes through an output buffer, and so do short runs.

#include "store/save.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"
#include "platform/text_stream.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/status_line.h"
#include "shell/temp_names.h"
#include "store/copy_buffer.h"
#include "store/merge.h"
#include "store/replace_file.h"
#include "store/row_bytes.h"
#include "store/row_edits.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "store/store_texts.h"

namespace hexlane {

using namespace platform;

namespace {

// One walk. copy_buffer[0, buffered) waits to be written.
struct Walk {
    Replacement* output;
    bool show_progress;
    int64_t run_start;   // where the open run begins in the active file
    int64_t run_length;  // 0: no run is open
    int32_t buffered;
    // The row written last stood at the end of the active file and has no line end there. It gets one as soon
    // as a row stands behind it that has text or is not the last; an empty last row brings its own.
    bool line_end_owed;
    int32_t row_ends;  // in what has been written
};

int flush_buffer(Walk* walk) {
    const auto size = static_cast<std::size_t>(walk->buffered);
    walk->buffered = 0;
    return size == 0 || replacement_write(walk->output, copy_buffer, size);
}

int put_bytes(Walk* walk, const char* bytes, int32_t size) {
    while (size > 0) {
        if (walk->buffered == COPY_BUFFER_SIZE && !flush_buffer(walk))
            return 0;
        const int32_t now = std::min(size, COPY_BUFFER_SIZE - walk->buffered);
        std::memcpy(copy_buffer + walk->buffered, bytes, static_cast<std::size_t>(now));
        walk->buffered += now;
        bytes += now;
        size -= now;
    }
    return 1;
}

int put_line_end(Walk* walk) {
    walk->row_ends++;
    return put_bytes(walk, "\r\n", 2);
}

// Copies raw bytes of the active file or the change file through the buffer.
int put_stream_bytes(Walk* walk, StreamHandle stream, int64_t position, int64_t length) {
    while (length > 0) {
        if (walk->buffered == COPY_BUFFER_SIZE && !flush_buffer(walk))
            return 0;
        const int64_t now = std::min<int64_t>(length, COPY_BUFFER_SIZE - walk->buffered);
        if (stream_read_raw(stream, position, copy_buffer + walk->buffered, static_cast<std::size_t>(now)) !=
            now) {
            if (last_file_error() == FileError::NONE)
                set_last_file_error(FileError::IO);  // the source is shorter than the table says
            return 0;
        }
        walk->buffered += static_cast<int32_t>(now);
        position += now;
        length -= now;
    }
    return 1;
}

int flush_run(Walk* walk) {
    const int64_t start = walk->run_start;
    const int64_t length = walk->run_length;
    walk->run_start += length;
    walk->run_length = 0;
    if (length <= COPY_BUFFER_SIZE / 2)
        return put_stream_bytes(walk, child[0].file_stream, start, length);
    return flush_buffer(walk) &&
           replacement_copy(walk->output, stream_file(child[0].file_stream), start, length);
}

// A row of the active file: lengthens the run by its bytes, line end included.
int walk_file_row(Walk* walk, int32_t row, const RowRecord& record) {
    if (walk->run_length == 0)
        walk->run_start = record.position;
    RowRecord next = {0, ORIGIN_BLANK};
    if (row < child[0].last_file_row && !read_record(row + 1, &next))
        return 0;
    if (next.origin == ORIGIN_FILE && row + 1 != unsaved_row.row) {
        walk->run_length += static_cast<int64_t>(next.position) - record.position;
        walk->row_ends++;
    } else {
        RowSpan span;
        if (!row_span(record, &span))
            return 0;
        walk->run_length += span.next - record.position;
        walk->line_end_owed = span.had_line_end < 0;
        walk->row_ends += span.had_line_end < 0 ? 0 : 1;
        return flush_run(walk);
    }
    return walk->run_length < RUN_FLUSH_LENGTH || flush_run(walk);
}

// A row that could not be stored: its text from memory, its unseen bytes from where they stand.
int walk_unsaved_row(Walk* walk, const RowRecord& record) {
    RowSpan rest;
    return unseen_rest(record, unsaved_row.shown, &rest) &&
           put_bytes(walk, unsaved_row.text, static_cast<int32_t>(std::strlen(unsaved_row.text))) &&
           put_stream_bytes(walk, rest.origin == ORIGIN_FILE ? child[0].file_stream : child[0].change_stream,
                            rest.position, rest.length) &&
           put_line_end(walk);
}

int walk_change_row(Walk* walk, const RowRecord& record) {
    RowSpan span;
    return row_span(record, &span) &&
           put_stream_bytes(walk, child[0].change_stream, record.position, span.length) && put_line_end(walk);
}

// Any row but one of the active file. An owed line end comes first, if this row does not bring it itself.
int walk_other_row(Walk* walk, int32_t row, const RowRecord& record) {
    if (walk->line_end_owed) {
        walk->line_end_owed = false;
        if ((row < child[0].last_file_row || !row_is_empty(row)) && !put_line_end(walk))
            return 0;
    }
    if (row == unsaved_row.row)
        return walk_unsaved_row(walk, record);
    return record.origin == ORIGIN_CHANGE ? walk_change_row(walk, record) : put_line_end(walk);
}

int walk_rows(Walk* walk) {
    set_last_file_error(FileError::NONE);
    for (int32_t row = 0; row <= child[0].last_file_row; row++) {
        if (walk->show_progress && row % ROW_COUNT_STEP == 0)
            show_row_count(row - 1);
        RowRecord record;
        if (!read_record(row, &record))
            return 0;
        const bool from_file = record.origin == ORIGIN_FILE && row != unsaved_row.row;
        if (!(from_file ? walk_file_row(walk, row, record) : walk_other_row(walk, row, record)))
            return 0;
    }
    if (walk->show_progress)
        show_row_count(child[0].last_file_row);
    return flush_run(walk) && flush_buffer(walk);
}

// `row_ends` takes how many row ends were written; the file has one row more, the empty one behind the last.
int write_rows(Replacement* output, bool show_progress, int32_t* row_ends) {
    Walk walk = {output, show_progress, 0, 0, 0, false, 0};
    const int done = walk_rows(&walk);
    *row_ends = walk.row_ends;
    return done;
}

// Whether a load would take so many bytes.
bool size_fits(const Replacement& output) {
    if (output.length <= MAX_FILE_SIZE)
        return true;
    set_last_file_error(FileError::TOO_LARGE);
    return false;
}

// Before each walk: the pending row goes into the table. A row that cannot be stored does not stop a save,
// which takes its text from memory.
void settle_rows() {
    commit_pending();
    edits_allowed();
}

// Writes the document complete beside `path` and puts it in place. A file that is there already must be one
// that may be written; it gives mode and owner, otherwise `like` does. Gives 1; 0 on failure; -1 when a load
// would not take so many rows.
int write_document(const char* path, FileHandle like, bool show_progress) {
    FileHandle old = file_open(path, FileAccess::READ_WRITE);
    if (old == NO_FILE && last_file_error() != FileError::NOT_FOUND)
        return 0;
    Replacement output;
    int32_t row_ends = 0;
    int done = begin_replacement(&output, path) && write_rows(&output, show_progress, &row_ends) &&
               size_fits(output);
    if (done)
        done = row_ends < MAX_ROWS ? finish_replacement(&output, old == NO_FILE ? like : old) : -1;
    abandon_replacement(&output);
    const FileError reason = last_file_error();
    if (old != NO_FILE)
        file_close(old);
    set_last_file_error(reason);
    return done;
}

// `done` is what write_document gave.
int tell_save_failure(const char* path, int done) {
    const FileError reason = last_file_error();
    show_status(STATUS_BLANK);
    char limit[24];
    format_text(limit, sizeof limit, "%d", MAX_ROWS);
    if (done < 0)
        show_store_box(StoreBox::SAVE_TOO_MANY_ROWS, path, limit);
    else
        show_store_box(StoreBox::NOT_SAVED, path, file_error_text(reason));
    return 0;
}

int save_in_place() {
    show_status(STATUS_SAVING);
    settle_rows();
    const int done = write_document(child[0].file_path, stream_file(child[0].file_stream), true);
    if (done <= 0)
        return tell_save_failure(child[0].file_path, done);
    child[0].modified = 0;
    return 1;
}

}  // namespace

int save_file() {
    if (!save_in_place())
        return 0;
    confirm_merge();
    return 1;
}

int save_file_keeping_merge() {
    return save_in_place();
}

int save_file_as(const char* path) {
    settle_rows();
    const int done = write_document(path, NO_FILE, false);
    if (done <= 0)
        return tell_save_failure(path, done);
    child[0].modified = 0;
    return 1;
}

int write_compare_snapshot() {
    settle_rows();
    Replacement output = {NO_FILE, 0, "", ""};
    int32_t row_ends = 0;
    output.file = create_work_file(directories.temp_dir, output.output);
    if (output.file != NO_FILE && write_rows(&output, true, &row_ends)) {
        copy_text(child[0].compare_path, PATH_SIZE, output.output);
        if (file_close(output.file))
            return 1;
        output.file = NO_FILE;
    }
    abandon_replacement(&output);
    show_store_box(StoreBox::SNAPSHOT_FAILED, file_error_text(last_file_error()));
    return 0;
}

}  // namespace hexlane
