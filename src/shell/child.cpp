#include "shell/child.h"

namespace hexlane {

Child child[1];
int16_t row_had_lf = 0;

void reset_child() {
    child[0] = Child{};
    child[0].vscroll_scale = 1.0F;
    child[0].window_cols = 1;
    child[0].window_rows = 1;
    child[0].segment_count = 1;
    child[0].pending_row = -1;
    child[0].char_width = platform::CELL_WIDTH;
    child[0].char_height = platform::CELL_HEIGHT;
    child[0].file_stream = platform::NO_STREAM;
    child[0].change_stream = platform::NO_STREAM;
    row_had_lf = 0;
}

}  // namespace hexlane
