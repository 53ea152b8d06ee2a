// printing.cpp: print jobs into the record: job, pages, fonts and lines. A job whose PDF file the person has
// named says so; nothing is written there.

#include "platform/printing.h"

#include "platform/common/pdf_job.h"
#include "platform/scripted/printer.h"
#include "platform/scripted/record.h"
#include "platform/text.h"

#include <string_view>

namespace hexlane::platform {

namespace {

constexpr int DOTS_PER_INCH = 720;
constexpr int POINTS_PER_INCH = 72;

struct Printer {
    std::string name = "Printer";
    bool fails = false;
    bool busy = false;      // a job is under way
    std::string font_line;  // as it stands in the record, empty on a new page
};
Printer printer;

void must_have_job(const char* call) {
    if (!printer.busy) {
        stop_run(std::string(call) + ": no print job is under way");
    }
}

}  // namespace

void set_printer(const std::string& name, bool fails) {
    printer.name = name;
    printer.fails = fails;
}

void wipe_printer() {
    printer = Printer();
}

int default_printer(char* name, std::size_t size) {
    copy_text(name, size, printer.name.c_str());
    return printer.name.empty() ? 0 : 1;
}

int print_begin(const char* title, const char* pdf_path) {
    if (printer.busy) {
        stop_run("print_begin: a print job is under way");
    }
    std::string path = pdf_path != nullptr ? pdf_path : "";
    if (path.empty() && printer.fails) {
        return 0;
    }
    if (path.empty() && printer.name.empty()) {
        char chosen[PATH_SIZE];
        if (!ask_pdf_path(chosen)) {
            return -1;
        }
        path = chosen;
    }
    record_line("print job " + quoted(title) + (path.empty() ? "" : " pdf " + quoted(path)));
    printer.busy = true;
    printer.font_line.clear();
    return 1;
}

const char* print_problem_text() {
    return printer.fails ? "the printer does not answer" : "";
}

int print_dots_per_inch() {
    return DOTS_PER_INCH;
}

// Only a change of the font is told.
int print_select_font(const char* face, int dots, int* height, int* leading) {
    must_have_job("print_select_font");
    const std::string line =
        "print font " + quoted(face) + " " + std::to_string(dots * POINTS_PER_INCH / DOTS_PER_INCH);
    if (line != printer.font_line) {
        printer.font_line = line;
        record_line(line);
    }
    *height = dots;
    *leading = 0;
    return 1;
}

void print_text(int, int, const char* text, int count) {
    must_have_job("print_text");
    record_line("print line " + quoted(std::string_view(text, static_cast<std::size_t>(count))));
}

void print_start_page() {
    must_have_job("print_start_page");
    printer.font_line.clear();
    record_line("print page");
}

void print_end_page() {
    must_have_job("print_end_page");
}

int print_end() {
    must_have_job("print_end");
    printer.busy = false;
    record_line("print end");
    return 1;
}

void print_abandon() {
    must_have_job("print_abandon");
    printer.busy = false;
    record_line("print abandoned");
}

}  // namespace hexlane::platform
