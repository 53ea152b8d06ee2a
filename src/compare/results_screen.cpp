// results_screen.cpp: the view IDD_SCRCOMP: drawing, keys, scroll bar, searches; and IDD_COMPAREPRINT.

#include <algorithm>
#include <cstring>
#include <iterator>

#include "compare/compare.h"
#include "compare/result_line.h"
#include "compare/results_walk.h"
#include "platform/desktop.h"
#include "platform/printing.h"
#include "platform/surface.h"
#include "platform/text.h"
#include "shell/status_line.h"
#include "shell/view_controls.h"
#include "shell/views.h"

namespace hexlane {

using namespace platform;

namespace {

// ---- The views ---------------------------------------------------------------------------------------

constexpr int16_t LEFT_TITLE = 101;
constexpr int16_t RIGHT_TITLE = 102;
constexpr int16_t LIST_PANE = 103;
constexpr int16_t LEFT_PANE = 104;
constexpr int16_t RIGHT_PANE = 105;
constexpr int16_t FORWARD_BUTTON = 111;
constexpr int16_t BACKWARD_BUTTON = 112;
constexpr int16_t PRINT_BUTTON = 113;
constexpr int16_t EXIT_BUTTON = 2;

constexpr uint8_t PANE_LINES = 24;
constexpr uint16_t PANE_COLUMNS = 100;
constexpr uint8_t BELOW_LIST = 1 + PANE_LINES;  // grid row

// What the panes show; column 0 stays free.
constexpr int32_t LIST_ROWS = PANE_LINES - 1;
constexpr int32_t LIST_COLUMNS = PANE_COLUMNS - 1;
constexpr int32_t HALF_WIDTH = (LIST_COLUMNS - MARKER_WIDTH) / 2;
constexpr int32_t DETAIL_COLUMNS = PANE_COLUMNS - 2;
static_assert(2 * HALF_WIDTH + MARKER_WIDTH <= RESULT_LINE_SIZE);

constexpr ControlSpec RESULT_CONTROLS[] = {
    {LEFT_TITLE, ControlKind::TEXT, "File 1", 0, 0, 1, 3, 0, CONTROL_CENTERED, nullptr},
    {201, ControlKind::TEXT, "Diffs.", 0, 3, 1, 2, 0, CONTROL_CENTERED, nullptr},
    {RIGHT_TITLE, ControlKind::TEXT, "File 2", 0, 5, 1, 3, 0, CONTROL_CENTERED, nullptr},
    {LIST_PANE, ControlKind::PANE, "Compared rows", 1, 0, PANE_LINES, 8, PANE_COLUMNS, 0, nullptr},
    {202, ControlKind::TEXT, " Left (current file)", BELOW_LIST, 0, 1, 8, 0, 0, nullptr},
    {LEFT_PANE, ControlKind::PANE, "Left row", BELOW_LIST + 1, 0, 1, 8, PANE_COLUMNS, CONTROL_SUNKEN,
     nullptr},
    {203, ControlKind::TEXT, "Right (original file)", BELOW_LIST + 2, 0, 1, 8, 0, 0, nullptr},
    {RIGHT_PANE, ControlKind::PANE, "Right row", BELOW_LIST + 3, 0, 1, 8, PANE_COLUMNS, CONTROL_SUNKEN,
     nullptr},
    {FORWARD_BUTTON, ControlKind::BUTTON, "SEARCH &FWD", BELOW_LIST + 4, 0, 1, 2, 0, CONTROL_DEFAULT,
     nullptr},
    {BACKWARD_BUTTON, ControlKind::BUTTON, "SEARCH &REV", BELOW_LIST + 4, 2, 1, 2, 0, 0, nullptr},
    {PRINT_BUTTON, ControlKind::BUTTON, "&PRINT RESULTS", BELOW_LIST + 4, 4, 1, 2, 0, 0, nullptr},
    {EXIT_BUTTON, ControlKind::BUTTON, "E&XIT", BELOW_LIST + 4, 6, 1, 2, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec RESULT_VIEW = {"IDD_SCRCOMP", "Compare Results", 0, RESULT_CONTROLS,
                                  std::size(RESULT_CONTROLS)};

constexpr int16_t PRINTER_TEXT = 101;
constexpr int16_t DIFFERENCES_RADIO = 103;

constexpr ControlSpec PRINT_CONTROLS[] = {
    {PRINTER_TEXT, ControlKind::TEXT, "Default Printer", 0, 0, 1, 2, 0, 0, nullptr},
    {201, ControlKind::FRAME, "Print Options", 1, 0, 2, 2, 0, 0, nullptr},
    {102, ControlKind::RADIO, "&All", 1, 0, 1, 2, 0, CONTROL_GROUP | CONTROL_CHECKED, nullptr},
    {DIFFERENCES_RADIO, ControlKind::RADIO, "&Differences Only", 2, 0, 1, 2, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 3, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 3, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec PRINT_VIEW = {"IDD_COMPAREPRINT", "Print Compare Results", 0, PRINT_CONTROLS,
                                 std::size(PRINT_CONTROLS)};

constexpr std::size_t PRINTER_NAME_SIZE = 51;  // bytes, the NUL included

ResultsWalk walk;
ResultsAnswer answer;

// ---- Drawing -----------------------------------------------------------------------------------------

void draw_line(WindowHandle pane, int32_t y, bool highlighted) {
    ResultLine line;
    format_result_line(top_record(walk) + y, HALF_WIDTH, &line);
    const Color ink = highlighted ? WHITE : BLACK;
    const Color paper = highlighted ? BLACK : WHITE;
    draw_text(pane, CELL_WIDTH, y * CELL_HEIGHT, line.text, line.length, ink, paper);
    draw_text(pane, (HALF_WIDTH + 1) * CELL_WIDTH, y * CELL_HEIGHT, line.text + HALF_WIDTH, MARKER_WIDTH,
              marker_color(line.kind, highlighted), paper);
}

void draw_detail(WindowHandle pane, const char* text, int32_t count) {
    char row[PANE_COLUMNS];
    std::memset(row, ' ', sizeof row);
    std::copy_n(text, std::min(count, DETAIL_COLUMNS), row + 1);
    draw_text(pane, 0, 0, row, PANE_COLUMNS, BLACK, WHITE);
}

// The first character that makes a modified row differ is marked, on the left alone.
void draw_details(ViewHandle view) {
    ResultLine line;
    format_result_line(walk.current_record, HALF_WIDTH, &line);
    const WindowHandle left = view_pane(view, LEFT_PANE);
    draw_detail(left, line.left, line.left_count);
    draw_detail(view_pane(view, RIGHT_PANE), line.right, line.right_count);
    const int32_t at = line.kind == MODIFIED_ROWS ? first_difference(line) : -1;
    if (at < 0 || at >= DETAIL_COLUMNS)
        return;
    constexpr Color YELLOW = 0x00FFFF;
    constexpr Color RED = 0x0000FF;
    const char* marked = at < line.left_count ? line.left + at : " ";
    draw_text(left, (at + 1) * CELL_WIDTH, 0, marked, 1, YELLOW, RED);
}

void draw_highlight(ViewHandle view) {
    draw_line(view_pane(view, LIST_PANE), walk.cursor_line, true);
    set_scroll_position(view_pane(view, LIST_PANE), walk.scroll_pos);
}

void draw_list(ViewHandle view) {
    for (int32_t y = 0; y <= LIST_ROWS; y++)
        draw_line(view_pane(view, LIST_PANE), y, false);
}

void draw_all(ViewHandle view) {
    put_text(view, LEFT_TITLE, compare.left.title);
    put_text(view, RIGHT_TITLE, compare.right.title);
    set_scroll_range(view_pane(view, LIST_PANE), 0, walk.scroll_max);
    draw_list(view);
    draw_details(view);
    draw_highlight(view);
}

// ---- Moves -------------------------------------------------------------------------------------------

// Makes a move and shows what it has changed.
template <typename Move>
void move_by(ViewHandle view, Move move) {
    const int64_t top_before = top_record(walk);
    const int32_t line_before = walk.cursor_line;
    move();
    if (top_record(walk) != top_before)
        draw_list(view);
    else
        draw_line(view_pane(view, LIST_PANE), line_before, false);
    draw_details(view);
    draw_highlight(view);
    tell_disturbance();
}

struct WalkKey {
    int key;
    int request;  // of the scroll bar, -1 for none: lines do not move its thumb from the keyboard
    void (*move)(ResultsWalk* walk);
};
constexpr int NO_KEY = 0;
constexpr int NO_REQUEST = -1;
constexpr WalkKey MOVES[] = {
    {VK_HOME, SB_TOP, walk_home},        {VK_END, SB_BOTTOM, walk_end},
    {VK_PRIOR, SB_PAGEUP, walk_page_up}, {VK_NEXT, SB_PAGEDOWN, walk_page_down},
    {VK_UP, NO_REQUEST, walk_up},        {VK_DOWN, NO_REQUEST, walk_down},
    {NO_KEY, SB_LINEUP, walk_line_up},   {NO_KEY, SB_LINEDOWN, walk_line_down},
};

void press_key(ViewHandle view, int key) {
    for (const WalkKey& entry : MOVES) {
        if (entry.key != key)
            continue;
        move_by(view, [&entry] { entry.move(&walk); });
        show_status(STATUS_BLANK);
    }
}

void scroll_list(ViewHandle view, int request, int position) {
    if (request == SB_THUMBPOSITION) {
        move_by(view, [position] { walk_to_thumb(&walk, position); });
        return;
    }
    for (const WalkKey& entry : MOVES) {
        if (entry.request == request)
            move_by(view, [&entry] { entry.move(&walk); });
    }
}

// The keys go on acting on the list behind a press, of this button as of the one that prints.
void search(ViewHandle view, bool forward) {
    view_focus_control(view, LIST_PANE);
    show_status(STATUS_SEARCHING);
    const int64_t found = find_difference(walk.current_record + (forward ? 1 : -1), forward);
    if (found < 0) {
        message_beep(BoxIcon::EXCLAMATION);
        show_status(STATUS_NO_FURTHER_DIFFERENCES);
        return;
    }
    move_by(view, [found, forward] {
        if (forward)
            walk_forward_to(&walk, found);
        else
            walk_backward_to(&walk, found);
    });
    show_status(STATUS_BLANK);
}

// ---- Printing ----------------------------------------------------------------------------------------

void show_printer(ViewHandle view) {
    char name[PRINTER_NAME_SIZE];
    put_text(view, PRINTER_TEXT, default_printer(name, sizeof name) ? name : "No printer: to a PDF file");
}

void take_print_options(ViewHandle view) {
    answer.differences_only = view_checked(view, DIFFERENCES_RADIO);
}

int64_t print_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    return serve_answers(view, message, first, second, show_printer, take_print_options);
}

void ask_print(ViewHandle view) {
    show_status(STATUS_BLANK);
    answer.print_requested = show_view(&PRINT_VIEW, print_proc) == 1;
    if (answer.print_requested) {
        view_end(view, 1);
        return;
    }
    view_focus_control(view, LIST_PANE);
    draw_all(view);
}

void leave(ViewHandle view) {
    show_status(STATUS_BLANK);
    answer.print_requested = false;
    view_end(view, 0);
}

int64_t press_button(ViewHandle view, int button) {
    switch (button) {
    case FORWARD_BUTTON:
        search(view, true);
        break;
    case BACKWARD_BUTTON:
        search(view, false);
        break;
    case PRINT_BUTTON:
        ask_print(view);
        break;
    case EXIT_BUTTON:
        leave(view);
        break;
    }
    return 1;
}

int64_t results_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    switch (message) {
    case WM_INITDIALOG:
        draw_all(view);
        view_focus_control(view, LIST_PANE);
        return 1;
    case WM_KEYDOWN:
        press_key(view, low_word(first));
        return 1;
    case WM_VSCROLL:
        if (high_word(first) == LIST_PANE)
            scroll_list(view, low_word(first), static_cast<int>(second));
        return 1;
    case WM_CLOSE:
        leave(view);
        return 1;
    case WM_COMMAND:
        return press_button(view, low_word(first));
    default:
        return view_default(view, message, first, second);
    }
}

}  // namespace

ResultsAnswer show_results_screen() {
    answer = {false, false};
    begin_walk(&walk, compare.last_record, LIST_ROWS);
    show_view(&RESULT_VIEW, results_proc);
    return answer;
}

}  // namespace hexlane
