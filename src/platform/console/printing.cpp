// printing.cpp: print jobs of programs without a window go into PDF files alone; such a program has no
// printer, and nobody to ask for a name.

#include "platform/printing.h"

#include "platform/common/pdf_job.h"

namespace hexlane::platform {

namespace {

const char* own_problem = nullptr;

}  // namespace

int default_printer(char* name, std::size_t size) {
    if (size > 0) {
        name[0] = '\0';
    }
    return 0;
}

int print_begin(const char* title, const char* pdf_path) {
    if (pdf_path == nullptr || *pdf_path == '\0') {
        own_problem = "there is no printer, and no PDF file was named";
        return 0;
    }
    own_problem = nullptr;
    return pdf_begin(title, pdf_path);
}

const char* print_problem_text() {
    return own_problem != nullptr ? own_problem : pdf_problem_text();
}

int print_dots_per_inch() {
    return pdf_dots_per_inch();
}

int print_select_font(const char* face, int dots, int* height, int* leading) {
    return pdf_select_font(face, dots, height, leading);
}

void print_text(int x, int y, const char* text, int count) {
    pdf_text(x, y, text, count);
}

void print_start_page() {
    pdf_start_page();
}

void print_end_page() {
    pdf_end_page();
}

int print_end() {
    return pdf_end();
}

void print_abandon() {
    pdf_abandon();
}

}  // namespace hexlane::platform
