#include "compare/results_walk.h"

#include <algorithm>

namespace hexlane {

namespace {

constexpr int32_t FOUND_MARGIN = 3;  // lines between a find and the edge of its page

int32_t scroll_position_of(const ResultsWalk& walk, int64_t top) {
    const double unit = walk.scroll_scale > 1.0f ? static_cast<double>(walk.scroll_scale) : walk.list_rows;
    return static_cast<int32_t>(std::clamp<double>(static_cast<double>(top) / unit, 0.0, walk.scroll_max));
}

void move_thumb(ResultsWalk* walk, int32_t step) {
    walk->scroll_pos = std::clamp(walk->scroll_pos + step, 0, walk->scroll_max);
}

// The page begins at `top`; the highlight keeps its line as far as there are records.
void show_page(ResultsWalk* walk, int64_t top) {
    walk->current_record = top + walk->cursor_line;
    const int64_t excess = walk->current_record - walk->last_record;
    if (excess > 0) {
        walk->current_record -= excess;
        walk->cursor_line -= static_cast<int32_t>(excess);
    }
}

void put_highlight(ResultsWalk* walk, int64_t record, int32_t line) {
    walk->current_record = record;
    walk->cursor_line = line;
}

bool is_on_page(const ResultsWalk& walk, int64_t record) {
    return record >= top_record(walk) && record <= top_record(walk) + walk.list_rows;
}

void thumb_follows_lines(ResultsWalk* walk) {
    if (top_record(*walk) % walk->list_rows == 0)
        walk->scroll_pos = scroll_position_of(*walk, top_record(*walk));
}

}  // namespace

void begin_walk(ResultsWalk* walk, int64_t last_record, int32_t list_rows) {
    *walk = {last_record, 0, 0, list_rows, -1, 0, 0, 1.0f};
    if (last_record / list_rows > LONGEST_SCROLL_RANGE) {
        walk->scroll_max = LONGEST_SCROLL_RANGE;
        walk->scroll_scale = static_cast<float>(static_cast<double>(last_record) / LONGEST_SCROLL_RANGE);
    } else {
        walk->scroll_max = static_cast<int32_t>(last_record / list_rows);
    }
}

int64_t top_record(const ResultsWalk& walk) {
    return walk.current_record - walk.cursor_line;
}

void walk_home(ResultsWalk* walk) {
    put_highlight(walk, 0, 0);
    walk->scroll_pos = 0;
}

void walk_end(ResultsWalk* walk) {
    put_highlight(walk, walk->last_record,
                  static_cast<int32_t>(std::min<int64_t>(walk->list_rows, walk->last_record)));
    walk->scroll_pos = walk->scroll_max;
}

// A second press at the top takes the highlight to the first line.
void walk_page_up(ResultsWalk* walk) {
    const int64_t above = top_record(*walk) - walk->list_rows;
    const int64_t top = above <= 1 ? 0 : above - 1;
    if (top == walk->last_page_top)
        walk->cursor_line = 0;
    show_page(walk, top);
    walk->last_page_top = top;
    move_thumb(walk, -1);
}

void walk_page_down(ResultsWalk* walk) {
    if (walk->list_rows >= walk->last_record)
        return;
    const int64_t top =
        std::min(top_record(*walk) + walk->list_rows + 1, walk->last_record - walk->list_rows + 1);
    show_page(walk, top);
    walk->last_page_top = top;
    move_thumb(walk, 1);
}

void walk_up(ResultsWalk* walk) {
    if (walk->current_record > 0)
        put_highlight(walk, walk->current_record - 1, std::max(walk->cursor_line - 1, 0));
}

void walk_down(ResultsWalk* walk) {
    if (walk->current_record < walk->last_record)
        put_highlight(walk, walk->current_record + 1, std::min(walk->cursor_line + 1, walk->list_rows));
}

void walk_line_up(ResultsWalk* walk) {
    walk_up(walk);
    thumb_follows_lines(walk);
}

void walk_line_down(ResultsWalk* walk) {
    walk_down(walk);
    thumb_follows_lines(walk);
}

void walk_to_thumb(ResultsWalk* walk, int32_t position) {
    walk->scroll_pos = std::clamp(position, 0, walk->scroll_max);
    const double unit = walk->scroll_scale > 1.0f ? static_cast<double>(walk->scroll_scale) : walk->list_rows;
    show_page(walk, std::min(static_cast<int64_t>(walk->scroll_pos * unit), walk->last_record));
}

void walk_forward_to(ResultsWalk* walk, int64_t record) {
    const int32_t line = is_on_page(*walk, record) ? static_cast<int32_t>(record - top_record(*walk))
                                                   : std::min(FOUND_MARGIN, walk->list_rows);
    put_highlight(walk, record, line);
    walk->scroll_pos = scroll_position_of(*walk, top_record(*walk));
}

void walk_backward_to(ResultsWalk* walk, int64_t record) {
    int32_t line = 0;
    if (is_on_page(*walk, record))
        line = static_cast<int32_t>(record - top_record(*walk));
    else if (record - walk->list_rows - FOUND_MARGIN >= 0)
        line = std::max(walk->list_rows - FOUND_MARGIN, 0);
    put_highlight(walk, record, line);
    walk->scroll_pos = scroll_position_of(*walk, top_record(*walk));
}

}  // namespace hexlane
