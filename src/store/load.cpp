// load.cpp: one pass over a file makes its row table; no text is kept. The test for NULs is in
// check_nulls.cpp.

#include "store/load.h"

#include <cstring>

#include "platform/text.h"
#include "platform/text_stream.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "shell/status_line.h"
#include "store/file_watch.h"
#include "store/row_edits.h"
#include "store/row_record_format.h"
#include "store/row_records.h"
#include "store/row_scan.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "store/store_texts.h"

namespace hexlane {

using namespace platform;

namespace {

enum class LoadResult { DONE, TOO_MANY_ROWS, FAILED };

uint8_t load_block[LOAD_BLOCK_SIZE];
int32_t row_ends[LOAD_BLOCK_SIZE];
uint8_t segment_records[ROWS_PER_SEGMENT * ROW_RECORD_SIZE];
int32_t record_count;  // records in segment_records

int write_segment() {
    const SegmentEntry& entry = segment_table[child[0].current_segment];
    return file_write_at(entry.handle, entry.base, segment_records,
                         static_cast<std::size_t>(record_count) * ROW_RECORD_SIZE);
}

// The next segment begins in the same file, where the last one ends.
int start_next_segment() {
    const SegmentEntry& last = segment_table[child[0].current_segment];
    SegmentEntry& next = segment_table[++child[0].current_segment];
    child[0].segment_count++;
    next = last;
    next.is_open = 0;
    next.first_row += ROWS_PER_SEGMENT;
    next.base += static_cast<int64_t>(ROWS_PER_SEGMENT) * ROW_RECORD_SIZE;
    return open_segment(false);
}

LoadResult add_record(int64_t position) {
    if (record_count == ROWS_PER_SEGMENT)  // left so by the last segment of the table alone
        return LoadResult::TOO_MANY_ROWS;
    put_row_record(segment_records + record_count * ROW_RECORD_SIZE, static_cast<uint32_t>(position),
                   ORIGIN_FILE);
    if (++record_count < ROWS_PER_SEGMENT)
        return LoadResult::DONE;
    if (!write_segment())
        return LoadResult::FAILED;
    if (child[0].segment_count < MAX_SEGMENTS) {
        if (!start_next_segment())
            return LoadResult::FAILED;
        record_count = 0;
    }
    show_row_count(child[0].last_file_row);
    return LoadResult::DONE;
}

LoadResult scan_file(FileHandle file) {
    record_count = 0;
    child[0].last_file_row = 0;
    LoadResult result = add_record(0);
    int64_t position = 0;
    while (result == LoadResult::DONE) {
        const int64_t length = file_read_at(file, position, load_block, sizeof load_block);
        if (length < 0)
            return LoadResult::FAILED;
        if (length == 0)
            break;
        const int32_t count = find_row_ends(load_block, static_cast<int32_t>(length), row_ends);
        for (int32_t i = 0; i < count && result == LoadResult::DONE; i++) {
            child[0].last_file_row++;
            result = add_record(position + row_ends[i] + 1);
        }
        position += length;
    }
    char last = '\n';
    if (result == LoadResult::DONE && child[0].last_file_row == MAX_ROWS - 1 &&
        file_read_at(file, position - 1, &last, 1) != 1)
        return LoadResult::FAILED;
    if (last != '\n' && last != '\0')
        return LoadResult::TOO_MANY_ROWS;  // there is no place for the end row
    if (result == LoadResult::DONE && record_count > 0 && record_count < ROWS_PER_SEGMENT && !write_segment())
        return LoadResult::FAILED;
    return result;
}

// Opens file_path, making it when it is missing, and gives an empty file the line end that every document
// has. NO_FILE after a message.
FileHandle open_active_file() {
    char target[PATH_SIZE];
    FileHandle file = NO_FILE;
    if (path_kind(child[0].file_path) != PathKind::NONE)
        file = file_open(child[0].file_path, FileAccess::READ_WRITE);
    else if (follow_links(child[0].file_path, target, sizeof target))  // a link may point at nothing yet
        file = file_create(target, FileCreate::NEW);
    if (file == NO_FILE) {
        show_store_box(StoreBox::NOT_OPENED, child[0].file_path, file_error_text(last_file_error()));
        return NO_FILE;
    }
    const int64_t size = file_size(file);
    if (size > MAX_FILE_SIZE) {
        char limit[24];
        format_text(limit, sizeof limit, "%lld", static_cast<long long>(MAX_FILE_SIZE));
        show_store_box(StoreBox::TOO_LARGE, child[0].file_path, limit);
    } else if (size < 0 || (size == 0 && !file_write_at(file, 0, "\r\n", 2))) {
        show_store_box(StoreBox::NOT_INDEXED, child[0].file_path, file_error_text(last_file_error()));
    } else {
        return file;
    }
    file_close(file);
    return NO_FILE;
}

void tell_load_failure(LoadResult result) {
    char limit[24];
    format_text(limit, sizeof limit, "%d", MAX_ROWS);
    if (result == LoadResult::TOO_MANY_ROWS)
        show_store_box(StoreBox::TOO_MANY_ROWS, child[0].file_path, limit);
    else
        show_store_box(StoreBox::NOT_INDEXED, child[0].file_path, file_error_text(last_file_error()));
}

// Builds the table from `file` and opens both streams. On DONE the file belongs to file_stream.
LoadResult build_table(FileHandle file) {
    if (!open_segment(true))
        return LoadResult::FAILED;
    segment_table[0].shares_file = 1;
    child[0].change_stream = stream_create(child[0].change_path);
    if (child[0].change_stream == NO_STREAM)
        return LoadResult::FAILED;
    set_last_file_row(0);
    show_status(STATUS_LOADING);
    show_row_count(0);
    LoadResult result = scan_file(file);
    if (result == LoadResult::DONE) {
        child[0].file_stream = stream_from_file(file);
        if (child[0].file_stream == NO_STREAM)
            result = LoadResult::FAILED;
    }
    if (result != LoadResult::DONE)
        stream_discard(child[0].change_stream);
    return result;
}

int forget_file() {
    close_document();
    child[0].file_path[0] = '\0';
    child[0].file_title[0] = '\0';
    set_file_dir();
    set_last_file_row(0);
    show_status(STATUS_BLANK);
    return 0;
}

}  // namespace

void set_file_dir() {
    copy_text(child[0].file_dir, PATH_SIZE, child[0].file_path);
    char* slash = std::strrchr(child[0].file_dir, '/');
    child[0].file_dir[slash == nullptr ? 0 : slash - child[0].file_dir + 1] = '\0';
}

int load_file() {
    if (check_nulls() < 0)
        return forget_file();
    reset_store();
    FileHandle file = open_active_file();
    if (file == NO_FILE)
        return forget_file();
    note_document_stamp(file);
    const LoadResult result = build_table(file);
    if (result != LoadResult::DONE) {
        const FileError reason = last_file_error();
        file_close(file);
        set_last_file_error(reason);
        tell_load_failure(result);
        return forget_file();
    }
    child[0].file_open = 1;
    child[0].pending_row = -1;
    child[0].current_segment = 0;
    clear_store_fault();
    update_scroll_values();
    add_end_row_after_load();
    show_status(STATUS_BLANK);
    return 1;
}

void add_end_row_after_load() {
    fetch_row(child[0].last_file_row);
    if (child[0].row_text[0] != '\0' && !row_had_lf)
        insert_blank_rows(child[0].last_file_row + 1, 1);
}

}  // namespace hexlane
