// pdf_job.h: a print job into a PDF file, one at a time, for every back end. Pages are A4 and hold text in
// the two typefaces that every PDF reader brings along, so no font is put into the file; memory does not grow
// with the pages but for some bytes of each. Form: PDF 1.4 (ISO 32000-1 with its standard fonts and
// WinAnsiEncoding). The file takes its name only when it is complete and on the medium, and never that of a
// file which is neither a PDF file nor empty. Main thread only.
#pragma once

namespace hexlane::platform {

// As in printing.h.
int pdf_begin(const char* title, const char* path);
int pdf_dots_per_inch();
int pdf_select_font(const char* face, int dots, int* height, int* leading);
void pdf_text(int x, int y, const char* text, int count);
void pdf_start_page();
void pdf_end_page();
int pdf_end();
void pdf_abandon();

// Why pdf_begin or pdf_end has failed.
const char* pdf_problem_text();

// Asks the person for a PDF file. Gives 1 and its path in path[PATH_SIZE], or 0 for Cancel.
int ask_pdf_path(char* path);

}  // namespace hexlane::platform
