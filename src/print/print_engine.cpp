#include "print/print_engine.h"

#include <algorithm>

#include "platform/desktop.h"
#include "platform/printing.h"
#include "print/print_texts.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int SMALLEST_FONT = 4;  // points
constexpr int LARGEST_FONT = 72;
constexpr int POINTS_PER_INCH = 72;
constexpr int32_t LONGEST_LINE = 512;  // bytes; nothing that is printed here is longer

// One page, in dots of the device.
int print_y = 0;
int line_pitch = 0;

void begin_page() {
    print_start_page();
    print_y = 0;
    line_pitch = 0;
}

}  // namespace

PrintStart start_print_document(const char* title, const char* pdf_path) {
    switch (print_begin(title, pdf_path)) {
    case 1:
        begin_page();
        return PrintStart::STARTED;
    case 0:
        report_print_error();
        return PrintStart::FAILED;
    default:
        return PrintStart::CANCELLED;
    }
}

bool set_print_font(const char* face, int points) {
    const int size = std::clamp(points, SMALLEST_FONT, LARGEST_FONT);
    int height = 0;
    int leading = 0;
    if (!print_select_font(face, size * print_dots_per_inch() / POINTS_PER_INCH, &height, &leading))
        return false;
    line_pitch = height + leading;
    return true;
}

void print_line(const char* text, int32_t length) {
    char line[LONGEST_LINE];
    const int32_t count = std::min(length, LONGEST_LINE);
    std::replace_copy(text, text + count, line, '\0', ' ');
    print_y += line_pitch;
    print_text(0, print_y, line, count);
}

void begin_next_page() {
    print_end_page();
    begin_page();
}

void count_print_line(int32_t* lines) {
    if (++*lines <= LINES_PER_PAGE)
        return;
    begin_next_page();
    *lines = 0;
}

bool end_print_document() {
    print_end_page();
    if (print_end())
        return true;
    show_print_box(PrintBox::NOT_COMPLETE, print_problem_text());
    return false;
}

void abandon_print_document() {
    print_end_page();
    print_abandon();
}

void report_print_error() {
    const char* reason = print_problem_text();
    show_print_box(PrintBox::NOT_STARTED, reason[0] != '\0' ? reason : "Unknown");
}

}  // namespace hexlane
