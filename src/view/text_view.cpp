// text_view.cpp: painting the rows of the document. Each operation draws in place and keeps no picture.

#include "view/text_view.h"

#include "platform/surface.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/scroll.h"
#include "shell/status_line.h"
#include "shell/window.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "view/color_runs_internal.h"
#include "view/nc_columns.h"

#include <algorithm>
#include <cstring>

namespace hexlane {
namespace {

using platform::BLACK;
using platform::Color;
using platform::WHITE;

constexpr char BLANKS[] = "                                                                "
                          "                                                                ";
constexpr int32_t BLANK_COUNT = sizeof BLANKS - 1;

// A row that was off the screen comes up with this many rows above it, if the document has them.
constexpr int32_t ROWS_ABOVE = 3;

struct Look {
    Color ink;
    Color paper;
};
constexpr Look PLAIN = {BLACK, WHITE};
constexpr Look HIGHLIGHTED = {WHITE, BLACK};

Look changed_look() {
    return {child[0].color_table[CHANGES_SLOT].color, WHITE};
}

int32_t text_length() {
    return static_cast<int32_t>(std::strlen(child[0].row_text));
}

void draw_cells(int32_t col, int32_t pixel_y, const char* text, int32_t count, Look look) {
    platform::draw_text(child[0].main_window, col * child[0].char_width, pixel_y, text, count, look.ink,
                        look.paper);
}

void draw_blank_cells(int32_t col, int32_t y, int32_t count, Look look) {
    for (int32_t end = col + count; col < end; col += BLANK_COUNT)
        draw_cells(col, y * child[0].char_height, BLANKS, std::min(end - col, BLANK_COUNT), look);
}

// Draws row_text in one look, and blanks from its end to `cols`.
void draw_row(int32_t y, int32_t cols, Look look) {
    const int32_t length = text_length();
    draw_cells(0, y * child[0].char_height, child[0].row_text, length, look);
    draw_blank_cells(length, y, cols - length, look);
}

// Draws row_text by its letters, and blanks from its end to `cols`.
void draw_colored_row(int32_t y, int32_t cols, int32_t row) {
    const int32_t length = text_length();
    paint_colored_row(y * child[0].char_height, row);
    draw_blank_cells(length, y, cols - length, PLAIN);
}

// A part of this row is marked. What is marked can be deleted by the next key, so it shows in every display
// mode.
bool holds_marked_part(int32_t row) {
    return child[0].block_active && !block_holds_rows() && block.start.row == row;
}

// Fetches a document row and draws it; a row behind the last one is blank.
void paint_document_row(int32_t row, int32_t y, int32_t cols, bool highlighted) {
    if (row > child[0].last_file_row) {
        draw_blank_cells(0, y, cols, PLAIN);
        return;
    }
    fetch_row(row);
    if (child[0].nc_mode)
        format_nc_row();
    if (highlighted)
        draw_row(y, cols, HIGHLIGHTED);
    else if (holds_marked_part(row))
        draw_colored_row(y, cols, row);
    else if (child[0].changes_colored)
        draw_row(y, cols, child[0].row_origin == ORIGIN_FILE ? PLAIN : changed_look());
    else if (child[0].colors_enabled)
        draw_colored_row(y, cols, row);
    else
        draw_row(y, cols, PLAIN);
}

bool holds_row(const Block& rows, int32_t row) {
    return rows.start.row <= row && row <= rows.end.row;
}

// What every repaint ends with; row_text must not stay formatted.
void end_painting(int32_t next_row) {
    if (child[0].nc_mode)
        fetch_row(next_row);
    if (!child[0].block_active)
        set_caret_visible(true);
    show_position();
}

}  // namespace

int32_t top_row() {
    return child[0].current_row - child[0].caret_row;
}

void paint_rows(int32_t first_row, int32_t last_y, int32_t cols, int32_t first_y) {
    if (!child[0].block_active)
        set_caret_visible(false);
    int32_t row = first_row;
    for (int32_t y = first_y; y <= last_y; ++y, ++row)
        paint_document_row(row, y, cols, child[0].block_active && holds_row(block, row));
    end_painting(row);
    update_scrollbar(child[0].main_window);
}

void paint_view() {
    paint_rows(top_row(), child[0].window_rows, child[0].window_cols, 0);
}

void paint_block_rows(int32_t first_row, int32_t last_y, int32_t cols, int32_t first_y) {
    child[0].current_row = std::max(child[0].current_row, 0);
    if (!child[0].block_active)
        set_caret_visible(false);
    int32_t row = first_row;
    for (int32_t y = first_y; y <= last_y && row <= child[0].last_file_row; ++y, ++row) {
        if (holds_row(block, row) || holds_row(previous_block, row))
            paint_document_row(row, y, cols, holds_row(block, row));
    }
    end_painting(row);
    previous_block = block;
}

void paint_colored_row(int32_t pixel_y, int32_t row) {
    Color inks[ROW_BUFFER_SIZE];
    const char* text = child[0].row_text;
    const int32_t length = text_length();
    ink_row(text, length, child[0].color_table, inks);
    const bool has_block = child[0].block_active && block.start.row == row;
    const auto look_at = [&](int32_t i) {
        return has_block && block.start.col <= i && i < block.end.col ? HIGHLIGHTED : Look{inks[i], WHITE};
    };
    for (int32_t first = 0, end = 0; first < length; first = end) {
        const Look look = look_at(first);
        for (end = first + 1; end < length; ++end) {
            const Look next = look_at(end);
            if (next.ink != look.ink || next.paper != look.paper)
                break;
        }
        draw_cells(first, pixel_y, text + first, end - first, look);
    }
}

void paint_row_with_block(int32_t row) {
    const int32_t y = row - top_row();
    if (y < 0 || y > child[0].window_rows)
        return;
    fetch_row(row);
    if (child[0].nc_mode)
        format_nc_row();
    paint_colored_row(y * child[0].char_height, row);
    if (child[0].nc_mode)
        fetch_row(row);
}

void paint_color_overlay(int32_t y) {
    const char* text = child[0].row_text;
    ColorStretch stretch = {};
    while (next_color_stretch(text, stretch.first + stretch.length, child[0].color_table, &stretch))
        draw_cells(stretch.first, y * child[0].char_height, text + stretch.first, stretch.length,
                   {stretch.ink, WHITE});
}

void paint_edited_row() {
    char text[ROW_BUFFER_SIZE];
    std::memcpy(text, child[0].row_text, sizeof text);
    set_caret_visible(false);
    if (child[0].nc_mode)
        format_nc_row();
    if (child[0].changes_colored)
        draw_row(child[0].caret_row, child[0].window_cols, changed_look());
    else
        draw_colored_row(child[0].caret_row, child[0].window_cols, child[0].current_row);
    set_caret_visible(true);
    std::memcpy(child[0].row_text, text, sizeof text);
}

void repaint_row(int32_t row, bool force_changed) {
    const int32_t y = screen_row_of(row);
    if (child[0].nc_mode)
        format_nc_row();
    if (child[0].changes_colored) {
        const bool changed = force_changed || child[0].row_origin != ORIGIN_FILE;
        draw_row(y, child[0].window_cols, changed ? changed_look() : PLAIN);
    } else {
        draw_row(y, child[0].window_cols, PLAIN);
        paint_color_overlay(y);
    }
    if (child[0].nc_mode)
        fetch_row(row);
}

void show_match(int32_t row, int32_t index, int32_t length) {
    const int32_t y = screen_row_of(row);
    int32_t col = index;
    if (child[0].nc_mode) {
        build_nc_columns();
        col = child[0].nc_columns[index];
        format_nc_row();
    }
    const int32_t shown = std::min(length, text_length() - col);
    if (shown > 0)  // NC Mode may spread a row out beyond the buffer
        draw_cells(col, y * child[0].char_height, child[0].row_text + col, shown, HIGHLIGHTED);
    child[0].current_row = row;
    child[0].caret_col = col;
    child[0].caret_row = y;
    place_caret_now();
    if (child[0].nc_mode)
        fetch_row(row);
    update_scrollbar(child[0].main_window);
}

int32_t screen_row_of(int32_t row) {
    const int32_t top = top_row();
    if (top <= row && row <= top + child[0].window_rows)
        return row - top;
    const int32_t y = row <= ROWS_ABOVE ? 0 : std::min(ROWS_ABOVE, child[0].window_rows);
    child[0].caret_row = y;
    child[0].current_row = row;
    paint_view();
    fetch_row(row);
    return y;
}

}  // namespace hexlane
