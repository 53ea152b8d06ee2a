// row_table.cpp: the records of the rows in their segment files, and fetching and committing one row.
// Where a row's bytes stand is in row_bytes.cpp, loading in load.cpp, saving in save.cpp.

#include "store/row_table.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "frame/child.h"
#include "frame/directories.h"
#include "frame/scroll.h"
#include "platform/text.h"
#include "platform/text_stream.h"
#include "store/row_edits.h"
#include "store/row_record_format.h"
#include "store/store_fault.h"
#include "store/temp_names.h"

namespace hexlane {

using namespace platform;

SegmentEntry segment_table[MAX_SEGMENTS];

namespace {

// The records around the one read last, all of the open segment, so that a walk costs one read for each
// window.
struct RecordWindow {
    int segment;  // -1: the window is empty
    int32_t first;
    int32_t count;
    uint8_t bytes[SEGMENT_WINDOW_ROWS * ROW_RECORD_SIZE];
} window = {-1, 0, 0, {}};

// How row_text relates to what is stored of its row, from the last fetch or commit.
struct SeenRow {
    int32_t row;    // -1: not known
    int32_t shown;  // bytes of the stored row that row_text stands for
    bool whole;     // nothing of the row is stored behind them
    bool readable;
} seen = {-1, 0, true, true};

uint8_t* window_place(int32_t index) {
    if (window.segment != child[0].current_segment || index < window.first ||
        index >= window.first + window.count)
        return nullptr;
    return window.bytes + (index - window.first) * ROW_RECORD_SIZE;
}

// Reads the window that holds record `index` of the open segment. Gives the record's place, or nullptr.
uint8_t* load_window(int32_t index) {
    const SegmentEntry& entry = segment_table[child[0].current_segment];
    window.segment = -1;
    const int32_t first = index - index % SEGMENT_WINDOW_ROWS;
    const int64_t length = file_read_at(entry.handle, static_cast<int64_t>(first) * ROW_RECORD_SIZE,
                                        window.bytes, sizeof window.bytes);
    if (length < 0)
        return nullptr;
    window.segment = child[0].current_segment;
    window.first = first;
    window.count = static_cast<int32_t>(length / ROW_RECORD_SIZE);
    uint8_t* place = window_place(index);
    if (place == nullptr)
        set_last_file_error(FileError::IO);  // the segment file is shorter than the table says
    return place;
}

SegmentEntry* open_entry() {
    for (int segment = 0; segment < child[0].segment_count; segment++) {
        if (segment_table[segment].is_open)
            return &segment_table[segment];
    }
    return nullptr;
}

bool segment_holds(int segment, int32_t row) {
    return segment_table[segment].first_row <= row &&
           (segment == child[0].segment_count - 1 || row < segment_table[segment + 1].first_row);
}

// The last segment whose first_row is at most `row`: empty ones in front of it have the same first_row.
int find_segment(int32_t row) {
    int low = 0;
    int high = child[0].segment_count - 1;
    while (low < high) {
        const int middle = (low + high + 1) / 2;
        if (segment_table[middle].first_row <= row)
            low = middle;
        else
            high = middle - 1;
    }
    return low;
}

void clear_row_text() {
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
}

// Notes that the row in row_text could not be read: it must not be committed over what is stored.
int fail_fetch(int32_t row, const char* path) {
    clear_row_text();
    seen = {row, 0, true, false};
    raise_store_fault(path);
    return 0;
}

void fetch_unsaved_row() {
    std::memcpy(child[0].row_text, unsaved_row.text, sizeof unsaved_row.text);
    child[0].row_origin = ORIGIN_CHANGE;
    row_had_lf = 1;
    seen = {unsaved_row.row, unsaved_row.shown, false, true};
}

}  // namespace

void reset_store() {
    child[0].current_segment = 0;
    child[0].segment_count = 1;
    std::fill(std::begin(segment_table), std::end(segment_table), NO_SEGMENT);
    forget_cached_rows();
}

void forget_cached_rows() {
    window.segment = -1;
    seen = {-1, 0, true, true};
}

int32_t segment_rows(int segment) {
    const int32_t behind = segment == child[0].segment_count - 1 ? child[0].last_file_row + 1
                                                                 : segment_table[segment + 1].first_row;
    return behind > segment_table[segment].first_row ? behind - segment_table[segment].first_row : 0;
}

void set_last_file_row(int32_t row) {
    child[0].last_file_row = row;
    update_scroll_values();
}

void build_segment_path() {
    const int segment = child[0].current_segment;
    if (segment_table[segment].file_name[0] == '\0')
        name_segment(segment);
    format_text(child[0].segment_path, PATH_SIZE, "%s/%s", directories.temp_dir,
                segment_table[segment].file_name);
}

int open_segment(bool create) {
    const int segment = child[0].current_segment;
    SegmentEntry& entry = segment_table[segment];
    build_segment_path();
    SegmentEntry* open = open_entry();
    FileHandle file = NO_FILE;
    if (open != nullptr && !create && std::strcmp(open->file_name, entry.file_name) == 0) {
        file = open->handle;
    } else {
        file = create ? file_create(child[0].segment_path, FileCreate::PRIVATE)
                      : file_open(child[0].segment_path, FileAccess::READ_WRITE);
        if (file == NO_FILE)
            return 0;
        if (open != nullptr)
            file_close(open->handle);
    }
    if (open != nullptr)
        open->is_open = 0;
    entry.handle = file;
    entry.is_open = 1;
    window.segment = -1;
    return 1;
}

int64_t locate_row(int32_t row) {
    if (!segment_holds(child[0].current_segment, row))
        child[0].current_segment = static_cast<int16_t>(find_segment(row));
    const SegmentEntry& entry = segment_table[child[0].current_segment];
    if (!entry.is_open && !open_segment(false))
        return -1;
    return entry.base + static_cast<int64_t>(row - entry.first_row) * ROW_RECORD_SIZE;
}

int read_record(int32_t row, RowRecord* record) {
    const int64_t offset = locate_row(row);
    if (offset < 0)
        return 0;
    const int32_t index = static_cast<int32_t>(offset / ROW_RECORD_SIZE);
    const uint8_t* place = window_place(index);
    if (place == nullptr)
        place = load_window(index);
    if (place == nullptr)
        return 0;
    *record = get_row_record(place);
    return 1;
}

int write_record(int32_t row, const RowRecord& record) {
    const int64_t offset = locate_row(row);
    if (offset < 0)
        return 0;
    uint8_t bytes[ROW_RECORD_SIZE];
    put_row_record(bytes, record.position, record.origin);
    if (!file_write_at(segment_table[child[0].current_segment].handle, offset, bytes, sizeof bytes))
        return 0;
    uint8_t* place = window_place(static_cast<int32_t>(offset / ROW_RECORD_SIZE));
    if (place != nullptr)
        std::memcpy(place, bytes, sizeof bytes);
    else if (row > child[0].last_file_row)
        window.segment = -1;  // the segment has grown past what the window knows
    return 1;
}

int fetch_row(int32_t row) {
    row_had_lf = 0;
    clear_row_text();
    seen.row = -1;
    if (row > child[0].last_file_row || row < 0)
        return 1;
    if (row == unsaved_row.row) {
        fetch_unsaved_row();
        return 1;
    }
    RowRecord record;
    if (!read_record(row, &record))
        return fail_fetch(row, child[0].segment_path);
    child[0].row_origin = record.origin;
    seen = {row, 0, true, true};
    if (record.origin == ORIGIN_BLANK)
        return 1;
    const bool from_file = record.origin == ORIGIN_FILE;
    const LineRead line = stream_read_line(from_file ? child[0].file_stream : child[0].change_stream,
                                           record.position, child[0].row_text, ROW_FETCH_MAX);
    if (line.end == LineEnd::FAILED)
        return fail_fetch(row, from_file ? child[0].file_path : child[0].change_path);
    const std::size_t length = std::strlen(child[0].row_text);
    if (length <
        static_cast<std::size_t>(line.length)) {  // a NUL ended the row: what was read behind it is others'
        std::memset(child[0].row_text + length, 0, sizeof child[0].row_text - length);
        seen.shown = static_cast<int32_t>(length);
        return 1;
    }
    row_had_lf = line.end == LineEnd::LF;
    seen.shown = line.length;
    seen.whole = line.end == LineEnd::LF || line.end == LineEnd::END;
    return 1;
}

int commit_row(int32_t row) {
    if (seen.row == row && !seen.readable)
        return 0;  // told when the fetch failed; what is stored is better than an empty row
    if (unsaved_row.row >= 0 && unsaved_row.row != row)
        return 0;
    const int32_t shown = seen.row == row ? seen.shown : SHOWN_BY_FETCH;
    RowSpan rest = {ORIGIN_BLANK, 0, 0, -1, 0};
    RowRecord record = {0, ORIGIN_BLANK};
    int stored = 1;
    if (!(seen.row == row && seen.whole))
        stored = read_record(row, &record) && unseen_rest(record, shown, &rest);
    if (stored)
        stored = store_row_text(row, child[0].row_text, &rest);
    if (!stored) {
        keep_unsaved_row(row, shown);
        raise_store_fault(child[0].change_path);
        return 0;
    }
    seen = {row, static_cast<int32_t>(std::strlen(child[0].row_text)), rest.length == 0, true};
    if (unsaved_row.row == row)
        clear_store_fault();
    return 1;
}

int commit_pending_in_place() {
    if (child[0].pending_row < 0)
        return 1;
    const int committed = commit_row(child[0].pending_row);
    child[0].pending_row = -1;
    return committed;
}

int commit_pending() {
    const int32_t row = child[0].pending_row;
    if (row < 0)
        return 1;
    if (!commit_pending_in_place())
        return 0;
    if (row == child[0].last_file_row && !row_is_empty(row))
        return insert_blank_rows(row + 1, 1);
    return 1;
}

void close_document() {
    if (child[0].file_open) {
        stream_close(child[0].file_stream);
        stream_discard(child[0].change_stream);
        child[0].file_stream = NO_STREAM;
        child[0].change_stream = NO_STREAM;
    }
    for (SegmentEntry& entry : segment_table) {
        if (entry.is_open)
            file_close(entry.handle);
        entry.is_open = 0;
    }
    child[0].file_open = 0;
    child[0].pending_row = -1;
    forget_cached_rows();
    clear_store_fault();
}

}  // namespace hexlane
