#include "store/segment_rewrite.h"

#include <algorithm>

#include "platform/text.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/temp_names.h"
#include "store/copy_buffer.h"
#include "store/row_record_format.h"
#include "store/row_records.h"
#include "store/row_table.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int32_t BUFFER_RECORDS = COPY_BUFFER_SIZE / ROW_RECORD_SIZE;

int write_blanks(FileHandle file, int64_t position, int32_t count) {
    const int32_t prepared = std::min(count, BUFFER_RECORDS);
    for (int32_t i = 0; i < prepared; i++)
        put_row_record(copy_buffer + i * ROW_RECORD_SIZE, 0, ORIGIN_BLANK);
    while (count > 0) {
        const int32_t now = std::min(count, prepared);
        if (!file_write_at(file, position, copy_buffer, static_cast<std::size_t>(now) * ROW_RECORD_SIZE))
            return 0;
        position += static_cast<int64_t>(now) * ROW_RECORD_SIZE;
        count -= now;
    }
    return 1;
}

int copy_records(FileHandle from, int64_t from_position, FileHandle to, int64_t to_position, int64_t count) {
    constexpr int64_t PIECE = static_cast<int64_t>(BUFFER_RECORDS) * ROW_RECORD_SIZE;
    while (count > 0) {
        const int64_t now = std::min(count, PIECE);
        if (file_read_at(from, from_position, copy_buffer, static_cast<std::size_t>(now)) != now ||
            !file_write_at(to, to_position, copy_buffer, static_cast<std::size_t>(now)))
            return 0;
        from_position += now;
        to_position += now;
        count -= now;
    }
    return 1;
}

// `head` and `tail` are places in the segment, in bytes: what is copied ends at the one and goes on at the
// other.
int fill_work_file(FileHandle work, const SegmentEntry& old, int64_t head, int64_t tail, int64_t old_size,
                   int32_t blanks) {
    const int64_t blank_bytes = static_cast<int64_t>(blanks) * ROW_RECORD_SIZE;
    return copy_records(old.handle, old.base, work, 0, head) && write_blanks(work, head, blanks) &&
           copy_records(old.handle, old.base + tail, work, head + blank_bytes, old_size - tail);
}

}  // namespace

int rewrite_segment(int segment, int32_t index, int32_t skipped, int32_t blanks) {
    child[0].current_segment = static_cast<int16_t>(segment);
    SegmentEntry& entry = segment_table[segment];
    if (!entry.is_open && !open_segment(false))
        return 0;
    const int64_t old_size = static_cast<int64_t>(segment_rows(segment)) * ROW_RECORD_SIZE;
    const int64_t head = static_cast<int64_t>(index) * ROW_RECORD_SIZE;
    const int64_t tail = std::min(old_size, head + static_cast<int64_t>(skipped) * ROW_RECORD_SIZE);
    char work_path[PATH_SIZE];
    FileHandle work = create_work_file(directories.temp_dir, work_path);
    if (work == NO_FILE)
        return 0;
    const SegmentEntry old = entry;
    if (entry.shares_file)
        choose_free_name(segment_table[segment].file_name, sizeof segment_table[segment].file_name);
    build_segment_path();
    if (!fill_work_file(work, old, head, tail, old_size, blanks) ||
        !rename_file(work_path, child[0].segment_path)) {
        const FileError reason = last_file_error();
        entry = old;
        file_close(work);
        delete_file(work_path);
        set_last_file_error(reason);
        return 0;
    }
    file_close(entry.handle);
    entry.handle = work;
    entry.shares_file = 0;
    entry.base = 0;
    forget_cached_rows();
    return 1;
}

void shift_rows_behind(int segment, int32_t change) {
    for (int later = segment + 1; later < child[0].segment_count; later++)
        segment_table[later].first_row += change;
    set_last_file_row(std::max(child[0].last_file_row + change, 0));
    forget_cached_rows();
}

int append_blank_records(int32_t count) {
    const int last = child[0].segment_count - 1;
    child[0].current_segment = static_cast<int16_t>(last);
    if (!segment_table[last].is_open && !open_segment(false))
        return 0;
    const int64_t end = segment_table[last].base + static_cast<int64_t>(segment_rows(last)) * ROW_RECORD_SIZE;
    if (!write_blanks(segment_table[last].handle, end, count)) {
        const FileError reason = last_file_error();
        (void)file_resize(segment_table[last].handle,
                          end);  // what was written stands behind the table's rows
        set_last_file_error(reason);
        return 0;
    }
    set_last_file_row(child[0].last_file_row + count);
    forget_cached_rows();
    return 1;
}

}  // namespace hexlane
