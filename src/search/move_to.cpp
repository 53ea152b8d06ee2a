// move_to.cpp: the commands that bring a row to the top of the view: by its place in the document, or by the
// N word that it begins with.

#include "edit/block_commands.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "search/search.h"
#include "search/search_internal.h"
#include "search/search_texts.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_bytes.h"
#include "store/row_table.h"
#include "view/text_view.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

// ---- The dialogs -------------------------------------------------------------------------------------

constexpr int16_t NUMBER_FIELD = 101;
constexpr int NUMBER_LIMIT = 9;  // digits of a number that is typed

constexpr InputRule NUMBER_RULE = {NUMBER_LIMIT, DIGITS};

constexpr ControlSpec ROW_CONTROLS[] = {
    {100, ControlKind::TEXT, "&ROW NO:", 0, 0, 1, 1, 0, 0, nullptr},
    {NUMBER_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, NUMBER_LIMIT, 0, &NUMBER_RULE},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 0, 2, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 1, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec ROW_VIEW = {"IDD_ROW_GOTO", "MOVE TO ROW", 0, ROW_CONTROLS, 4};

constexpr ControlSpec LINE_CONTROLS[] = {
    {100, ControlKind::TEXT, "&LINE NO:", 0, 0, 1, 1, 0, 0, nullptr},
    {NUMBER_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, NUMBER_LIMIT, 0, &NUMBER_RULE},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 0, 2, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 1, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec LINE_VIEW = {"IDD_LINE_GOTO", "MOVE TO LINE NUMBER", 0, LINE_CONTROLS, 4};

char typed_number[NUMBER_LIMIT + 1];

void tell(SearchBox box, const char* text) {
    message_beep(BoxIcon::EXCLAMATION);
    show_search_box(box, text);
}

// A number outside of the document keeps the dialog open.
void take_row_number(ViewHandle view) {
    const long number = std::strtol(typed_number, nullptr, 10);
    if (number >= 1 && number <= child[0].last_file_row) {
        child[0].current_row = static_cast<int32_t>(number) - 1;
        view_end(view, 1);
        return;
    }
    char highest[12];
    format_text(highest, sizeof highest, "%d", child[0].last_file_row);
    tell(SearchBox::ROW_RANGE, highest);
    view_focus_control(view, NUMBER_FIELD);
}

int64_t number_proc(ViewHandle view, uint32_t message, int64_t first, int64_t second,
                    void (*take)(ViewHandle)) {
    view_attach(view);
    if (message == WM_INITDIALOG)
        return 1;
    if (message == WM_COMMAND && low_word(first) == OK_BUTTON) {
        view_get_text(view, NUMBER_FIELD, typed_number, sizeof typed_number);
        take(view);
        return 0;
    }
    return view_default(view, message, first, second);
}

int64_t row_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    return number_proc(window, message, first, second, take_row_number);
}

// The row is looked for when the dialog has gone.
int64_t line_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    return number_proc(window, message, first, second, [](ViewHandle view) { view_end(view, 1); });
}

// ---- Looking for a line number -----------------------------------------------------------------------

// The decimal value of the digits behind an N. All values that are too large to be asked for are one.
struct LineNumber {
    static constexpr int64_t TOO_LARGE = 1000000000;
    int64_t value;
    bool any;
};

// Takes digits up to the first other character. Gives how many.
int32_t take_digits(const char* text, int32_t length, LineNumber* number) {
    int32_t taken = 0;
    while (taken < length && text[taken] >= '0' && text[taken] <= '9') {
        number->value = std::min<int64_t>(number->value * 10 + (text[taken] - '0'), LineNumber::TOO_LARGE);
        number->any = true;
        ++taken;
    }
    return taken;
}

// Digits that go on behind what a fetch shows of `row`. Gives 0 when they could not be read.
int take_unseen_digits(int32_t row, LineNumber* number) {
    RowSpan rest;
    if (!fetched_rest(row, &rest))
        return 0;
    while (rest.length > 0) {
        char piece[ROW_BUFFER_SIZE];
        const int32_t length = take_row_bytes(&rest, piece, sizeof piece);
        if (length < 0)
            return 0;
        if (take_digits(piece, length, number) < length)
            return 1;
    }
    return 1;
}

// Whether `row` begins with the line number; -1 when it could not be read.
int has_line_number(int32_t row, int64_t wanted) {
    if (!fetch_row(row))
        return -1;
    const char* text = child[0].row_text;
    if (text[0] != 'N' && text[0] != 'n')
        return 0;
    LineNumber number = {0, false};
    const auto length = static_cast<int32_t>(std::strlen(text));
    const bool goes_on = 1 + take_digits(text + 1, length - 1, &number) == ROW_FETCH_MAX && !row_had_lf;
    if (goes_on && !take_unseen_digits(row, &number))
        return -1;
    return number.any && number.value == wanted;
}

// What both commands end in, also when they were cancelled. A block would be off the screen then, where the
// next key would delete it unseen.
void show_caret_row_at_top() {
    child[0].caret_col = 0;
    child[0].caret_row = 0;
    block_dismiss();
    paint_view();
    place_caret_now();
}

}  // namespace

int32_t find_line_number(int64_t number) {
    const PointerShape pointer = begin_wait();
    int32_t found = LINE_MISSING;
    const int32_t end = program_end_row();
    for (int32_t row = 0; row < end && found == LINE_MISSING; ++row) {
        const int answer = has_line_number(row, number);
        if (answer != 0)
            found = answer > 0 ? row : LINE_UNREAD;
    }
    end_wait(pointer);
    return found;
}

void command_move_to_row() {
    show_view(&ROW_VIEW, row_proc);
    show_caret_row_at_top();
}

// A row that could not be read ends the search; the message loop tells why.
void command_move_to_line_number() {
    if (show_view(&LINE_VIEW, line_proc)) {
        const int32_t row = find_line_number(std::strtol(typed_number, nullptr, 10));
        if (row >= 0)
            child[0].current_row = row;
        else if (row == LINE_MISSING)
            tell(SearchBox::LINE_NOT_FOUND, typed_number);
    }
    show_caret_row_at_top();
}

}  // namespace hexlane
