// child.h: the one record of document and view state, alive for the whole run.
// Each field belongs to the subsystem named in its comment; everybody may read. Main thread only.
// Wiped by: reset_child (program start). Opening and closing a file reset the fields that are told there.
#pragma once

#include "platform/messages.h"
#include "platform/surface.h"
#include "platform/text.h"
#include "platform/text_stream.h"
#include "shell/store_limits.h"

#include <cstdint>

namespace hexlane {

using platform::PATH_SIZE;

// One colour of the text area. The layout is that of the colour file (view/color_file_format.h).
struct ColorEntry {
    uint32_t color;           // 0x00BBGGRR
    int16_t include_numbers;  // the numbers behind the letter take its colour too
    int16_t unused;
};

constexpr int COLOR_SLOTS = 28;  // 0 to 25 the letters A to Z
constexpr int COMMENT_SLOT = 26;
constexpr int CHANGES_SLOT = 27;

struct Child {
    platform::WindowHandle main_window;
    int32_t instance;       // kept for the record's shape; 0
    int32_t current_row;    // row of the caret, from 0
    int32_t last_file_row;  // number of the last row, the end row
    int32_t char_width;     // units
    int32_t char_height;    // units
    int16_t client_width;   // units
    int16_t client_height;  // units
    int32_t window_cols;    // text columns that fit, at least 1
    int32_t window_rows;    // highest screen row of the text area, at least 1: rows 0 to window_rows show
    int32_t caret_col;      // display column of the caret, from 0
    int32_t caret_row;      // screen row of the caret; the view's top row is current_row - caret_row
    int16_t block_active;   // a block is on show (shell/block.h)
    int16_t overwrite_mode;
    int32_t vscroll_pos;
    int32_t hscroll_pos;
    float vscroll_scale;    // rows per scroll unit in very long documents, else 1.0
    int16_t vscroll_max;    // at most VSCROLL_LIMIT
    int16_t mouse_pressed;  // a mouse move has been seen since the file was opened
    int16_t replace_reply;
    int16_t current_segment;  // segment that locate_row chose last
    int16_t segment_count;    // segments in use, at least 1
    int32_t pending_row;      // row whose edited text waits in row_text, -1 for none
    int16_t modified;         // the document differs from the file on disk, or a merge is not confirmed
    int16_t file_open;
    char row_text[ROW_BUFFER_SIZE];  // the row fetched last, without line end; see store/row_table.h
    char row_origin;                 // origin letter of the row fetched last
    char file_path[PATH_SIZE];       // the active file, absolute; empty with none
    char file_title[PATH_SIZE];      // its name as the status line shows it
    char file_dir[PATH_SIZE];        // its folder with the '/' at the end, or empty
    char merge_path[PATH_SIZE];      // the file that a merge takes in
    char segment_path[PATH_SIZE];    // built for the current segment
    char change_path[PATH_SIZE];
    char compare_path[PATH_SIZE];  // what a compare reads for the active document
    int16_t colors_enabled;        // F3
    int16_t changes_colored;       // F4
    char cut_text[ROW_BUFFER_SIZE];
    platform::StreamHandle file_stream;    // on the active file
    platform::StreamHandle change_stream;  // on the change file
    int16_t nc_mode;                       // F7
    int16_t nc_columns[256];               // in NC Mode, the display column of each character of row_text
    int32_t window_top;                    // window's edges on the screen in character heights, for drags
    int32_t window_bottom;
    ColorEntry color_table[COLOR_SLOTS];
};

// child[0] is the one instance.
extern Child child[1];

// The row read last by fetch_row ended in a line end within ROW_FETCH_MAX characters.
extern int16_t row_had_lf;

void reset_child();

}  // namespace hexlane
