// scrolling.cpp: what the scroll bars and the mouse wheel ask for.

#include "edit/editing_internal.h"
#include "edit/mouse.h"
#include "platform/keys.h"
#include "platform/messages.h"
#include "platform/surface.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "store/row_table.h"
#include "view/text_view.h"

#include <algorithm>
#include <iterator>

namespace hexlane {
namespace {

constexpr int32_t LINE_COLUMNS = 16;     // cells of a sideways line step
constexpr int32_t HIGHEST_COLUMN = 251;  // no line step goes further right

// At the start of a page the bar shows the view's page and not the caret's.
void show_scrolled() {
    show_caret_place();
    if (top_row() % child[0].window_rows == 0)
        child[0].vscroll_pos = scroll_position_of(top_row());
    platform::set_scroll_position(child[0].main_window, child[0].vscroll_pos);
}

void line_up(int) {
    if (top_row() > 0) {
        --child[0].current_row;
        paint_view();
    }
    show_scrolled();
}

void line_down(int) {
    if (child[0].current_row < child[0].last_file_row) {
        ++child[0].current_row;
        paint_view();
    }
    show_scrolled();
}

void page_up(int) {
    send_key_down(platform::VK_PRIOR);
}
void page_down(int) {
    send_key_down(platform::VK_NEXT);
}

void move_thumb(int position) {
    const double rows_per_unit = child[0].vscroll_scale == 1.0f ? static_cast<double>(child[0].window_rows)
                                                                : static_cast<double>(child[0].vscroll_scale);
    const double last = child[0].last_file_row;
    const auto top = static_cast<int32_t>(std::clamp(position * rows_per_unit, 0.0, last));
    child[0].caret_row = std::min(child[0].caret_row, child[0].last_file_row - top);
    child[0].current_row = top + child[0].caret_row;
    paint_view();
    show_caret_place();
}

struct ScrollRule {
    int request;
    void (*act)(int position);
};

// While the thumb is dragged the view stays; it moves when the thumb is let go.
constexpr ScrollRule SCROLL_RULES[] = {
    {platform::SB_LINEUP, line_up},           {platform::SB_LINEDOWN, line_down},
    {platform::SB_PAGEUP, page_up},           {platform::SB_PAGEDOWN, page_down},
    {platform::SB_THUMBPOSITION, move_thumb},
};

}  // namespace

void handle_vscroll(int request, int position) {
    commit_pending();
    for (const ScrollRule& rule : SCROLL_RULES)
        if (rule.request == request)
            rule.act(position);
}

void handle_hscroll(int request) {
    commit_pending();
    int32_t col = child[0].caret_col;
    if (request == platform::SB_LINELEFT && col - LINE_COLUMNS >= 0)
        col -= LINE_COLUMNS;
    else if (request == platform::SB_LINERIGHT && col + LINE_COLUMNS <= HIGHEST_COLUMN)
        col += LINE_COLUMNS;
    else if (request == platform::SB_PAGELEFT && col - child[0].window_cols >= 0)
        col -= child[0].window_cols;
    else if (request == platform::SB_PAGERIGHT)
        col += child[0].window_cols;
    child[0].caret_col = std::min(col, child[0].window_cols - 1);
    show_caret_place();
}

}  // namespace hexlane
