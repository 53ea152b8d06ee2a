#include "ncutils/utilities.h"

#include <cstring>

#include "frame/child.h"
#include "frame/status_line.h"
#include "ncutils/line_numbers.h"
#include "platform/text_stream.h"
#include "store/row_table.h"

namespace hexlane {

using namespace platform;

namespace {

// Whether the number at the end of what row_text shows goes on in the bytes that it does not show. Then it
// must not be computed with: half of it stands there.
bool number_goes_on(int32_t row) {
    if (std::strlen(child[0].row_text) < ROW_FETCH_MAX)
        return false;
    RowRecord record;
    RowSpan rest;
    char next[2] = "";
    if (!read_record(row, &record) || !unseen_rest(record, SHOWN_BY_FETCH, &rest) || rest.length == 0)
        return false;
    const StreamHandle stream = rest.origin == ORIGIN_FILE ? child[0].file_stream : child[0].change_stream;
    return stream_read_raw(stream, rest.position, next, 1) == 1 && number_token_length(next) > 0;
}

}  // namespace

int renumber_rows(int16_t increment, int32_t start, bool number_unnumbered, int32_t limit, int digits,
                  RowRun* run) {
    if (!begin_run(run))
        return 0;
    show_status(STATUS_RENUMBERING);
    Numbering numbering = {start, increment, digits, limit, number_unnumbered, static_cast<uint32_t>(start)};
    char text[ROW_BUFFER_SIZE];
    while (next_row(run)) {
        const NumberedRow result = renumber_row_text(&numbering, child[0].row_text, text, sizeof text);
        if (result == NumberedRow::NUMBERED)
            store_row(run, text);
        else if (result == NumberedRow::TOO_LONG)
            leave_row(run);
    }
    end_run(run);
    return 1;
}

int strip_line_numbers(RowRun* run) {
    if (!begin_run(run))
        return 0;
    show_status(STATUS_STRIPPING);
    char text[ROW_BUFFER_SIZE];
    while (next_row(run)) {
        // An empty end row that were stored would come out as one more row of the file.
        if (run->row == child[0].last_file_row && row_is_empty(run->row))
            continue;
        strip_row_text(child[0].row_text, text);
        store_row(run, text);
    }
    end_run(run);
    return 1;
}

int run_over_words(WordRun* words, int status, RowRun* run) {
    if (!begin_run(run))
        return 0;
    show_status(status);
    char text[ROW_BUFFER_SIZE];
    while (next_row(run)) {
        const RewrittenRow row = rewrite_words(words, child[0].row_text, text, sizeof text);
        if (row.words == 0)
            continue;
        if (row.length < 0 || (row.ends_in_number && number_goes_on(run->row)))
            leave_row(run);
        else
            store_row(run, text);
    }
    end_run(run);
    show_status(STATUS_BLANK);
    return 1;
}

}  // namespace hexlane
