// start_point_view.cpp: the view StartPoint: the file on disk, read-only, its cursor and its marks.

#include "dnc/port_engine.h"
#include "dnc/transfer.h"
#include "platform/desktop.h"
#include "platform/keys.h"
#include "platform/surface.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/activity.h"
#include "station/port_report.h"
#include "station/row_index.h"
#include "station/start_point.h"
#include "station/start_point_internal.h"
#include "station/station_texts.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace hexlane {

using namespace platform;

StartPoint start_point;

namespace {

constexpr int16_t FILE_TEXT = 101;
constexpr int16_t ROWS_PANE = 102;
constexpr int16_t START_BUTTON = 103;
constexpr int16_t START_LABEL = 104;
constexpr int16_t END_BUTTON = 105;
constexpr int16_t END_LABEL = 106;
constexpr int16_t RESET_BUTTON = 107;
constexpr int16_t SEARCH_BUTTON = 108;
constexpr int16_t FEED_BUTTON = 109;

constexpr int PANE_ROWS = 18;
constexpr int PANE_COLUMNS = 82;
constexpr int SCREEN_LINES = PANE_ROWS - 1;  // lines 0 to SCREEN_LINES are drawn
constexpr int SCREEN_COLUMNS = PANE_COLUMNS - 1;
constexpr int SCROLL_MAX = 30000;
constexpr int BLOCK_LABEL_LIMIT = 27;  // characters
constexpr Color RED = 0x0000FF;
constexpr std::size_t NAME_SHOWN = 70;  // characters of the file's path

// Looks after a feed whose line has gone: no transmitter-empty will ask for the next row.
constexpr int FEED_TIMER = 1;
constexpr int FEED_TIMER_MS = 500;

constexpr ControlSpec CONTROLS[] = {
    {FILE_TEXT, ControlKind::TEXT, "", 0, 0, 1, 4, NAME_SHOWN, CONTROL_SUNKEN, nullptr},
    {ROWS_PANE, ControlKind::PANE, "ROWS", 1, 0, PANE_ROWS, 4, PANE_COLUMNS, 0, nullptr},
    {201, ControlKind::TEXT, "Click right mouse button to select", PANE_ROWS + 1, 0, 1, 4, 0, 0, nullptr},
    {START_BUTTON, ControlKind::BUTTON, "S&tart Block", PANE_ROWS + 2, 0, 1, 1, 0, 0, nullptr},
    {START_LABEL, ControlKind::TEXT, "", PANE_ROWS + 2, 1, 1, 1, BLOCK_LABEL_LIMIT, CONTROL_SUNKEN, nullptr},
    {END_BUTTON, ControlKind::BUTTON, "&End Block", PANE_ROWS + 2, 2, 1, 1, 0, 0, nullptr},
    {END_LABEL, ControlKind::TEXT, "", PANE_ROWS + 2, 3, 1, 1, BLOCK_LABEL_LIMIT, CONTROL_SUNKEN, nullptr},
    {RESET_BUTTON, ControlKind::BUTTON, "&Reset Block", PANE_ROWS + 3, 0, 1, 1, 0, 0, nullptr},
    {SEARCH_BUTTON, ControlKind::BUTTON, "&Search", PANE_ROWS + 3, 1, 1, 1, 0, 0, nullptr},
    {FEED_BUTTON, ControlKind::BUTTON, "Send &Block", PANE_ROWS + 3, 2, 1, 1, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", PANE_ROWS + 4, 0, 1, 2, 0, CONTROL_DEFAULT | CONTROL_CENTERED,
     nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", PANE_ROWS + 4, 2, 1, 2, 0,
     CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec START_VIEW = {"StartPoint", "Select Send Start Point", 0, CONTROLS,
                                 static_cast<int16_t>(std::size(CONTROLS))};

WindowHandle pane() {
    return view_pane(start_point.view, ROWS_PANE);
}
int32_t top_row_shown() {
    return start_point.cursor_row - start_point.cursor_line;
}
bool is_mark(int32_t row) {
    return row == start_point.block_start_row || row == start_point.block_end_row;
}

void draw_line(int32_t line) {
    const int32_t row = top_row_shown() + line;
    char text[PANE_COLUMNS + 1];
    std::memset(text, ' ', sizeof text);
    char shown[ROW_TEXT_LIMIT + 1];
    read_row_text(row, shown);
    std::memcpy(text + 1, shown, std::strlen(shown));
    const bool marked = row >= 0 && is_mark(row);
    const bool cursor = line == start_point.cursor_line;
    const Color ink = marked || cursor ? WHITE : BLACK;
    const Color paper = marked ? RED : cursor ? BLACK : WHITE;
    draw_text(pane(), 0, line * CELL_HEIGHT, text, SCREEN_COLUMNS, ink, paper);
}

// One step of the bar is a page, as long as its range suffices; the rows of a longer file are spread over it.
int32_t page_count() {
    return row_count() / SCREEN_LINES;
}
int bar_position(int32_t row) {
    if (page_count() <= SCROLL_MAX)
        return row / SCREEN_LINES;
    return static_cast<int>(static_cast<int64_t>(row) * SCROLL_MAX / row_count());
}
int32_t row_at_position(int position) {
    if (page_count() <= SCROLL_MAX)
        return position * SCREEN_LINES;
    return static_cast<int32_t>(static_cast<float>(position) * static_cast<float>(row_count()) /
                                static_cast<float>(SCROLL_MAX));
}

void set_bar() {
    set_scroll_range(pane(), 0, std::min(page_count(), SCROLL_MAX));
    set_scroll_position(pane(), bar_position(start_point.cursor_row));
}

void draw_all() {
    look_at_file_again();
    for (int32_t line = 0; line <= SCREEN_LINES; line++)
        draw_line(line);
    set_bar();
}

// Every move of the cursor.
void put_cursor(int32_t row, int32_t line) {
    start_point.cursor_row = row;
    start_point.cursor_line = line;
    start_point.page_top = -1;
    draw_all();
}

void show_top(int32_t top, int32_t line) {
    const int32_t shown = std::clamp(line, 0, std::min(SCREEN_LINES, row_count() - top));
    put_cursor(top + shown, shown);
}

void move_line(int32_t step) {
    const int32_t row = std::clamp(start_point.cursor_row + step, 0, row_count());
    const int32_t line = start_point.cursor_line + row - start_point.cursor_row;
    put_cursor(row, std::clamp(line, 0, SCREEN_LINES));
}

void page_up() {
    const int32_t top = std::max(top_row_shown() - SCREEN_LINES - 1, 0);
    show_top(top, top == start_point.page_top ? 0 : start_point.cursor_line);
    start_point.page_top = top;
}

void page_down() {
    if (row_count() <= SCREEN_LINES)
        return;
    const int32_t last_top = std::max(row_count() - SCREEN_LINES + 1, top_row_shown());
    const int32_t top = std::min(top_row_shown() + SCREEN_LINES + 1, last_top);
    show_top(top, start_point.cursor_line);
    start_point.page_top = top;
}

void to_start() {
    show_top(0, 0);
}
void to_end() {
    show_top(std::max(row_count() - SCREEN_LINES, 0), SCREEN_LINES);
}

bool act_on_key(int key) {
    switch (key) {
    case VK_UP:
        move_line(-1);
        return true;
    case VK_DOWN:
        move_line(1);
        return true;
    case VK_PRIOR:
        page_up();
        return true;
    case VK_NEXT:
        page_down();
        return true;
    case VK_HOME:
        to_start();
        return true;
    case VK_END:
        to_end();
        return true;
    default:
        return false;
    }
}

void act_on_bar(int request, int position) {
    switch (request) {
    case SB_LINEUP:
        move_line(-1);
        break;
    case SB_LINEDOWN:
        move_line(1);
        break;
    case SB_PAGEUP:
        page_up();
        break;
    case SB_PAGEDOWN:
        page_down();
        break;
    case SB_TOP:
        to_start();
        break;
    case SB_BOTTOM:
        to_end();
        break;
    case SB_THUMBPOSITION:
        show_top(std::min(row_at_position(position), row_count()), start_point.cursor_line);
        break;
    default:
        break;
    }
}

// ---- Marks -------------------------------------------------------------------------------------------

void show_labels() {
    look_at_file_again();
    const std::pair<int16_t, int32_t> labels[] = {{START_LABEL, start_point.block_start_row},
                                                  {END_LABEL, start_point.block_end_row}};
    for (const auto& [id, row] : labels) {
        char bytes[ROW_TEXT_LIMIT + 1] = "";
        char text[4 * BLOCK_LABEL_LIMIT] = "";
        if (row >= 0)
            read_row_text(row, bytes);
        bytes[BLOCK_LABEL_LIMIT] = '\0';
        bytes_to_text(text, sizeof text, bytes);
        put_text(start_point.view, id, text);
    }
}

// Marks that come out the wrong way round are swapped.
void set_marks(int32_t start, int32_t end) {
    if (start >= 0 && end >= 0 && start > end)
        std::swap(start, end);
    start_point.block_start_row = start;
    start_point.block_end_row = end;
    start_point.block_marked = start >= 0 || end >= 0;
    show_labels();
    draw_all();
}

// The right button: the first rule that fits.
void mark_row(int32_t row) {
    const int32_t start = start_point.block_start_row;
    const int32_t end = start_point.block_end_row;
    if (start < 0)
        set_marks(row, end);
    else if (end < 0)
        set_marks(start, row);
    else if (row < start)
        set_marks(row, end);
    else if (row > end)
        set_marks(start, row);
    else if (row == start)
        set_marks(-1, end);
    else if (row == end)
        set_marks(start, -1);
    else
        set_marks(-1, -1);
}

// ---- The view ----------------------------------------------------------------------------------------

// The port is the screen's own while it is up. The slot counts as quiet meanwhile: a request of the machine
// would find nothing to send, and rows that are fed need the line's normal handshake.
int open_screen_port() {
    transfer_state[send_slot].status = PORT_IDLE;
    if (port_slot[send_slot].connected)
        return 1;
    return open_port_for_blocks(send_slot);
}

void open_screen(ViewHandle view) {
    const PointerShape pointer = begin_wait();
    start_point = {};
    start_point.view = view;
    start_point.page_top = -1;
    start_point.block_start_row = -1;
    start_point.block_end_row = -1;
    start_point_window = view;
    const char* path = transfer_state[send_slot].file_name;
    char name[PATH_SIZE + 2];
    shorten_path(name, sizeof name, path, NAME_SHOWN, NAME_SHOWN - 2);
    put_text(view, FILE_TEXT, name);
    const int opened = open_row_index(path);
    const FileError error = last_file_error();
    draw_all();
    view_focus_control(view, ROWS_PANE);
    end_wait(pointer);
    if (!opened)
        show_dnc_box(DncBox::NO_ROW_INDEX, path, file_error_text(error));
    if (!open_screen_port())
        show_connection_failed();
    start_timer(view, FEED_TIMER, FEED_TIMER_MS);
}

// Leaves the screen with the send to begin at `offset`.
void close_screen(int64_t offset, int result) {
    block_mode = 0;
    close_port(send_slot);
    start_point_window = NO_WINDOW;
    close_row_index();
    {
        const LockGuard guard(port_slot[send_slot].step_lock);
        TransferState& t = transfer_state[send_slot];
        reset_transfer(send_slot);
        t.start_offset = static_cast<int32_t>(offset);
        t.file_position = t.start_offset;
        t.status = SEND_STANDBY;
    }
    view_end(start_point.view, result);
}

void press_ok() {
    const int32_t row = start_point.block_marked ? std::min(start_point.block_end_row + 1, row_count())
                                                 : start_point.cursor_row;
    const int64_t offset = row_offset(row);
    if (offset < 0 || !row_is_there(transfer_state[send_slot].file_name, offset)) {
        show_dnc_box(DncBox::START_POINT_GONE);
        view_focus_control(start_point.view, ROWS_PANE);
        return;
    }
    close_screen(offset, 1);
}

void press_cancel() {
    if (start_point.block_running)
        cancel_feed();
    else
        close_screen(0, 0);
}

// Send Block. A port that could not be opened before is tried once more.
void press_feed() {
    if (open_screen_port())
        begin_feed();
    else
        show_connection_failed();
}

// A button of the block or the search; the keys then go to the rows again.
void act_on_button(int id) {
    if (id == START_BUTTON)
        set_marks(start_point.cursor_row, start_point.block_end_row);
    else if (id == END_BUTTON)
        set_marks(start_point.block_start_row, start_point.cursor_row);
    else if (id == RESET_BUTTON)
        set_marks(-1, -1);
    else if (id == SEARCH_BUTTON)
        show_search_for();
    else if (id == FEED_BUTTON)
        press_feed();
    view_focus_control(start_point.view, ROWS_PANE);
}

void on_control(int id) {
    if (id == CANCEL_BUTTON)
        press_cancel();
    else if (start_point.block_running)
        return;
    else if (id == OK_BUTTON)
        press_ok();
    else
        act_on_button(id);
}

void on_press(uint32_t message, int64_t first, int64_t second) {
    const int32_t line = signed_high(second) / CELL_HEIGHT;
    if (line < 0 || line > SCREEN_LINES)
        return;
    const int32_t row = std::min(top_row_shown() + line, row_count());
    if (message == WM_RBUTTONDOWN) {
        mark_row(row);
    } else if ((low_word(first) & (MK_SHIFT | MK_CONTROL)) == 0) {
        move_line(row - start_point.cursor_row);
    }
}

// Keys and mouse; the cursor belongs to the feed while rows go out. Gives whether the message was one of
// them.
bool on_hand(uint32_t message, int64_t first, int64_t second) {
    if (message != WM_KEYDOWN && message != WM_LBUTTONDOWN && message != WM_RBUTTONDOWN &&
        message != WM_VSCROLL)
        return false;
    if (start_point.block_running)
        return true;
    if (message == WM_KEYDOWN)
        return act_on_key(low_word(first));
    if (message == WM_VSCROLL)
        act_on_bar(low_word(first), static_cast<int>(second));
    else
        on_press(message, first, second);
    return true;
}

int64_t start_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (on_hand(message, first, second))
        return 1;
    switch (message) {
    case WM_INITDIALOG:
        open_screen(view);
        return 1;
    case NEXT_ROW_MESSAGE:
        feed_next_row();
        return 1;
    case WM_TIMER:
        if (start_point.block_running && !port_slot[send_slot].connected)
            stop_feed();
        return 1;
    case WM_COMMAND:
        on_control(low_word(first));
        return 1;
    case WM_CLOSE:
        press_cancel();
        return 1;
    default:
        return view_default(view, message, first, second);
    }
}

}  // namespace

void go_to_row(int32_t row) {
    const int32_t top = top_row_shown();
    if (row >= top && row <= top + SCREEN_LINES) {
        put_cursor(row, row - top);
        return;
    }
    const int32_t line = std::min(row, 3);
    show_top(row - line, line);
}

void move_cursor_down() {
    move_line(1);
}

void enable_feed_buttons(bool enabled) {
    for (const int16_t id : {RESET_BUTTON, SEARCH_BUTTON, FEED_BUTTON, OK_BUTTON})
        view_enable_control(start_point.view, id, enabled);
}

void show_start_point() {
    show_view(&START_VIEW, start_proc);
}

}  // namespace hexlane
