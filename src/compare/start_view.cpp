// start_view.cpp: the view IDD_START_COMPARE: options, counters, and the run between Compare and Stop.

#include <charconv>
#include <cstring>
#include <iterator>

#include "compare/compare.h"
#include "compare/compare_texts.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "shell/view_controls.h"
#include "shell/views.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t COMPARE_BUTTON = 1;
constexpr int16_t STOP_BUTTON = 2;
constexpr int16_t LOOK_AHEAD_FIELD = 101;
constexpr int16_t SPACES_BOX = 102;
constexpr int16_t MATCHES_TEXT = 103;
constexpr int16_t MODS_TEXT = 104;
constexpr int16_t INSERTS_TEXT = 105;
constexpr int16_t DELETES_TEXT = 106;

constexpr int COUNTER_TIMER = 1;
constexpr int COUNTER_PERIOD_MS = 500;
constexpr uint16_t COUNTER_WIDTH = 10;  // digits

constexpr const char* DEFAULT_LOOK_AHEAD_TEXT = "20";

constexpr ControlSpec START_CONTROLS[] = {
    {201, ControlKind::TEXT, "Lines to ", 0, 0, 1, 1, 0, 0, nullptr},
    {202, ControlKind::TEXT, "&Look Ahead :", 1, 0, 1, 1, 0, 0, nullptr},
    {LOOK_AHEAD_FIELD, ControlKind::FIELD, "", 1, 1, 1, 1, 4, 0, nullptr},
    {SPACES_BOX, ControlKind::CHECK, "Ignore &Spaces", 2, 0, 1, 2, 0, CONTROL_CHECKED, nullptr},
    {203, ControlKind::TEXT, "Matches:", 0, 2, 1, 1, 0, 0, nullptr},
    {MATCHES_TEXT, ControlKind::TEXT, "", 0, 3, 1, 1, COUNTER_WIDTH, CONTROL_SUNKEN, nullptr},
    {204, ControlKind::TEXT, "Mods    :", 1, 2, 1, 1, 0, 0, nullptr},
    {MODS_TEXT, ControlKind::TEXT, "", 1, 3, 1, 1, COUNTER_WIDTH, CONTROL_SUNKEN, nullptr},
    {205, ControlKind::TEXT, "Inserts  :", 2, 2, 1, 1, 0, 0, nullptr},
    {INSERTS_TEXT, ControlKind::TEXT, "", 2, 3, 1, 1, COUNTER_WIDTH, CONTROL_SUNKEN, nullptr},
    {206, ControlKind::TEXT, "Deletes :", 3, 2, 1, 1, 0, 0, nullptr},
    {DELETES_TEXT, ControlKind::TEXT, "", 3, 3, 1, 1, COUNTER_WIDTH, CONTROL_SUNKEN, nullptr},
    {COMPARE_BUTTON, ControlKind::BUTTON, "&Compare", 4, 0, 1, 2, 0, CONTROL_DEFAULT | CONTROL_CENTERED,
     nullptr},
    {STOP_BUTTON, ControlKind::BUTTON, "S&top", 4, 2, 1, 2, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};

constexpr ViewSpec START_VIEW = {"IDD_START_COMPARE", "COMPARE FILES", 0, START_CONTROLS,
                                 std::size(START_CONTROLS)};

struct Counter {
    int16_t text;
    int64_t Compare::*value;
};
constexpr Counter COUNTERS[] = {{MATCHES_TEXT, &Compare::matches},
                                {MODS_TEXT, &Compare::mods},
                                {INSERTS_TEXT, &Compare::inserts},
                                {DELETES_TEXT, &Compare::deletes}};
int64_t shown_counts[std::size(COUNTERS)];

void open_view(ViewHandle view) {
    compare.state = CompareState::READY;
    compare.look_ahead = DEFAULT_LOOK_AHEAD;
    for (int64_t& count : shown_counts)
        count = 0;
    put_text(view, LOOK_AHEAD_FIELD, DEFAULT_LOOK_AHEAD_TEXT);
    start_timer(view, COUNTER_TIMER, COUNTER_PERIOD_MS);
}

// Anything but 1 to LONGEST_LOOK_AHEAD is put right at once. A field that is empty only waits for its next
// character, until the run begins.
void take_look_ahead(ViewHandle view, bool may_be_empty) {
    char text[16];
    view_get_text(view, LOOK_AHEAD_FIELD, text, sizeof text);
    if (may_be_empty && text[0] == '\0')
        return;
    int32_t rows = 0;
    std::from_chars(text, text + std::strlen(text), rows);
    if (rows >= 1 && rows <= LONGEST_LOOK_AHEAD)
        compare.look_ahead = rows;
    else
        put_text(view, LOOK_AHEAD_FIELD, DEFAULT_LOOK_AHEAD_TEXT);
}

void show_counters(ViewHandle view) {
    for (std::size_t i = 0; i < std::size(COUNTERS); i++) {
        const int64_t count = compare.*COUNTERS[i].value;
        if (count == shown_counts[i])
            continue;
        shown_counts[i] = count;
        char text[24];
        format_text(text, sizeof text, "%lld", static_cast<long long>(count));
        put_text(view, COUNTERS[i].text, text);
    }
}

void tell_fault() {
    const FileError reason = last_file_error();
    const char* path = nullptr;
    switch (compare_fault(&path)) {
    case CompareFault::TOO_LARGE:
        show_compare_box(CompareBox::TOO_LARGE, path);
        break;
    case CompareFault::NO_RECORDS:
        show_compare_box(CompareBox::NO_RECORDS, file_error_text(reason));
        break;
    default:
        show_compare_box(CompareBox::NOT_OPENED, path, file_error_text(reason));
    }
}

// Behind a Stop that is only so far known, which stands in a second paragraph.
void tell_identical() {
    char rows[24];
    format_text(rows, sizeof rows, "%lld", static_cast<long long>(compare.last_record + 1));
    if (compare.cut_short)
        show_compare_box(CompareBox::IDENTICAL_SO_FAR, rows);
    else
        show_compare_box(CompareBox::IDENTICAL);
}

void press_compare(ViewHandle view) {
    if (compare.state != CompareState::READY)
        return;
    take_look_ahead(view, false);
    compare.state = CompareState::DONE;
    compare.ignore_spaces = view_checked(view, SPACES_BOX);
    const int done = run_compare();
    kill_timer(view, COUNTER_TIMER);
    if (!done) {
        tell_fault();
        compare.state = CompareState::READY;
    } else if (compare.mods == 0 && compare.deletes == 0 && compare.inserts == 0) {
        // What has changed meanwhile cannot be called identical.
        if (!tell_disturbance())
            tell_identical();
        compare.state = CompareState::IDENTICAL;
    } else {
        tell_disturbance();
    }
    view_end(view, 1);
}

// During a run the view stays up: press_compare is under way further out, and closes it.
void press_stop(ViewHandle view) {
    if (compare.state != CompareState::READY) {
        stop_compare();
        return;
    }
    kill_timer(view, COUNTER_TIMER);
    view_end(view, 0);
}

int64_t start_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    switch (message) {
    case WM_INITDIALOG:
        open_view(view);
        return 1;
    case WM_TIMER:
        if (compare.state != CompareState::READY)
            show_counters(view);
        return 1;
    case WM_CLOSE:
        press_stop(view);
        return 1;
    case WM_COMMAND:
        if (low_word(first) == LOOK_AHEAD_FIELD)
            take_look_ahead(view, true);
        else if (low_word(first) == COMPARE_BUTTON)
            press_compare(view);
        else if (low_word(first) == STOP_BUTTON)
            press_stop(view);
        return 1;
    default:
        return view_default(view, message, first, second);
    }
}

}  // namespace

bool tell_disturbance() {
    const char* path = compare_was_disturbed();
    if (path == nullptr)
        return false;
    if (!compare.disturbance_told) {
        compare.disturbance_told = true;
        show_compare_box(CompareBox::DISTURBED, path);
    }
    return true;
}

void start_compare_dialog() {
    show_view(&START_VIEW, start_proc);
}

}  // namespace hexlane
