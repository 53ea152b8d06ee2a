// replace_view.cpp: the command Find and Replace: its dialog and the walk that asks at each match, or asks
// nothing.

#include "platform/text.h"
#include "search/match_view.h"
#include "search/search.h"
#include "search/search_texts.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "store/store_fault.h"
#include "view/text_view.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

// ---- The dialogs -------------------------------------------------------------------------------------

constexpr int16_t FIND_NEXT_BUTTON = 1;
constexpr int16_t REPLACE_ALL_BUTTON = 3;

constexpr ControlSpec REPLACE_CONTROLS[] = {
    {100, ControlKind::TEXT, "Fi&nd What:", 0, 0, 1, 1, 0, 0, nullptr},
    {FIND_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, 40, 0, &SEARCH_TEXT_RULE},
    {110, ControlKind::TEXT, "Replace &With:", 1, 0, 1, 1, 0, 0, nullptr},
    {REPLACE_FIELD, ControlKind::FIELD, "", 1, 1, 1, 1, 40, 0, &SEARCH_TEXT_RULE},
    {FIND_NEXT_BUTTON, ControlKind::BUTTON, "&Find Next", 0, 2, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {REPLACE_ALL_BUTTON, ControlKind::BUTTON, "Replace &All", 1, 2, 1, 1, 0, 0, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 2, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec REPLACE_VIEW = {"IDD_REPLACE", "FIND AND REPLACE", 0, REPLACE_CONTROLS, 7};

constexpr ControlSpec STEP_CONTROLS[] = {
    {REPLY_REPLACE, ControlKind::BUTTON, "&Replace", 0, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {REPLY_FIND_NEXT, ControlKind::BUTTON, "&Find Next", 0, 1, 1, 1, 0, 0, nullptr},
    {REPLY_REPLACE_ALL, ControlKind::BUTTON, "Replace &All", 0, 2, 1, 1, 0, 0, nullptr},
    {REPLY_DONE, ControlKind::BUTTON, "&Done", 0, 3, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec STEP_VIEW = {"IDD_REPNEXT", "Replace", 0, STEP_CONTROLS, 4, 300, 80};

bool find_go;  // the dialog asks for a walk that stops at each match

void fill_replace_dialog(ViewHandle view) {
    if (!search_texts.replace_opened) {
        search_texts.find_text[0] = '\0';
        search_texts.replace_text[0] = '\0';
    }
    search_texts.replace_opened = true;
    put_text(view, FIND_FIELD, search_texts.find_text);
    put_text(view, REPLACE_FIELD, search_texts.replace_text);
}

int64_t replace_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG) {
        fill_replace_dialog(window);
        return 1;
    }
    const int button = message == WM_COMMAND ? low_word(first) : 0;
    if (button == FIND_NEXT_BUTTON || button == REPLACE_ALL_BUTTON) {
        view_get_text(window, FIND_FIELD, search_texts.find_text, sizeof search_texts.find_text);
        view_get_text(window, REPLACE_FIELD, search_texts.replace_text, sizeof search_texts.replace_text);
        find_go = button == FIND_NEXT_BUTTON;
        child[0].replace_reply = find_go ? REPLY_NONE : REPLY_REPLACE_ALL;
        view_end(window, 1);
        return 0;
    }
    return view_default(window, message, first, second);
}

// ---- The walk ----------------------------------------------------------------------------------------

struct Replacing {
    SearchPattern pattern;
    RawScan scan;
    char text[SEARCH_TEXT_SIZE];  // what is put in, as bytes of a row
    int32_t length;               // of `text`
    PointerShape pointer;
    bool in_batch;  // nothing is asked any more: rows are stored as a batch
    bool found;
    bool failed;         // a row could not be read or stored: the walk ends
    bool stays;          // the row has a match that it does not show: nothing in it is replaced
    int32_t left;        // rows in which a match was left
    int32_t first_left;  // the first of them
    int32_t last_left;   // -1: none yet
};

bool replaces_all() {
    return child[0].replace_reply == REPLY_REPLACE_ALL;
}

// Shows the match and asks. Gives whether it is to be replaced; a match that stays is drawn as before.
bool ask_to_replace(Replacing* run, int32_t row, int32_t index) {
    end_wait(run->pointer);
    const int reply = ask_about_match(&STEP_VIEW, row, index, run->pattern);
    run->pointer = begin_wait();
    run->failed = reply < 0;
    if (reply == REPLY_REPLACE || reply == REPLY_REPLACE_ALL)
        return true;
    if (!run->failed)
        repaint_row(row, false);
    return false;
}

void count_left_row(Replacing* run, int32_t row) {
    if (run->last_left == row)
        return;
    if (run->left++ == 0)
        run->first_left = row;
    run->last_left = row;
}

// Puts the replacement into row_text at `index` and stores the row. Gives whether the row has changed: a
// match whose row would outgrow row_text is left, and so is each in a row that must stay.
bool put_replacement(Replacing* run, int32_t row, int32_t index) {
    if (run->stays || !replace_match(run->pattern, index, run->text, run->length)) {
        count_left_row(run, row);
        if (!replaces_all())
            repaint_row(row, false);
        return false;
    }
    if (!commit_row(row)) {
        run->failed = true;
        return false;
    }
    child[0].modified = 1;
    if (!replaces_all())
        repaint_row(row, true);
    return true;
}

// Takes the candidates of a row, which row_text holds, from left to right. Each was found before the first
// replacement and moves with the text behind it.
void replace_in_row(Replacing* run, int32_t row) {
    const int unseen = matches_unseen(run->pattern, row);
    run->failed = unseen < 0;
    run->stays = unseen > 0;
    if (run->stays) {
        run->found = true;
        count_left_row(run, row);
    }
    uint8_t positions[ROW_BUFFER_SIZE];
    const int32_t count = find_candidates(run->pattern, positions);
    int32_t shift = 0;
    bool changed = false;
    for (int32_t i = 0; i < count && !run->failed; ++i) {
        const int32_t index = positions[i] + shift;
        if (!matches_at(run->pattern, index))
            continue;
        run->found = true;
        const bool wanted = replaces_all() || ask_to_replace(run, row, index);
        if (wanted && put_replacement(run, row, index)) {
            changed = true;
            shift += run->length - run->pattern.length;
        }
        if (child[0].replace_reply == REPLY_DONE)
            return;
    }
    if (changed && !run->failed && !replaces_all())
        repaint_row(row, child[0].replace_reply == REPLY_REPLACE);
}

// Takes the rows from `first` to `last`. Gives the row that the walk ended at, -1 when it goes on.
int32_t replace_rows(Replacing* run, int32_t first, int32_t last) {
    for (int32_t row = first;; ++row) {
        row = next_row_to_search(&run->scan, run->pattern, row, last);
        if (row > last)
            return -1;
        if (replaces_all() && !run->in_batch) {
            begin_row_batch();
            run->in_batch = true;
        }
        run->failed = !fetch_row(row);
        if (!run->failed)
            replace_in_row(run, row);
        if (run->failed || child[0].replace_reply == REPLY_DONE)
            return row;
    }
}

// Down from the caret's row and round to the row in front of it. Gives the row that the walk ended at.
int32_t walk_rows(Replacing* run) {
    const int32_t start = child[0].current_row;
    begin_scan(&run->scan);
    int32_t row = replace_rows(run, start, child[0].last_file_row);
    if (row < 0)
        row = replace_rows(run, 0, start - 1);
    if (run->in_batch && !end_row_batch())
        run->failed = true;
    return row < 0 ? unsaved_row.row : row;
}

// Nothing was painted while all were replaced: the view stands at the top of the document behind it, with the
// caret on its screen row.
void show_document_top() {
    child[0].current_row = child[0].caret_row;
    paint_view();
    place_caret_now();
}

void tell_end(const Replacing& run, int32_t row) {
    char number[12];
    if (run.failed) {
        format_text(number, sizeof number, "%d", row + 1);
        show_search_box(SearchBox::REPLACING_STOPPED, number);
    } else if (!run.found) {
        show_search_box(SearchBox::NOT_FOUND, search_texts.find_text);
    } else if (child[0].replace_reply != REPLY_DONE) {
        show_search_box(SearchBox::REPLACE_COMPLETE);
    }
    if (run.left > 0) {
        char count[12];
        format_text(count, sizeof count, "%d", run.left);
        format_text(number, sizeof number, "%d", run.first_left + 1);
        show_search_box(SearchBox::ROWS_LEFT, count, number);
    }
}

void run_replace(const char* text, const char* replacement) {
    Replacing run = {};
    if (!text_to_bytes(run.text, sizeof run.text, replacement)) {
        show_search_box(SearchBox::NOT_IN_TABLE, replacement);
        return;
    }
    if (!edits_allowed()) {
        message_beep(BoxIcon::EXCLAMATION);
        return;
    }
    run.pointer = begin_wait();
    run.last_left = -1;
    run.length = static_cast<int32_t>(std::strlen(run.text));
    prepare_pattern(text, &run.pattern);
    const int32_t row = walk_rows(&run);
    end_wait(run.pointer);
    if (replaces_all())
        show_document_top();
    show_position();
    tell_end(run, row);
}

}  // namespace

void command_find_and_replace() {
    find_go = false;
    child[0].replace_reply = REPLY_NONE;
    show_view(&REPLACE_VIEW, replace_proc);
    set_caret_visible(false);
    if (find_go || replaces_all())
        run_replace(search_texts.find_text, search_texts.replace_text);
}

}  // namespace hexlane
