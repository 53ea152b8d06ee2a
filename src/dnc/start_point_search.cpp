// start_point_search.cpp: the view SearchDlg: a row by its number, a line number, or a text.

#include "dnc/dnc_texts.h"
#include "dnc/row_index.h"
#include "dnc/start_point_internal.h"
#include "dnc/view_controls.h"
#include "frame/main_window.h"
#include "frame/views.h"
#include "platform/desktop.h"
#include "platform/text.h"

#include <charconv>
#include <cstring>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

enum SearchKind : int { TEXT_KIND, ROW_KIND, LINE_KIND };

constexpr int16_t ROW_RADIO = 101;
constexpr int16_t LINE_RADIO = 102;
constexpr int16_t TEXT_RADIO = 103;
constexpr int16_t TEXT_FIELD = 104;
constexpr int16_t NUMBER_FIELD = 105;
constexpr int16_t MESSAGE_LINE = 106;

constexpr InputRule TEXT_RULE = {30, nullptr, 0, 0, nullptr, nullptr, nullptr};
constexpr InputRule NUMBER_RULE = {10, "0123456789", 0, 0, nullptr, "Please enter in a number", "Search For"};

constexpr ControlSpec CONTROLS[] = {
    {ROW_RADIO, ControlKind::RADIO, "&Row", 0, 0, 1, 2, 0, CONTROL_GROUP, nullptr},
    {LINE_RADIO, ControlKind::RADIO, "&Line Number", 1, 0, 1, 2, 0, 0, nullptr},
    {TEXT_RADIO, ControlKind::RADIO, "&Text", 2, 0, 1, 2, 0, 0, nullptr},
    {TEXT_FIELD, ControlKind::FIELD, "", 3, 0, 1, 2, 30, 0, &TEXT_RULE},
    {NUMBER_FIELD, ControlKind::FIELD, "", 4, 0, 1, 2, 30, CONTROL_HIDDEN, &NUMBER_RULE},
    {MESSAGE_LINE, ControlKind::TEXT, "", 5, 0, 1, 2, 44, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "&Search", 6, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 6, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec SEARCH_VIEW = {"SearchDlg", "Search For", 0, CONTROLS,
                                  static_cast<int16_t>(std::size(CONTROLS))};

constexpr const char* ROW_OUT_OF_RANGE = "'Row Number' must be between 1 and %s";
constexpr const char* LINE_NOT_FOUND = "Line Number '%s' not found.";
constexpr const char* TEXT_NOT_FOUND = "'%s' not found.";

// They live as long as the program runs.
int search_kind = TEXT_KIND;
char search_text[50];

int32_t search_target = -1;

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool starts_with(const char* text, const char* wanted) {
    while (*wanted != '\0') {
        if (upper(*text++) != upper(*wanted++))
            return false;
    }
    return true;
}

// Looks for the text at the places whose capital is the text's first character.
bool row_matches(const char* row, const char* wanted, bool* candidate) {
    *candidate = false;
    for (const char* at = row; *at != '\0'; at++) {
        if (upper(*at) != wanted[0])
            continue;
        *candidate = true;
        if (starts_with(at, wanted))
            return true;
    }
    return false;
}

// From the cursor's row forward, or backward from behind the last row. A row without a candidate moves on
// with a wrap until the start is back; a row with a candidate but no match moves forward, and then the end of
// the file ends it.
int32_t find_text_row(const char* wanted) {
    if (wanted[0] == '\0')
        return -1;
    const int32_t rows = row_count() + 1;
    const int32_t start = start_point.cursor_row;
    const bool backward = start == row_count();
    char row[ROW_TEXT_LIMIT + 1];
    int32_t at = start;
    bool once = true;
    while (once || at != start) {
        once = false;
        bool candidate = false;
        read_row_text(at, row);
        if (row_matches(row, wanted, &candidate))
            return at;
        if (candidate) {
            if (++at >= rows)
                return -1;
        } else {
            at = (at + (backward ? rows - 1 : 1)) % rows;
        }
    }
    return -1;
}

int32_t find_line_row(uint64_t number) {
    char row[ROW_TEXT_LIMIT + 1];
    for (int32_t at = 0; at < row_count(); at++) {
        read_row_text(at, row);
        uint64_t found = 0;
        if (upper(row[0]) == 'N' &&
            std::from_chars(row + 1, row + std::strlen(row), found).ec == std::errc() && found == number)
            return at;
    }
    return -1;
}

void say(ViewHandle view, const char* format, const char* argument) {
    char text[120];
    format_text(text, sizeof text, format, argument);
    put_text(view, MESSAGE_LINE, text);
    message_beep(BoxIcon::EXCLAMATION);
}

void show_kind(ViewHandle view) {
    if (search_kind == TEXT_KIND) {
        view_hide_control(view, NUMBER_FIELD);
        view_show_control(view, TEXT_FIELD);
    } else {
        view_hide_control(view, TEXT_FIELD);
        view_show_control(view, NUMBER_FIELD);
    }
    put_text(view, MESSAGE_LINE, "");
}

int32_t search(ViewHandle view) {
    char typed[50];
    view_get_text(view, search_kind == TEXT_KIND ? TEXT_FIELD : NUMBER_FIELD, typed, sizeof typed);
    copy_text(search_text, sizeof search_text, typed);
    uint64_t number = 0;
    std::from_chars(typed, typed + std::strlen(typed), number);
    int32_t found = -1;
    const PointerShape pointer = begin_wait();
    switch (search_kind) {
    case ROW_KIND:
        if (number >= 1 && number <= static_cast<uint64_t>(row_count())) {
            found = static_cast<int32_t>(number) - 1;
        } else {
            format_text(typed, sizeof typed, "%d", row_count());
            say(view, ROW_OUT_OF_RANGE, typed);
        }
        break;
    case LINE_KIND:
        found = find_line_row(number);
        if (found < 0)
            say(view, LINE_NOT_FOUND, typed);
        break;
    default:
        found = find_text_row(typed);
        if (found < 0)
            say(view, TEXT_NOT_FOUND, typed);
    }
    end_wait(pointer);
    return found;
}

int64_t search_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        view_check(view,
                   search_kind == ROW_KIND    ? ROW_RADIO
                   : search_kind == LINE_KIND ? LINE_RADIO
                                              : TEXT_RADIO,
                   true);
        put_text(view, search_kind == TEXT_KIND ? TEXT_FIELD : NUMBER_FIELD, search_text);
        show_kind(view);
        return 1;
    }
    const int id = message == WM_COMMAND ? low_word(first) : 0;
    if (id == ROW_RADIO || id == LINE_RADIO || id == TEXT_RADIO) {
        search_kind = id == ROW_RADIO ? ROW_KIND : id == LINE_RADIO ? LINE_KIND : TEXT_KIND;
        show_kind(view);
        return 1;
    }
    if (id == OK_BUTTON) {
        search_target = search(view);
        if (search_target >= 0)
            view_end(view, 1);
        return 1;
    }
    return view_default(view, message, first, second);
}

}  // namespace

void show_search_for() {
    if (show_view(&SEARCH_VIEW, search_proc) == 1)
        go_to_row(search_target);
}

}  // namespace hexlane
