// print_engine.h: a plain line printer: one job at a time, lines one below the other, pages ended by the
// caller. Relies on platform/printing.h. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// A page is ended when its count of lines passes this: it holds one line more.
constexpr int32_t LINES_PER_PAGE = 50;

enum class PrintStart : uint8_t { STARTED, CANCELLED, FAILED };

// Starts a job on the default printer, or (not nullptr) into a PDF file, and its first page. FAILED comes
// after the error box.
PrintStart start_print_document(const char* title, const char* pdf_path = nullptr);

// Selects the font of the lines that follow, 4 to 72 points. Gives whether there is one.
bool set_print_font(const char* face, int points);

// Moves down one line and writes the text there; NULs print as blanks. A line that does not fit runs off the
// page.
void print_line(const char* text, int32_t length);

// Ends the page and starts the next one. The font has to be selected again.
void begin_next_page();

// Counts a line, and begins the next page when the count has passed LINES_PER_PAGE.
void count_print_line(int32_t* lines);

// Ends the last page and the job. Gives false when a part of it was not taken, which has been told.
bool end_print_document();

// Ends the job where it stands; what it was to become stays as it was, as far as the device allows.
void abandon_print_document();

// The error box of a job that cannot be started, with print_problem_text for the reason.
void report_print_error();

}  // namespace hexlane
