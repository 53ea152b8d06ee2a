// typing.cpp: the characters that edit: text, Tab, Enter, Backspace, Esc, and the Delete that Backspace ends
// in.

#include "edit/block_commands.h"
#include "edit/editing_internal.h"
#include "edit/held_keys.h"
#include "edit/keyboard.h"
#include "platform/desktop.h"
#include "platform/keys.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/window.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>

namespace hexlane {

using namespace platform;

bool caret_past_end;

namespace {

constexpr int TAB_WIDTH = 5;  // cells
constexpr int DELETE_COMMAND = 1011;
constexpr int OVERWRITE_MAX = ROW_EDIT_MAX;  // highest text index that overwriting reaches

// The last printable character was put into the row, and not refused at its limit. For Tab, which sends
// blanks to the window.
bool character_taken;

// What is left to do behind a character.
enum class Ending {
    EDITED,   // the row goes pending
    SETTLED,  // only the caret and its position show
    REFUSED,  // nothing more, whatever the repeat count
};

// Fills the row with blanks from its end up to text index `index`.
void pad_row(int32_t index) {
    const int32_t length = row_length();
    if (index <= length)
        return;
    std::memset(child[0].row_text + length, ' ', static_cast<size_t>(index - length));
    child[0].row_text[index] = '\0';
}

// Puts `c` in at `index`. Gives 1, or 0 at the row's limit.
int insert_character(int32_t index, char c) {
    const int32_t length = std::max(row_length(), index);
    if (length + 1 > ROW_EDIT_MAX)
        return 0;
    pad_row(index);
    char* at = child[0].row_text + index;
    std::memmove(at + 1, at, static_cast<size_t>(length - index) + 1);
    *at = c;
    return 1;
}

// Stores `c` at `index`. Gives 1, or 0 behind the last index that overwriting reaches.
int overwrite_character(int32_t index, char c) {
    if (index > OVERWRITE_MAX)
        return 0;
    pad_row(index);
    if (index == row_length())
        child[0].row_text[index + 1] = '\0';
    child[0].row_text[index] = c;
    return 1;
}

Ending type_character(int code) {
    const int32_t index = caret_index();
    const char c = static_cast<char>(code);
    character_taken = child[0].overwrite_mode ? overwrite_character(index, c) : insert_character(index, c);
    if (!character_taken)
        return Ending::EDITED;
    paint_edited_row();
    if (child[0].nc_mode)
        build_nc_columns();
    child[0].caret_col = (child[0].nc_mode ? child[0].nc_columns[index] : index) + 1;
    return Ending::EDITED;
}

// Blanks up to the next multiple of TAB_WIDTH, at least one, each as if it had been typed.
Ending type_tab(int) {
    do {
        character_taken = false;
        send_message(child[0].main_window, WM_CHAR, ' ', key_parameter(key_by_number(VK_SPACE), 1, false));
    } while (character_taken && child[0].caret_col % TAB_WIDTH != 0);
    return child[0].pending_row == child[0].current_row ? Ending::EDITED : Ending::SETTLED;
}

// The caret to the start of the next row; on the last one it stays there.
void move_to_next_row() {
    child[0].caret_col = 0;
    if (child[0].current_row >= child[0].last_file_row) {
        caret_past_end = true;
        return;
    }
    ++child[0].current_row;
    ++child[0].caret_row;
    if (child[0].caret_row > child[0].window_rows) {
        --child[0].caret_row;
        paint_view();
    } else if (!child[0].overwrite_mode) {
        paint_rows(child[0].current_row - 1, child[0].window_rows, child[0].window_cols,
                   child[0].caret_row - 1);
    }
}

Ending press_enter(int) {
    const int32_t index = caret_index();
    const bool was_last = child[0].current_row == child[0].last_file_row;
    if (!commit_pending_in_place())
        return Ending::REFUSED;
    if (!child[0].overwrite_mode && !split_row(child[0].current_row, index)) {
        paint_view();
        return Ending::REFUSED;
    }
    // A row of text that was typed into the end row must not stay the last one.
    if (was_last && !row_is_empty(child[0].last_file_row) && !(room_for_rows(1) && add_end_row(true))) {
        paint_view();
        return Ending::REFUSED;
    }
    move_to_next_row();
    return Ending::SETTLED;
}

Ending delete_caret_row() {
    if (!commit_pending())
        return Ending::REFUSED;
    block = NO_BLOCK;
    block.start = {0, static_cast<int16_t>(child[0].caret_row), child[0].current_row};
    block.end.row = child[0].current_row;
    send_message(child[0].main_window, WM_COMMAND, DELETE_COMMAND, 0);
    block_clear();  // also when the deletion was refused
    return Ending::SETTLED;
}

// Ctrl+Enter: drops the row's text from the caret on; at column 0 the whole row.
Ending cut_row(int) {
    if (child[0].caret_col == 0)
        return delete_caret_row();
    const int32_t index = caret_index();
    if (index < row_length())
        child[0].row_text[index] = '\0';
    mark_edited();
    commit_pending();
    if (!child[0].overwrite_mode)
        paint_rows(child[0].current_row, child[0].window_rows, child[0].window_cols, child[0].caret_row);
    return Ending::SETTLED;
}

// The row joins the one above by the Delete behind that one's text.
Ending join_row_above() {
    if (!commit_pending())
        return Ending::REFUSED;
    --child[0].current_row;
    child[0].caret_row = std::max(child[0].caret_row - 1, 0);
    fetch_row(child[0].current_row);
    child[0].caret_col = row_end_column();
    send_key_down(VK_DELETE);
    return Ending::SETTLED;
}

Ending backspace(int) {
    const int32_t index = caret_index();
    if (index == 0)
        return child[0].current_row > 0 ? join_row_above() : Ending::EDITED;
    child[0].caret_col = child[0].nc_mode ? child[0].nc_columns[index - 1] : index - 1;
    send_key_down(VK_DELETE);
    return Ending::SETTLED;
}

// Any block has been ended by now; a row that is not in edit does not become so.
Ending escape(int) {
    return child[0].pending_row == child[0].current_row ? Ending::EDITED : Ending::SETTLED;
}

// A character without a meaning counts as an edit all the same.
Ending ignore_character(int) {
    return Ending::EDITED;
}

enum class WithCtrl { NO, YES, EITHER };

struct CharacterRule {
    int first;
    int last;
    WithCtrl ctrl;
    bool edits;  // needs a store that takes edits, and the caret's row in row_text
    Ending (*act)(int code);
};

constexpr int FIRST_PRINTABLE = 32;
constexpr int LAST_PRINTABLE = 127;

// The first line that fits counts. To give a character a meaning, add a line.
constexpr CharacterRule CHARACTER_RULES[] = {
    {8, 8, WithCtrl::NO, true, backspace},
    {9, 9, WithCtrl::NO, true, type_tab},
    {10, 10, WithCtrl::NO, true, press_enter},
    {13, 13, WithCtrl::NO, true, press_enter},
    {10, 10, WithCtrl::YES, true, cut_row},
    {13, 13, WithCtrl::YES, true, cut_row},
    {27, 27, WithCtrl::EITHER, false, escape},
    {FIRST_PRINTABLE, LAST_PRINTABLE, WithCtrl::NO, true, type_character},
    {INT_MIN, INT_MAX, WithCtrl::EITHER, true, ignore_character},
};

const CharacterRule* rule_of_character(int code, bool ctrl) {
    return std::find_if(
        std::begin(CHARACTER_RULES), std::end(CHARACTER_RULES), [&](const CharacterRule& rule) {
            const bool ctrl_fits = rule.ctrl == WithCtrl::EITHER || (rule.ctrl == WithCtrl::YES) == ctrl;
            return rule.first <= code && code <= rule.last && ctrl_fits;
        });
}

// Gives 0 when the character was refused.
int act_on_character(const CharacterRule& rule, int code) {
    if (rule.edits && !begin_edit())
        return 0;
    const Ending ending = rule.act(code);
    if (ending == Ending::EDITED)
        mark_edited();
    if (ending == Ending::REFUSED)
        refuse_edit();
    show_caret_place();
    return ending != Ending::REFUSED;
}

}  // namespace

void handle_char(int code, int repeat) {
    block_dismiss();
    place_caret_now();
    const CharacterRule* rule = rule_of_character(code, held_key(VK_CONTROL));
    while (repeat-- > 0 && act_on_character(*rule, code)) {
    }
}

void hold_caret_in_document() {
    if (bound_caret())
        caret_past_end = true;
}

}  // namespace hexlane
