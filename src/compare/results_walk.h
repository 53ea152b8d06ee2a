// results_walk.h: where the highlight and the page of the results screen stand, and every move of them. Pure
// numbers over the list of records; the drawing is in results_screen.cpp. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// One results screen; wiped by begin_walk. The page shows list_rows + 1 records from current_record -
// cursor_line on.
struct ResultsWalk {
    int64_t last_record;
    int64_t current_record;  // the highlighted one
    int32_t cursor_line;     // line of the highlight, from 0
    int32_t list_rows;       // number of the last line
    int64_t last_page_top;   // first record of the page as Page Up or Page Down left it, -1 before that
    int32_t scroll_max;
    int32_t scroll_pos;
    float
        scroll_scale;  // records for each scroll unit in very long lists, else 1.0: then a unit is list_rows
};

constexpr int32_t LONGEST_SCROLL_RANGE = 30000;

void begin_walk(ResultsWalk* walk, int64_t last_record, int32_t list_rows);
int64_t top_record(const ResultsWalk& walk);

// Each leaves the highlight on a record and on a line of the page.
void walk_home(ResultsWalk* walk);
void walk_end(ResultsWalk* walk);
void walk_page_up(ResultsWalk* walk);
void walk_page_down(ResultsWalk* walk);
void walk_up(ResultsWalk* walk);
void walk_down(ResultsWalk* walk);
void walk_line_up(ResultsWalk* walk);  // by the scroll bar, whose thumb follows
void walk_line_down(ResultsWalk* walk);
void walk_to_thumb(ResultsWalk* walk, int32_t position);

// To the record that a search has found: three lines below the top or above the bottom of a new page, if it
// is not on show.
void walk_forward_to(ResultsWalk* walk, int64_t record);
void walk_backward_to(ResultsWalk* walk, int64_t record);

}  // namespace hexlane
