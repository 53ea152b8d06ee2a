// editing_internal.h: what the keyboard's files share: the rules that every edit keeps.
#pragma once

#include <cstdint>

namespace hexlane {

// The text index at the caret, in the caret's row, which row_text holds. In NC Mode it also makes nc_columns
// fit row_text.
int32_t caret_index();

// Length of row_text.
int32_t row_length();

// The display column behind row_text.
int32_t row_end_column();

// Sends a key down to the window itself, as the keyboard would.
void send_key_down(int key);

// The beginning of every edit: makes row_text hold the caret's row. Gives 1; 0 after a beep when the store
// takes no edits or the row cannot be read: what would be committed then is not the row.
[[nodiscard]] int begin_edit();

// The sound of an edit that is not made.
void refuse_edit();

// row_text is edited text of the caret's row.
void mark_edited();

// Places the caret and shows its position.
void show_caret_place();

// The caret to the next row, if there is one; the view follows.
void move_down();

// The Delete key: takes out the character at the caret, or joins the next row on. Needs: no row pending.
void delete_at_caret();

}  // namespace hexlane
