// row_run.h: the walk of a utility over the rows of the block or of the whole document. Main thread only.
// A run shows its row count, stops at the first row that cannot be read or stored, and counts the rows that
// can't be done. It owns row_text while it lasts.
//
//   RowRun run;
//   if (begin_run(&run)) {
//       while (next_row(&run)) ...store_row or leave_row, or neither
//       end_run(&run);
//   }
#pragma once

#include <cstdint>

namespace hexlane {

struct RowRange {
    int32_t run_first;
    int32_t run_end;  // the row behind the last one
};

struct RowRun {
    RowRange range;
    int32_t row;         // the row in row_text
    int32_t left;        // rows that could not be done and stay as they were
    int32_t first_left;  // the first of them, -1 for none
    bool stopped;        // at `row`, which could not be read or stored
    bool refused;        // the run has only looked, at rows that it would have left: nothing has changed
};

// The rows of the block, those at its ends too; without a block all but the empty end row. A block inside one
// row holds none.
RowRange row_range();

// Gives 1; 0 after a beep when the store takes no edits at present.
int begin_run(RowRun* run);

// Fetches the next row into row_text. False behind the last one, and when the run has stopped.
bool next_row(RowRun* run);

// Commits `text` as the row's new text and sets `modified`.
void store_row(RowRun* run, const char* text);

// Counts the row as one that stays as it was.
void leave_row(RowRun* run);

void end_run(const RowRun* run);

// Tells, in one box each, of rows that were left, or would have been, and of a run that has stopped.
void tell_run(const RowRun& run);

}  // namespace hexlane
