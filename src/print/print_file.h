// print_file.h: the command Print, and the rows of the document as a print job. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Asks what to print, the document or its block, and prints it.
void command_print();

// Prints rows `first` to `last` of the document, as far as there are such rows, below its path. In NC Mode
// rows print in their display form. Gives false when the job could not be started; true too when the user has
// cancelled.
bool print_rows(int32_t first, int32_t last);

}  // namespace hexlane
