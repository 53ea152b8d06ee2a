// listing.h: rows of text as a print job below the path of their file. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

enum class RowFound : uint8_t { ROW, NO_ROW, UNREADABLE };

// Brings the text of row `row`, asked for in rising order.
using RowSource = RowFound (*)(int32_t row, const char** text);

// UNREADABLE: a row could not be read, and the job was dropped. The other failures have been told.
enum class ListingResult : uint8_t { PRINTED, CANCELLED, NOT_STARTED, NOT_COMPLETE, UNREADABLE };

// Prints the path, an empty line and rows `first` to `last`, as far as there are such rows, on the default
// printer or (not nullptr) into a PDF file. Serves a waiting message behind each row.
ListingResult print_listing(const char* path, const char* pdf_path, int32_t first, int32_t last,
                            RowSource row_text);

}  // namespace hexlane
