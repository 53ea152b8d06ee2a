// printing.h: one print job at a time on the system's default printer; where there is none, into a PDF file
// whose name the person is asked for. Positions and sizes are in dots of the device. Bytes are shown by the
// Windows-1252 table. Main thread only. Back ends: qt/ (the system's print service, or PDF), scripted/
// (prints job, fonts, lines and pages into the record), console/ (PDF).
#pragma once

#include <cstddef>

namespace hexlane::platform {

// The default printer's name into name[size]. Gives 1, or 0 when there is none (`name` is empty).
int default_printer(char* name, std::size_t size);

// Starts a job. With a PDF path (not nullptr, not empty) it goes to that file. Otherwise to the default
// printer, or, without one, to a PDF file that the person names in a dialog. Gives 1; 0 when the job cannot
// be started (print_problem_text says why); -1 when the person cancelled.
int print_begin(const char* title, const char* pdf_path);
const char* print_problem_text();

int print_dots_per_inch();  // vertical

// Selects a fixed-pitch-like font: a face (a sensible substitute where it is missing) at a height in dots.
// `height` and `leading` take its line height and the gap that it wants between lines. Gives 1, or 0 when
// there is none.
int print_select_font(const char* face, int dots, int* height, int* leading);

// Writes `count` bytes, black on nothing, left upper corner at (x, y).
void print_text(int x, int y, const char* text, int count);

void print_start_page();
void print_end_page();

// Ends the job. Gives 1, or 0 when a part of it was not taken (full disk, printer gone).
int print_end();

// Ends the job and drops it: no PDF file comes to be, an old one stays, and a printer gets no more.
void print_abandon();

}  // namespace hexlane::platform
