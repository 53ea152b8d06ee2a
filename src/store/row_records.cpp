// row_records.cpp: segments by row, and the window of records.
//
// Records that wait. A commit writes its record at once, except inside a batch, where thousands of commits
// follow each other in table order: there the record goes into the window in memory, and the window is
// written out, from the first record that waits to the last, before another one takes its place and at the
// end of the batch. So:
//   - every reader sees a record that waits, since all of them ask the window first;
//   - the window is never given up while its records wait. When it can't be written out, the commit that
//     needs the place fails like any other (its text goes to unsaved_row and ends the run), and reads of
//     other rows pass by the window, record by record, so that a Save still finds everything;
//   - a batch that can't be written out at its end makes its last row the unsaved one. Either way no edit is
//     taken until a retry has worked, which writes the waiting records first (write_record), and until then
//     nothing changes the table under the window.

#include "store/row_records.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/text.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/temp_names.h"
#include "store/row_record_format.h"

namespace hexlane {

using namespace platform;

SegmentEntry segment_table[MAX_SEGMENTS];

namespace {

// The records around the one read last, all of one segment, so that a walk costs one read for each window.
// Records are counted from the beginning of the segment's file.
struct RecordWindow {
    int segment;  // -1: the window is empty
    int32_t first;
    int32_t count;
    int32_t waiting_first;  // records that are not in the file yet, all in front of waiting_end
    int32_t waiting_end;    // not behind waiting_first: none
    uint8_t bytes[SEGMENT_WINDOW_ROWS * ROW_RECORD_SIZE];
} window = {-1, 0, 0, 0, 0, {}};

bool batch_running = false;

uint8_t* window_place(int32_t index) {
    if (window.segment != child[0].current_segment || index < window.first ||
        index >= window.first + window.count)
        return nullptr;
    return window.bytes + (index - window.first) * ROW_RECORD_SIZE;
}

bool records_wait() {
    return window.waiting_first < window.waiting_end;
}

void empty_window() {
    window.segment = -1;
    window.waiting_first = window.waiting_end = 0;
}

void segment_file_path(const SegmentEntry& entry, char* path) {
    format_text(path, PATH_SIZE, "%s/%s", directories.temp_dir, entry.file_name);
}

// Writes the records that wait to their file, which may have been closed for that of another segment. Gives
// 1; 0 on failure, and then they wait on.
int write_back_records() {
    if (!records_wait())
        return 1;
    const SegmentEntry& entry = segment_table[window.segment];
    FileHandle file = entry.handle;
    if (!entry.is_open) {
        char path[PATH_SIZE];
        segment_file_path(entry, path);
        file = file_open(path, FileAccess::READ_WRITE);
        if (file == NO_FILE)
            return 0;
    }
    const int written =
        file_write_at(file, static_cast<int64_t>(window.waiting_first) * ROW_RECORD_SIZE,
                      window.bytes + (window.waiting_first - window.first) * ROW_RECORD_SIZE,
                      static_cast<std::size_t>(window.waiting_end - window.waiting_first) * ROW_RECORD_SIZE);
    const FileError reason = last_file_error();
    if (!entry.is_open)
        file_close(file);
    set_last_file_error(reason);
    if (written)
        window.waiting_first = window.waiting_end = 0;
    return written;
}

// Reads the window that holds record `index` of the open segment. Gives the record's place, or nullptr.
uint8_t* load_window(int32_t index) {
    if (!write_back_records())
        return nullptr;
    const SegmentEntry& entry = segment_table[child[0].current_segment];
    empty_window();
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

// Puts a record into the window, to be written out later. Gives 1; 0 when there is no place for it.
int hold_record(int32_t index, const uint8_t* bytes) {
    uint8_t* place = window_place(index);
    if (place == nullptr)
        place = load_window(index);
    if (place == nullptr)
        return 0;
    std::memcpy(place, bytes, ROW_RECORD_SIZE);
    window.waiting_first = records_wait() ? std::min(window.waiting_first, index) : index;
    window.waiting_end = std::max(window.waiting_end, index + 1);
    return 1;
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

}  // namespace

void reset_records() {
    child[0].current_segment = 0;
    child[0].segment_count = 1;
    std::fill(std::begin(segment_table), std::end(segment_table), NO_SEGMENT);
    empty_window();
}

void drop_record_window() {
    empty_window();
}

int32_t segment_rows(int segment) {
    const int32_t behind = segment == child[0].segment_count - 1 ? child[0].last_file_row + 1
                                                                 : segment_table[segment + 1].first_row;
    return behind > segment_table[segment].first_row ? behind - segment_table[segment].first_row : 0;
}

void build_segment_path() {
    const int segment = child[0].current_segment;
    if (segment_table[segment].file_name[0] == '\0')
        choose_free_name(segment_table[segment].file_name, sizeof segment_table[segment].file_name);
    segment_file_path(segment_table[segment], child[0].segment_path);
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
    if (!records_wait())
        empty_window();
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
    uint8_t bytes[ROW_RECORD_SIZE];
    if (place == nullptr && records_wait()) {
        const FileHandle file = segment_table[child[0].current_segment].handle;
        place = file_read_at(file, offset, bytes, sizeof bytes) == sizeof bytes ? bytes : nullptr;
    }
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
    if (batch_running && row <= child[0].last_file_row)
        return hold_record(static_cast<int32_t>(offset / ROW_RECORD_SIZE), bytes);
    if (!write_back_records() ||
        !file_write_at(segment_table[child[0].current_segment].handle, offset, bytes, sizeof bytes))
        return 0;
    uint8_t* place = window_place(static_cast<int32_t>(offset / ROW_RECORD_SIZE));
    if (place != nullptr)
        std::memcpy(place, bytes, sizeof bytes);
    else if (row > child[0].last_file_row)
        empty_window();  // the segment has grown past what the window knows
    return 1;
}

void begin_record_batch() {
    batch_running = true;
}

int end_record_batch(int32_t* last_row, char* path) {
    batch_running = false;
    if (write_back_records())
        return 1;
    const SegmentEntry& entry = segment_table[window.segment];
    *last_row = entry.first_row + window.waiting_end - 1 - static_cast<int32_t>(entry.base / ROW_RECORD_SIZE);
    segment_file_path(entry, path);
    return 0;
}

}  // namespace hexlane
