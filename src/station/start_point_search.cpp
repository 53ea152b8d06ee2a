// start_point_search.cpp: the view SearchDlg: a row by its number, a line number, or a text.

#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/row_index.h"
#include "station/start_point_internal.h"
#include "station/station_texts.h"

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

constexpr int LONGEST_TEXT = 30;                          // characters
constexpr std::size_t FIELD_SIZE = 3 * LONGEST_TEXT + 1;  // in UTF-8

constexpr InputRule TEXT_RULE = {.limit = LONGEST_TEXT, .characters = true};
constexpr InputRule NUMBER_RULE = {10, DIGITS, 0, 0, nullptr, "Please enter in a number", "Search For"};

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
char search_text[FIELD_SIZE];

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

// From the cursor's row forward, or backward from behind the last row, round the ends of the file until the
// start is back. From the first row with a candidate but no match on it goes forward alone, to the end of the
// file.
int32_t find_text_row(const char* wanted) {
    if (wanted[0] == '\0')
        return -1;
    const int32_t rows = row_count() + 1;
    const int32_t start = start_point.cursor_row;
    const int32_t step = start == row_count() ? rows - 1 : 1;
    bool round = true;
    for (int32_t at = start; at < rows;) {
        char row[ROW_TEXT_LIMIT + 1];
        bool candidate = false;
        read_row_text(at, row);
        if (row_matches(row, wanted, &candidate))
            return at;
        round = round && !candidate;
        at = round ? static_cast<int32_t>((static_cast<int64_t>(at) + step) % rows) : at + 1;
        if (round && at == start)
            return -1;
    }
    return -1;
}

int32_t find_line_row(const char* typed) {
    uint64_t number = 0;
    if (std::from_chars(typed, typed + std::strlen(typed), number).ec != std::errc())
        return -1;
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

int kind_picked(ViewHandle view) {
    return view_checked(view, ROW_RADIO) ? ROW_KIND : view_checked(view, LINE_RADIO) ? LINE_KIND : TEXT_KIND;
}

void show_fields(ViewHandle view) {
    const bool text = kind_picked(view) == TEXT_KIND;
    view_show_control(view, text ? TEXT_FIELD : NUMBER_FIELD);
    view_hide_control(view, text ? NUMBER_FIELD : TEXT_FIELD);
    put_text(view, MESSAGE_LINE, "");
}

// Gives the row, or -1 after a message.
int32_t find_by_row(ViewHandle view) {
    char typed[FIELD_SIZE];
    view_get_text(view, NUMBER_FIELD, typed, sizeof typed);
    uint64_t number = 0;
    std::from_chars(typed, typed + std::strlen(typed), number);
    if (number >= 1 && number <= static_cast<uint64_t>(row_count()))
        return static_cast<int32_t>(number) - 1;
    format_text(typed, sizeof typed, "%d", row_count());
    say(view, ROW_OUT_OF_RANGE, typed);
    return -1;
}

int32_t find_by_line(ViewHandle view) {
    char typed[FIELD_SIZE];
    view_get_text(view, NUMBER_FIELD, typed, sizeof typed);
    const int32_t found = find_line_row(typed);
    if (found < 0)
        say(view, LINE_NOT_FOUND, typed);
    return found;
}

int32_t find_by_text(ViewHandle view) {
    view_get_text(view, TEXT_FIELD, search_text, sizeof search_text);
    char bytes[FIELD_SIZE];
    // A character that no row can hold makes the text one that no row holds.
    const int32_t found = text_to_bytes(bytes, sizeof bytes, search_text) ? find_text_row(bytes) : -1;
    if (found < 0)
        say(view, TEXT_NOT_FOUND, search_text);
    return found;
}

int32_t search(ViewHandle view) {
    search_kind = kind_picked(view);
    const PointerShape pointer = begin_wait();
    look_at_file_again();
    const int32_t found = search_kind == ROW_KIND    ? find_by_row(view)
                          : search_kind == LINE_KIND ? find_by_line(view)
                                                     : find_by_text(view);
    end_wait(pointer);
    return found;
}

void open_search(ViewHandle view) {
    view_check(view,
               search_kind == ROW_KIND    ? ROW_RADIO
               : search_kind == LINE_KIND ? LINE_RADIO
                                          : TEXT_RADIO,
               true);
    put_text(view, TEXT_FIELD, search_text);
    show_fields(view);
    view_focus_control(view, search_kind == TEXT_KIND ? TEXT_FIELD : NUMBER_FIELD);
}

int64_t search_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        open_search(view);
        return 1;
    }
    const int id = message == WM_COMMAND ? low_word(first) : 0;
    if (id == ROW_RADIO || id == LINE_RADIO || id == TEXT_RADIO) {
        show_fields(view);
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
