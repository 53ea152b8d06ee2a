// row_bytes.cpp: where the bytes of a row stand, in the active file or in the change file, and appending a
// row's text with the bytes that nobody saw.

#include "store/row_bytes.h"
#include <algorithm>

#include <cstring>

#include "platform/text_stream.h"
#include "shell/child.h"
#include "store/copy_buffer.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/store_fault.h"

namespace hexlane {

using namespace platform;

uint8_t copy_buffer[COPY_BUFFER_SIZE];

namespace {

const char* failed_file = "";  // see failed_store_file

StreamHandle stream_of(char origin) {
    return origin == ORIGIN_FILE ? child[0].file_stream : child[0].change_stream;
}

// How many bytes of a stored row a fetch brings into row_text, or -1 when it cannot be read. `whole` takes
// whether the row ends there.
int32_t bytes_shown(const RowRecord& record, bool* whole) {
    char text[ROW_FETCH_MAX + 1];
    const LineRead line = stream_read_line(stream_of(record.origin), record.position, text, ROW_FETCH_MAX);
    if (line.end == LineEnd::FAILED)
        return -1;
    const std::size_t length = std::strlen(text);
    *whole =
        length < static_cast<std::size_t>(line.length) || line.end == LineEnd::LF || line.end == LineEnd::END;
    return static_cast<int32_t>(length);
}

// take_row_bytes without the mark on the store.
int32_t read_span(RowSpan* span, void* bytes, std::size_t size) {
    const auto wanted = std::min(size, static_cast<std::size_t>(span->length));
    const int64_t length = stream_read_raw(stream_of(span->origin), span->position, bytes, wanted);
    if (length == 0)
        set_last_file_error(FileError::IO);  // the row has become shorter under us
    if (length <= 0)
        return -1;
    span->position += length;
    span->length -= length;
    return static_cast<int32_t>(length);
}

int append_rest(RowSpan rest) {
    while (rest.length > 0) {
        const int32_t length = read_span(&rest, copy_buffer, COPY_BUFFER_SIZE);
        if (length < 0 || !stream_append(child[0].change_stream, reinterpret_cast<const char*>(copy_buffer),
                                         static_cast<std::size_t>(length)))
            return 0;
    }
    return 1;
}

}  // namespace

int row_span(const RowRecord& record, RowSpan* span) {
    *span = {record.origin, record.position, 0, -1, record.position};
    if (record.origin == ORIGIN_BLANK)
        return 1;
    const StreamHandle stream = stream_of(record.origin);
    const int64_t end = stream_find_row_end(stream, record.position, &span->had_line_end);
    if (end < 0)
        return 0;
    span->length = end - record.position;
    span->next = span->had_line_end < 0 ? end : end + 1;
    if (span->had_line_end == '\n' && span->length > 0) {
        char before = '\0';
        if (stream_read_raw(stream, end - 1, &before, 1) != 1)
            return 0;
        if (before == '\r')
            span->length--;
    }
    return 1;
}

int unseen_rest(const RowRecord& record, int32_t shown, RowSpan* rest) {
    *rest = {record.origin, record.position, 0, -1, record.position};
    if (record.origin == ORIGIN_BLANK)
        return 1;
    if (shown == SHOWN_BY_FETCH) {
        bool whole = false;
        shown = bytes_shown(record, &whole);
        if (shown < 0)
            return 0;
        if (whole)
            return 1;
    }
    if (!row_span(record, rest))
        return 0;
    rest->position += shown;
    rest->length = rest->length > shown ? rest->length - shown : 0;
    return 1;
}

int32_t take_row_bytes(RowSpan* span, void* bytes, std::size_t size) {
    const int32_t length = read_span(span, bytes, size);
    if (length < 0)
        raise_store_fault(span->origin == ORIGIN_FILE ? child[0].file_path : child[0].change_path);
    return length;
}

bool row_is_empty(int32_t row) {
    if (row == unsaved_row.row)
        return unsaved_row.text[0] == '\0';
    RowRecord record;
    RowSpan span;
    return read_record(row, &record) && row_span(record, &span) && span.length == 0;
}

int32_t program_end_row() {
    const int32_t last = child[0].last_file_row;
    return row_is_empty(last) ? last : last + 1;
}

const char* failed_store_file() {
    return failed_file;
}

int store_row_text(int32_t row, const char* text, const RowSpan* rest) {
    const int64_t start = stream_end(child[0].change_stream);
    const std::size_t length = std::strlen(text);
    failed_file = child[0].change_path;
    const int64_t rest_length = rest == nullptr ? 0 : rest->length;
    if (start + static_cast<int64_t>(length) + rest_length + 2 > CHANGE_FILE_LIMIT) {
        set_last_file_error(FileError::TOO_LARGE);
        return 0;
    }
    const RowRecord record = {static_cast<uint32_t>(start), ORIGIN_CHANGE};
    if (stream_append(child[0].change_stream, text, length) && (rest_length == 0 || append_rest(*rest)) &&
        stream_append(child[0].change_stream, "\n", 1)) {
        if (write_record(row, record))
            return 1;
        failed_file = child[0].segment_path;
    }
    const FileError reason = last_file_error();
    stream_rewind_to(child[0].change_stream, start);
    set_last_file_error(reason);
    return 0;
}

}  // namespace hexlane
