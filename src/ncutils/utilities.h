// utilities.h: the NC utilities as runs over the rows of the block or of the document. Each shows its status
// message and its row count, and gives what is left to be told (tell_run). A run holds one row in memory and
// cannot be stopped by the user. Main thread only; the caller puts the hourglass up.
#pragma once

#include "ncutils/address_words.h"
#include "ncutils/row_run.h"

#include <cstdint>

namespace hexlane {

// All give 1; 0 after a beep when the store takes no edits at present, and then nothing has happened.

// Numbers from `start` in steps of `increment`, with zeros in front up to `digits`; beyond a `limit` above 0
// from `start` again. Rows without a number get one if `number_unnumbered` is set. Sets `modified` with the
// first row that it changes.
int renumber_rows(int16_t increment, int32_t start, bool number_unnumbered, int32_t limit, int digits,
                  RowRun* run);

// Commits every row of the run but an empty end row, and sets `modified` with the first.
int strip_line_numbers(RowRun* run);

// Scale, shift and the two conversions, as `words` says: rewrites the rows that hold a chosen letter outside
// of a comment, under the status message of number `status`. `modified` is set with the first of them; the
// views set it in any case but a refusal: a conversion is refused when any of its rows would be left.
int run_over_words(WordRun* words, int status, RowRun* run);

}  // namespace hexlane
