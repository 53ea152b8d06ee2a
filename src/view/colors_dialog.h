// colors_dialog.h: the view IDD_COLORS, in which the colour of each address letter, of comments and of
// changed rows is chosen. Main thread only.
#pragma once

namespace hexlane {

// Command 1016. The view begins with the colours of the file, also while colours are off. What is chosen is
// in color_table at once and stays there behind Cancel, until the file is read again; OK writes the file.
// Then the document is painted, if one is open.
void command_set_colors();

}  // namespace hexlane
