// nc_columns.h: NC Mode's columns: every letter outside a comment starts on a multiple of NC_FIELD_WIDTH.
// The text of the file never changes; only the display does. Pure walks over row_text (child) or a given
// text. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

constexpr int NC_FIELD_WIDTH = 5;   // cells
constexpr int NC_MAX_LENGTH = 255;  // cells of a formatted row; behind them no word is spread out any more

// A to Z and a to z, whatever the locale.
bool is_letter(char c);

// Writes each character's display column into nc_columns, and behind them, at the index of the text's length,
// the column behind the last one. A row that outgrows NC_MAX_LENGTH goes on there without padding, so that
// columns always rise.
void build_nc_columns();

// Spreads row_text out to its display form, at most NC_MAX_LENGTH characters; what goes past is not shown.
void format_nc_row();

// The text index of display column `col`: the first whose column is `col` or beyond, or the text's length. So
// the characters between two columns on the screen are those between their indexes.
// Needs: build_nc_columns for the text that row_text holds now. So does caret_text_index.
int32_t text_index_from(int32_t col);

// The text index under the caret.
int32_t caret_text_index();

// Cells that `text` takes when it is formatted from column 0, not cut at NC_MAX_LENGTH.
int32_t nc_display_length(const char* text);

}  // namespace hexlane
