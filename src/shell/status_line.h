// status_line.h: the strip at the bottom of the main window: message, file name, overwrite mark, row, column
// and the activity icon. Others write its fields through these operations alone; nothing is stored here.
// Relies on platform/views.h. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Status messages, by number.
constexpr int STATUS_MACRO_RECORD_ON = 5;
constexpr int STATUS_BLANK = 7;
constexpr int STATUS_LOADING = 8;
constexpr int STATUS_RENUMBERING = 9;
constexpr int STATUS_SAVING = 10;
constexpr int STATUS_STRIPPING = 11;
constexpr int STATUS_SCALE = 12;
constexpr int STATUS_SHIFT = 13;
constexpr int STATUS_ABSOLUTE_TO_INCREMENTAL = 14;
constexpr int STATUS_INCREMENTAL_TO_ABSOLUTE = 15;
constexpr int STATUS_EDIT_MODE = 17;
constexpr int STATUS_SEARCHING = 18;
constexpr int STATUS_NO_FURTHER_DIFFERENCES = 19;

// Makes the status line, its icon hidden. Gives 1, or 0 when the toolkit cannot.
int create_status_line();

// Writes a message by its number; a number without a text is ignored.
void show_status(int number);

// Writes overwrite mark, row and column of the caret, counted from 1. A negative current_row becomes 0.
void show_position();

// Writes `row` + 1 as the row alone: the progress of a long run. Call every ROW_COUNT_STEP rows.
void show_row_count(int32_t row);

// Writes file_title: 37 characters and ".." when it has 40 or more, 45 blanks when it is empty.
void show_file_name();

// Shows or hides the icon that tells of a transfer.
void show_activity_icon(bool visible);

}  // namespace hexlane
