// text_view.h: the document as a grid of fixed cells, one document row per screen row. No screen image is
// kept here: a repaint fetches the rows it shows, each into row_text. So a pending edit must be committed
// before any of these runs, and a caller that needs a row's text afterwards fetches it again. The operations
// that draw row_text as it stands say so. Rows show from column 0; what goes past the window's edge is
// clipped. Screen rows count from 0 at the top, columns from 0 at the left. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// The document row at screen row 0.
int32_t top_row();

// Repaints screen rows first_y to last_y with document rows from first_row on, over `cols` cells; then the
// position and the scroll bar, by current_row as it stands.
void paint_rows(int32_t first_row, int32_t last_y, int32_t cols, int32_t first_y);

// paint_rows over the whole view, from top_row() on.
void paint_view();

// As paint_rows, for rows that enter or leave the block only: those of `block` and of `previous_block`, which
// then takes `block`. The scroll bar stays.
void paint_block_rows(int32_t first_row, int32_t last_y, int32_t cols, int32_t first_y);

// Draws row_text, fetched and formatted by the caller, by the colour of each character, at height `pixel_y`
// in units. A block inside document row `row` shows white on black. Behind the text nothing is drawn.
void paint_colored_row(int32_t pixel_y, int32_t row);

// Draws the row of a block that lies inside one, as paint_colored_row does, so that the block shows in every
// display mode. The blanks behind the text stay as they are; a row off the screen is left alone. row_text
// holds the row then.
void paint_row_with_block(int32_t row);

// Draws the coloured words of row_text over a row that was just drawn plain, at screen row y.
void paint_color_overlay(int32_t y);

// Draws the caret's row from row_text, the text that is being edited, which stays as it is. A row in edit
// counts as changed.
void paint_edited_row();

// Paints one document row from row_text, scrolling to it if it is off the screen (then it is fetched here).
// `force_changed`: it counts as changed whatever its origin letter says. In NC Mode row_text is fetched again
// at the end.
void repaint_row(int32_t row, bool force_changed);

// Highlights `length` cells of a row from text index `index` and puts the caret there. Needs the row in
// row_text.
void show_match(int32_t row, int32_t index, int32_t length);

// The screen row of a document row. A row off the screen comes up near the top, and becomes the caret's row
// and row_text.
int32_t screen_row_of(int32_t row);

}  // namespace hexlane
