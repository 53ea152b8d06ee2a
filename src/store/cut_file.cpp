#include "store/cut_file.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"
#include "platform/text_stream.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/status_line.h"
#include "shell/temp_names.h"
#include "store/row_bytes.h"
#include "store/row_edits.h"
#include "store/row_record_format.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/segment_rewrite.h"
#include "store/store_fault.h"

namespace hexlane {

using namespace platform;

namespace {

// Records on their way into the file or out of it.
uint8_t records[SEGMENT_WINDOW_ROWS * ROW_RECORD_SIZE];

constexpr int64_t record_bytes(int32_t count) {
    return static_cast<int64_t>(count) * ROW_RECORD_SIZE;
}

void cut_file_path(char path[PATH_SIZE]) {
    format_text(path, PATH_SIZE, "%s/%sCUT.INX", directories.temp_dir, directories.temp_prefix);
}

// ---- Into the file -----------------------------------------------------------------------------------

int write_records(FileHandle file, int32_t row, int32_t count) {
    for (int32_t done = 0; done < count;) {
        const int32_t now = std::min(count - done, SEGMENT_WINDOW_ROWS);
        for (int32_t i = 0; i < now; i++) {
            RowRecord record;
            if (!read_record(row + done + i, &record))
                return 0;
            put_row_record(records + record_bytes(i), record.position, record.origin);
        }
        if (!file_write_at(file, record_bytes(done), records, static_cast<std::size_t>(record_bytes(now))))
            return 0;
        done += now;
    }
    return 1;
}

// ---- Out of the file ---------------------------------------------------------------------------------

// One row's text where a record says that it stands: `text` is what a fetch would show of it, `rest` what
// stands behind that.
int read_recorded_text(const RowRecord& record, char text[ROW_FETCH_MAX + 1], RowSpan* rest) {
    text[0] = '\0';
    *rest = {ORIGIN_BLANK, 0, 0, -1, 0};
    if (record.origin == ORIGIN_BLANK)
        return 1;
    const StreamHandle stream = record.origin == ORIGIN_FILE ? child[0].file_stream : child[0].change_stream;
    const LineRead line = stream_read_line(stream, record.position, text, ROW_FETCH_MAX);
    if (line.end == LineEnd::FAILED)
        return 0;
    const auto shown = static_cast<int32_t>(std::strlen(text));
    const bool whole = shown < line.length || line.end == LineEnd::LF || line.end == LineEnd::END;
    return whole || unseen_rest(record, shown, rest);
}

int paste_record(const RowRecord& record, int32_t row) {
    char text[ROW_FETCH_MAX + 1];
    RowSpan rest;
    return read_recorded_text(record, text, &rest) && store_row_text(row, text, &rest);
}

// Gives 1; 0 on failure, and then `failed` takes the file that is to blame.
int fill_rows(FileHandle file, int32_t row, int32_t count, const char** failed) {
    for (int32_t done = 0; done < count; done++) {
        const int32_t index = done % SEGMENT_WINDOW_ROWS;
        const auto wanted = record_bytes(std::min(count - done, SEGMENT_WINDOW_ROWS));
        if (index == 0 &&
            file_read_at(file, record_bytes(done), records, static_cast<std::size_t>(wanted)) != wanted)
            return 0;
        if (!paste_record(get_row_record(records + record_bytes(index)), row + done)) {
            *failed = child[0].change_path;
            return 0;
        }
        if (done % ROW_COUNT_STEP == 0)
            show_row_count(row + done);
    }
    return 1;
}

// Takes `count` pasted rows out again. They let go of their texts before the change file is cut back, so that
// no record can point at what comes there later, even if the rows stay; and it is cut back before the rows
// go, since on a full disk that makes the room that the segment's new file needs.
void take_rows_back(int32_t row, int32_t count, int64_t change_end) {
    const FileError reason = last_file_error();
    int let_go = 1;
    for (int32_t i = 0; i < count && let_go; i++)
        let_go = write_record(row + i, {0, ORIGIN_BLANK});
    if (let_go)
        stream_rewind_to(child[0].change_stream, change_end);
    if (cut_rows(row, count))
        set_last_file_error(reason);
    forget_cached_rows();
}

int insert_rows_of(FileHandle file, int32_t row, int32_t count, const char* path) {
    RowRecord before;
    if (!read_record(row, &before))
        return fail_edit(child[0].segment_path);
    const int64_t change_end = stream_end(child[0].change_stream);
    const int32_t behind = child[0].last_file_row + 1;
    const bool appended = row + 1 == behind && row_is_empty(row);  // then the new rows come behind it
    if (!insert_blank_rows(row, count))
        return 0;
    const char* failed = path;
    begin_row_batch();
    const int filled = fill_rows(file, row, count, &failed);
    const FileError reason = last_file_error();
    const int written = end_row_batch();
    if (filled || !written)
        return filled;
    set_last_file_error(reason);
    if (!appended)
        take_rows_back(row, count, change_end);
    else if (write_record(row, before))
        take_rows_back(behind, count, change_end);
    return fail_edit(failed);
}

}  // namespace

int copy_rows_to_cut_file(int32_t row, int32_t count) {
    char path[PATH_SIZE];
    char work_path[PATH_SIZE];
    cut_file_path(path);
    const FileHandle work = create_work_file(directories.temp_dir, work_path);
    if (work == NO_FILE)
        return fail_edit(path);
    const int written = write_records(work, row, count);
    const FileError reason = last_file_error();
    const int closed = file_close(work);
    if (written && closed && rename_file(work_path, path))
        return 1;
    if (!written)
        set_last_file_error(reason);
    fail_edit(path);
    delete_file(work_path);
    return 0;
}

int paste_rows_from_cut_file(int32_t row, int32_t count) {
    char path[PATH_SIZE];
    cut_file_path(path);
    const FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE)
        return fail_edit(path);
    const int64_t size = file_size(file);
    if (size >= 0 && size < record_bytes(count))
        set_last_file_error(FileError::IO);  // somebody has cut it short
    const int pasted = size < record_bytes(count) ? fail_edit(path) : insert_rows_of(file, row, count, path);
    file_close(file);
    return pasted;
}

}  // namespace hexlane
