// move_to_view.cpp: the commands that bring a row to the top of the view: by its place in the document, or by
// the N word that it begins with.

#include "edit/block_commands.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "search/matching.h"
#include "search/search.h"
#include "search/search_texts.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "view/text_view.h"

#include <cstdlib>

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

void command_move_to_row() {
    show_view(&ROW_VIEW, row_proc);
    show_caret_row_at_top();
}

// A row that could not be read ends the search; the message loop tells why.
void command_move_to_line_number() {
    if (show_view(&LINE_VIEW, line_proc)) {
        const PointerShape pointer = begin_wait();
        const int32_t row = find_line_number(std::strtol(typed_number, nullptr, 10));
        end_wait(pointer);
        if (row >= 0)
            child[0].current_row = row;
        else if (row == LINE_MISSING)
            tell(SearchBox::LINE_NOT_FOUND, typed_number);
    }
    show_caret_row_at_top();
}

}  // namespace hexlane
