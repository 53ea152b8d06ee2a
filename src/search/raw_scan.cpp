// raw_scan.cpp: passing over rows that hold no match, by a look at the raw bytes of the active file.
// A row of origin 'O' whose successor is 'O' too ends where that one begins; if no match lies in front of
// that place, the row has none. A match can't go over a row's end: no text that is searched for holds a line
// end or a NUL. So only rows that may hold a match, and rows that were changed, are fetched and compared.

#include "platform/text_stream.h"
#include "search/matching.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "store/row_records.h"
#include "store/store_fault.h"

#include <algorithm>
#include <limits>

namespace hexlane {

using namespace platform;

namespace {

constexpr int64_t STRETCH = 1 << 16;  // bytes read at a time

char stretch[STRETCH];

// Brings the bytes from raw position `from` on into memory and begins to search them. Gives 0 when they could
// not be read.
int load_stretch(RawScan* scan, const SearchPattern& pattern, int64_t from) {
    scan->length = stream_read_raw(child[0].file_stream, from, stretch, sizeof stretch);
    const bool readable = scan->length >= 0;
    if (!readable)
        scan->length = 0;
    scan->start = scan->searched = from;
    const int64_t starts =
        std::max<int64_t>(scan->length - pattern.length + 1, 0);  // places where one may begin
    const char* first = stretch + pattern.rarest;
    scan->places = begin_places(first, first + starts, pattern.bytes[pattern.rarest]);
    return readable;
}

// Raw position of the first match at or behind `from`; a place behind the file's end when there is none, -1
// when it could not be read. What is in memory is searched on from where the last match was found.
int64_t find_raw_match(RawScan* scan, const SearchPattern& pattern, int64_t from) {
    for (;;) {
        const bool in_memory = from >= scan->searched && from + pattern.length <= scan->start + scan->length;
        if (!in_memory && !load_stretch(scan, pattern, from))
            return -1;
        while (const char* place = next_place(&scan->places)) {
            const int64_t position = scan->start + (place - stretch) - pattern.rarest;
            scan->searched = position + 1;
            if (position >= from && stands_at(place - pattern.rarest, pattern))
                return position;
        }
        if (scan->length < STRETCH)
            return std::numeric_limits<int64_t>::max();
        from = scan->start + scan->length - (pattern.length - 1);
    }
}

// Whether the unchanged row at raw position `position`, which ends in front of `end`, holds no match.
bool row_is_clean(RawScan* scan, const SearchPattern& pattern, int64_t position, int64_t end) {
    if (position < scan->clean_from || position > scan->clean_to) {
        scan->clean_from = position;
        scan->clean_to = find_raw_match(scan, pattern, position);
    }
    return end <= scan->clean_to;
}

}  // namespace

void begin_scan(RawScan* scan) {
    *scan = {0, -1, 0, 0, 0, {}};
}

int32_t next_row_to_search(RawScan* scan, const SearchPattern& pattern, int32_t row, int32_t last) {
    RowRecord record = {0, ORIGIN_BLANK};
    RowRecord next = {0, ORIGIN_BLANK};
    if (row > last || !read_record(row, &record))
        return row;
    for (; row <= last; ++row, record = next) {
        if (row % ROW_COUNT_STEP == 0)
            show_row_count(row);
        if (row == unsaved_row.row || row == child[0].last_file_row || !read_record(row + 1, &next))
            return row;
        if (pattern.length == 0 || record.origin == ORIGIN_BLANK)
            continue;
        if (record.origin != ORIGIN_FILE || next.origin != ORIGIN_FILE ||
            !row_is_clean(scan, pattern, record.position, next.position))
            return row;
    }
    return row;
}

}  // namespace hexlane
