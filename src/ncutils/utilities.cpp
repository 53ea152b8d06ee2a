#include "ncutils/utilities.h"

#include "ncutils/line_numbers.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "store/row_bytes.h"
#include "store/row_table.h"

namespace hexlane {

namespace {

// Whether the row in row_text has a chosen word in the bytes that it does not show, or a number that goes on
// there. No such row may be rewritten: only a part of its words would be. Gives -1 when it can't be read.
int has_unseen_words(int32_t row, RewrittenRow shown, LetterSet letters) {
    RowSpan rest;
    if (!fetched_rest(row, &rest))
        return -1;
    while (rest.length > 0) {
        char piece[ROW_BUFFER_SIZE];
        const int32_t length = take_row_bytes(&rest, piece, sizeof piece);
        if (length < 0)
            return -1;
        if (words_go_on(&shown, letters, piece, length))
            return 1;
    }
    return 0;
}

// One pass over the rows. It only looks unless `stores` is set.
void pass_over_words(WordRun* words, RowRun* run, bool stores) {
    char text[ROW_BUFFER_SIZE];
    while (next_row(run)) {
        const RewrittenRow row = rewrite_words(words, child[0].row_text, text, sizeof text);
        const int unseen = has_unseen_words(run->row, row, words->letters);
        if (unseen < 0)
            run->stopped = true;
        else if (row.length < 0 || unseen > 0)
            leave_row(run);
        else if (row.words > 0 && stores)
            store_row(run, text);
    }
}

// A conversion carries positions from row to row: with one row left as it was, all rows behind it would lead
// to wrong places. So it looks first whether all rows can be done.
bool can_convert_all(WordRun words, RowRun* run) {
    const bool carries =
        words.arithmetic == increment_from_absolute || words.arithmetic == absolute_from_increment;
    if (!carries)
        return true;
    pass_over_words(&words, run, false);
    run->refused = run->stopped || run->left > 0;
    if (!run->refused)
        run->row = run->range.run_first - 1;
    return !run->refused;
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
    if (can_convert_all(*words, run))
        pass_over_words(words, run, true);
    end_run(run);
    show_status(STATUS_BLANK);
    return 1;
}

}  // namespace hexlane
