// keyboard.cpp: the keys that move the caret, and Insert and Delete. What Shift makes of a movement is in
// selection.cpp, characters are in typing.cpp.

#include "edit/keyboard.h"

#include "edit/block_commands.h"
#include "edit/editing_internal.h"
#include "edit/held_keys.h"
#include "edit/selection_internal.h"
#include "platform/desktop.h"
#include "platform/keys.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

#include <algorithm>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

// The top row that the last Page Up or Page Down left. A page up that finds itself there is one on the first
// page, and brings the caret to the first row.
int32_t last_page_top;

void move_up() {
    if (child[0].current_row == 0)
        return;
    --child[0].current_row;
    child[0].caret_row = std::max(child[0].caret_row - 1, 0);
    if (child[0].caret_row == 0)
        paint_view();
}

// Neither wraps to another row. A caret that stands beyond the window's edge comes back to the last column.
void move_left() {
    child[0].caret_col = std::clamp(child[0].caret_col - 1, 0, child[0].window_cols - 1);
}
void move_right() {
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

void row_start() {
    child[0].caret_col = 0;
}

// In NC Mode words go on behind the last cell that a row ever shows; the caret does not follow them there.
void row_end() {
    fetch_row(child[0].current_row);
    const int32_t end = std::min(row_end_column(), NC_MAX_LENGTH);
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

bool has_further_page() {
    return child[0].last_file_row > child[0].window_rows;
}

void page_down() {
    if (!has_further_page())
        return;
    // One screen row stays empty at the end of the document.
    const int32_t lowest = child[0].last_file_row - child[0].window_rows + 1;
    show_page(std::min(top_row() + child[0].window_rows + 1, lowest));
}

void toggle_overwrite() {
    if (!held_key(VK_SHIFT) && !held_key(VK_CONTROL))
        child[0].overwrite_mode = !child[0].overwrite_mode;
}

bool has_row_above() {
    return child[0].current_row > 0;
}
bool has_row_below() {
    return child[0].current_row < child[0].last_file_row;
}

enum class WithCtrl { NO, YES, EITHER };

struct KeyRule {
    int key;
    WithCtrl ctrl;
    void (*act)();         // runs with no row pending
    ExtendBlock extend;    // with Shift the movement takes the block along; nullptr: Shift adds nothing
    bool (*can_extend)();  // whether that does anything at all; nullptr: always
};

// To give a key a meaning, add a line.
constexpr KeyRule KEY_RULES[] = {
    {VK_UP, WithCtrl::EITHER, move_up, extend_up, has_row_above},
    {VK_DOWN, WithCtrl::EITHER, move_down, extend_down, has_row_below},
    {VK_LEFT, WithCtrl::EITHER, move_left, extend_left, nullptr},
    {VK_RIGHT, WithCtrl::EITHER, move_right, extend_right, nullptr},
    {VK_HOME, WithCtrl::NO, row_start, extend_to_row_start, nullptr},
    {VK_HOME, WithCtrl::YES, document_start, extend_to_document_start, nullptr},
    {VK_END, WithCtrl::NO, row_end, extend_to_row_end, nullptr},
    {VK_END, WithCtrl::YES, document_end, extend_to_document_end, nullptr},
    {VK_PRIOR, WithCtrl::EITHER, page_up, extend_page_up, nullptr},
    {VK_NEXT, WithCtrl::EITHER, page_down, extend_page_down, has_further_page},
    {VK_INSERT, WithCtrl::EITHER, toggle_overwrite, nullptr, nullptr},
    {VK_DELETE, WithCtrl::EITHER, delete_at_caret, nullptr, nullptr},
};

const KeyRule* rule_of_key(int key) {
    const bool ctrl = held_key(VK_CONTROL);
    const auto* rule = std::find_if(std::begin(KEY_RULES), std::end(KEY_RULES), [&](const KeyRule& entry) {
        return entry.key == key && (entry.ctrl == WithCtrl::EITHER || (entry.ctrl == WithCtrl::YES) == ctrl);
    });
    return rule != std::end(KEY_RULES) ? rule : nullptr;
}

void act_on_key(const KeyRule& rule) {
    commit_pending();
    if (!held_key(VK_SHIFT) || rule.extend == nullptr)
        rule.act();
    else if (rule.can_extend == nullptr || rule.can_extend())
        extend_block(rule.act, rule.extend);
}

struct KeyRange {
    int first;
    int last;
};

constexpr KeyRange BLOCK_KEEPING_KEYS[] = {
    {VK_SHIFT, VK_CONTROL}, {VK_ESCAPE, VK_ESCAPE}, {VK_PRIOR, VK_DOWN}, {VK_F1, VK_F24}};

}  // namespace

void move_down() {
    if (child[0].current_row >= child[0].last_file_row)
        return;
    ++child[0].current_row;
    ++child[0].caret_row;
    if (child[0].caret_row > child[0].window_rows) {
        --child[0].caret_row;
        paint_view();
    }
}

void handle_key_down(int key) {
    if (!held_key(VK_SHIFT) && !held_key(VK_CONTROL))
        block_dismiss();
    if (!child[0].block_active)
        place_caret_now();
    if (const KeyRule* rule = rule_of_key(key))
        act_on_key(*rule);
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
