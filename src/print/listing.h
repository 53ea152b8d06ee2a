// listing.h: rows of text as a print job below the path of their file. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// The text of row `row`, asked for in rising order; nullptr when there is no such row.
using RowSource = const char* (*)(int32_t row);

// Prints the path, an empty line and rows `first` to `last`, as far as there are such rows, on the default
// printer or (not nullptr) into a PDF file. Serves a waiting message behind each row. Gives false when the
// job could not be started, which has been told; true too when the user has cancelled it.
bool print_listing(const char* path, const char* pdf_path, int32_t first, int32_t last, RowSource row_text);

}  // namespace hexlane
