// colors.h: the colour table, its file, and the three display modes.
// color_table in child is the table in effect: while colours are off, slots 0 to 26 hold black, so that
// painting tests no flag for each character; the slots' true colours are in the file, and turning colours on
// reads them again. The format of the file is in color_file_format.h. Main thread only.
#pragma once

namespace hexlane {

// Fills color_table from ZOLT.INI in start_dir, or makes that file with defaults when it is missing. One that
// cannot be read counts as all black, and is left alone. A short file fills the slots it reaches; the others
// stay as they were read or written last. Tells nothing.
void load_colors();

// Writes color_table and the reserved bytes, complete and then in place. Gives 1, or 0 when the file could
// not be written, or not be read at the last load: then it is as it was.
int save_colors();

// All slots black, reserved bytes zero, then save_colors.
void make_default_colors();

// Slots 0 to 26 as they are while colours are off.
void blacken_letters_and_comments();

// Each switches its mode and the check marks and repaints the view, if a file is open. A pending row has been
// committed by the caller.
void command_enable_colors();       // 1017
void command_color_edit_changes();  // 1018
void command_nc_mode();             // 1019

// A decimal digit, '+', '-' or '.'.
bool is_numeric_char(char c);

}  // namespace hexlane
