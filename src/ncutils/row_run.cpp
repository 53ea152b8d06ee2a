#include "ncutils/row_run.h"

#include <algorithm>
#include <cstring>

#include "ncutils/ncutils_texts.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "store/row_table.h"
#include "store/store_fault.h"

namespace hexlane {

using namespace platform;

RowRange row_range() {
    if (block.start.row < 0)
        return {0, program_end_row()};
    if (block.end.row < 0)
        return {block.start.row, 0};
    const int32_t last = std::max(block.start.row, block.end.row);
    return {std::min(block.start.row, block.end.row), std::min(last, child[0].last_file_row) + 1};
}

int begin_run(RowRun* run) {
    if (!edits_allowed()) {
        message_beep(BoxIcon::EXCLAMATION);
        return 0;
    }
    const RowRange range = row_range();
    *run = {range, range.run_first - 1, 0, -1, false, false};
    begin_row_batch();
    return 1;
}

bool next_row(RowRun* run) {
    if (run->stopped || run->row + 1 >= run->range.run_end)
        return false;
    run->row++;
    if (run->row % ROW_COUNT_STEP == 0)
        show_row_count(run->row - 1);
    run->stopped = !fetch_row(run->row);
    return !run->stopped;
}

void store_row(RowRun* run, const char* text) {
    const std::size_t length = strnlen(text, sizeof child[0].row_text - 1);
    std::memcpy(child[0].row_text, text, length);
    std::memset(child[0].row_text + length, 0, sizeof child[0].row_text - length);
    child[0].modified = 1;
    run->stopped = !commit_row(run->row);
}

void leave_row(RowRun* run) {
    if (run->left++ == 0)
        run->first_left = run->row;
}

// What could not be written out at the end is told by the store; the rows themselves are done.
void end_run(const RowRun* run) {
    end_row_batch();
    show_row_count(run->range.run_end - 1);
}

void tell_run(const RowRun& run) {
    char count[12];
    char row[12];
    if (run.left > 0) {
        format_text(count, sizeof count, "%d", run.left);
        format_text(row, sizeof row, "%d", run.first_left + 1);
        show_ncutils_box(run.refused ? NcUtilsBox::NOT_CONVERTED : NcUtilsBox::ROWS_LEFT, count, row);
    }
    if (run.stopped) {
        format_text(row, sizeof row, "%d", run.row + 1);
        show_ncutils_box(run.refused ? NcUtilsBox::LOOK_STOPPED : NcUtilsBox::RUN_STOPPED, row);
    }
}

}  // namespace hexlane
