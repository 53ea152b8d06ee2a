// keyboard.cpp: the keys that move the caret, and Insert and Delete. Characters are in typing.cpp.

#include "input/keyboard.h"

#include "frame/child.h"
#include "frame/main_window.h"
#include "input/block.h"
#include "input/editing_internal.h"
#include "platform/desktop.h"
#include "platform/keys.h"
#include "store/row_table.h"
#include "view/text_view.h"

#include <algorithm>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

// The top row that the last Page Up or Page Down left. A page up that finds itself there is one on the first
// page, and brings the caret to the first row.
int32_t last_page_top;

void key_up() {
    if (child[0].current_row == 0)
        return;
    --child[0].current_row;
    child[0].caret_row = std::max(child[0].caret_row - 1, 0);
    if (child[0].caret_row == 0)
        paint_view();
}

void key_down() {
    if (child[0].current_row >= child[0].last_file_row)
        return;
    ++child[0].current_row;
    ++child[0].caret_row;
    if (child[0].caret_row > child[0].window_rows) {
        --child[0].caret_row;
        paint_view();
    }
}

// Neither wraps to another row. A caret that stands beyond the window's edge comes back to the last column.
void key_left() {
    child[0].caret_col = std::clamp(child[0].caret_col - 1, 0, child[0].window_cols - 1);
}
void key_right() {
    child[0].caret_col = std::min(child[0].caret_col + 1, child[0].window_cols - 1);
}

void document_start() {
    child[0].caret_col = 0;
    child[0].caret_row = 0;
    child[0].current_row = 0;
    paint_view();
}

void document_end() {
    fetch_row(child[0].last_file_row);
    child[0].caret_col = row_length();
    child[0].current_row = child[0].last_file_row;
    child[0].caret_row = std::min(child[0].window_rows, child[0].last_file_row);
    paint_view();
}

void key_home() {
    if (key_is_down(VK_CONTROL))
        document_start();
    else
        child[0].caret_col = 0;
}

void key_end() {
    if (key_is_down(VK_CONTROL)) {
        document_end();
        return;
    }
    fetch_row(child[0].current_row);
    const int32_t end = row_end_column();
    child[0].caret_col = end > child[0].window_cols ? child[0].window_cols - 1 : end;
}

// Shows the document from `top` on; the caret keeps its screen row as far as there are rows.
void show_page(int32_t top) {
    last_page_top = top;
    child[0].caret_row = std::min(child[0].caret_row, child[0].last_file_row - top);
    child[0].current_row = top + child[0].caret_row;
    paint_view();
}

void page_up() {
    int32_t top = std::max(top_row() - child[0].window_rows - 1, 0);
    if (top == last_page_top) {
        top = 0;
        child[0].caret_row = 0;
    }
    show_page(top);
}

void page_down() {
    if (child[0].last_file_row <= child[0].window_rows)
        return;
    // One screen row stays empty at the end of the document.
    const int32_t lowest = child[0].last_file_row - child[0].window_rows + 1;
    show_page(std::min(top_row() + child[0].window_rows + 1, lowest));
}

void toggle_overwrite() {
    if (!key_is_down(VK_SHIFT) && !key_is_down(VK_CONTROL))
        child[0].overwrite_mode = !child[0].overwrite_mode;
}

struct KeyRule {
    int key;
    void (*act)();  // runs with no row pending
};

// To give a key a meaning, add a line.
constexpr KeyRule KEY_RULES[] = {
    {VK_UP, key_up},
    {VK_DOWN, key_down},
    {VK_LEFT, key_left},
    {VK_RIGHT, key_right},
    {VK_HOME, key_home},
    {VK_END, key_end},
    {VK_PRIOR, page_up},
    {VK_NEXT, page_down},
    {VK_INSERT, toggle_overwrite},
    {VK_DELETE, delete_at_caret},
};

struct KeyRange {
    int first;
    int last;
};

constexpr KeyRange BLOCK_KEEPING_KEYS[] = {
    {VK_SHIFT, VK_CONTROL}, {VK_ESCAPE, VK_ESCAPE}, {VK_PRIOR, VK_DOWN}, {VK_F1, VK_F24}};

}  // namespace

void handle_key_down(int key) {
    if (!key_is_down(VK_SHIFT) && !key_is_down(VK_CONTROL))
        block_dismiss();
    if (!child[0].block_active)
        place_caret_now();
    const auto* rule = std::find_if(std::begin(KEY_RULES), std::end(KEY_RULES),
                                    [key](const KeyRule& entry) { return entry.key == key; });
    if (rule != std::end(KEY_RULES)) {
        commit_pending();
        rule->act();
    }
    if (child[0].pending_row != child[0].current_row)
        commit_pending();
    if (child[0].block_active)
        set_caret_visible(false);
    show_caret_place();
}

bool key_keeps_block(int key) {
    return std::any_of(std::begin(BLOCK_KEEPING_KEYS), std::end(BLOCK_KEEPING_KEYS),
                       [key](const KeyRange& range) { return range.first <= key && key <= range.last; });
}

}  // namespace hexlane
