// find_view.cpp: the command Find: its dialog and the walk from match to match.

#include "search/match_view.h"
#include "search/search.h"
#include "search/search_texts.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

namespace {

// ---- The dialogs -------------------------------------------------------------------------------------

constexpr int16_t UP_RADIO = 111;
constexpr int16_t DOWN_RADIO = 112;

constexpr ControlSpec FIND_CONTROLS[] = {
    {100, ControlKind::TEXT, "Fi&nd What:", 0, 0, 1, 1, 0, 0, nullptr},
    {FIND_FIELD, ControlKind::FIELD, "", 0, 1, 1, 2, 40, 0, &SEARCH_TEXT_RULE},
    {110, ControlKind::FRAME, "Search Direction", 1, 1, 2, 2, 0, 0, nullptr},
    {UP_RADIO, ControlKind::RADIO, "&Up", 1, 1, 1, 1, 0, CONTROL_GROUP, nullptr},
    {DOWN_RADIO, ControlKind::RADIO, "&Down", 1, 2, 1, 1, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "&Find", 0, 3, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 1, 3, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec FIND_VIEW = {"IDD_FIND", "Find", 0, FIND_CONTROLS, 7};

constexpr ControlSpec NEXT_CONTROLS[] = {
    {REPLY_FIND_NEXT, ControlKind::BUTTON, "&Find Next", 0, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {REPLY_DONE, ControlKind::BUTTON, "&Done", 0, 1, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec NEXT_VIEW = {"IDD_NEXT_FIND", "Find", 0, NEXT_CONTROLS, 2, 300, 80};

bool find_goes_down;  // the dialog's answer

void fill_find_dialog(ViewHandle view) {
    if (!search_texts.find_opened)
        search_texts.find_text[0] = '\0';
    search_texts.find_opened = true;
    put_text(view, FIND_FIELD, search_texts.find_text);
    view_check(view, DOWN_RADIO, true);
}

void take_find_dialog(ViewHandle view) {
    view_get_text(view, FIND_FIELD, search_texts.find_text, sizeof search_texts.find_text);
    find_goes_down = view_checked(view, DOWN_RADIO);
}

int64_t find_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    return serve_answers(view, message, first, second, fill_find_dialog, take_find_dialog);
}

// ---- The walk ----------------------------------------------------------------------------------------

struct Find {
    SearchPattern pattern;
    RawScan scan;
    PointerShape pointer;
    bool found;
    bool failed;           // a row could not be read: the walk ends, and the message loop tells why
    int32_t unseen;        // rows with a match in text that they do not show
    int32_t first_unseen;  // the first that the walk has met
};

// Stops at each match in `row`. Gives whether the walk goes on.
bool find_in_row(Find* find, int32_t row) {
    uint8_t positions[ROW_BUFFER_SIZE];
    const int unseen = matches_unseen(find->pattern, row);
    if (unseen > 0 && find->unseen++ == 0)
        find->first_unseen = row;
    find->failed = unseen < 0;
    const int32_t count = find->failed ? 0 : find_candidates(find->pattern, positions);
    for (int32_t i = 0; i < count; ++i) {
        if (!matches_at(find->pattern, positions[i]))
            continue;
        find->found = true;
        end_wait(find->pointer);
        find->failed = ask_about_match(&NEXT_VIEW, row, positions[i], find->pattern) < 0;
        if (!find->failed)
            repaint_row(row, false);
        find->pointer = begin_wait();
        if (find->failed || child[0].replace_reply == REPLY_DONE)
            return false;
    }
    return !find->failed;
}

// Searches the rows from `first` to `last`. Gives whether the walk goes on.
bool find_down(Find* find, int32_t first, int32_t last) {
    for (int32_t row = first;; ++row) {
        row = next_row_to_search(&find->scan, find->pattern, row, last);
        if (row > last)
            return true;
        find->failed = !fetch_row(row);
        if (find->failed || !find_in_row(find, row))
            return false;
    }
}

// The same from `last` up to `first`.
bool find_up(Find* find, int32_t last, int32_t first) {
    for (int32_t row = last; row >= first; --row) {
        if (row % ROW_COUNT_STEP == 0)
            show_row_count(row);
        find->failed = !fetch_row(row);
        if (find->failed || !find_in_row(find, row))
            return false;
    }
    return true;
}

void tell_end(const Find& find) {
    if (find.failed)
        return;
    char unseen[UNSEEN_TEXT_SIZE] = "";
    if (find.unseen > 0)
        tell_unseen_matches(unseen, find.unseen, find.first_unseen);
    if (!find.found)
        show_search_box(SearchBox::NOT_FOUND, search_texts.find_text, unseen);
    else if (child[0].replace_reply != REPLY_DONE)
        show_search_box(SearchBox::SEARCH_COMPLETE, unseen);
}

// Begins with the whole of the caret's row, and wraps at the document's ends with no question.
void run_find(const char* text, bool down) {
    Find find = {};
    find.pointer = begin_wait();
    begin_scan(&find.scan);
    prepare_pattern(text, &find.pattern);
    const int32_t start = child[0].current_row;
    const int32_t last = child[0].last_file_row;
    if (down && find_down(&find, start, last))
        find_down(&find, 0, start - 1);
    if (!down && find_up(&find, start, 0))
        find_up(&find, last, start + 1);
    end_wait(find.pointer);
    show_position();
    tell_end(find);
}

}  // namespace

void command_find() {
    child[0].replace_reply = REPLY_NONE;
    const bool wanted = show_view(&FIND_VIEW, find_proc) == 1;
    set_caret_visible(false);
    if (wanted)
        run_find(search_texts.find_text, find_goes_down);
}

}  // namespace hexlane
