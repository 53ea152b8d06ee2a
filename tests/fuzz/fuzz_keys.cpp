// fuzz_keys.cpp: somebody plays with keys, mouse, scroll bar and menu. After each step the caret must stand
// in the document and in the view, the ends of a block in order and in the document, and the screen must show
// what a full repaint of the same state would show, but for what EXCEPTIONS lists.

#include "edit/block_commands.h"
#include "fuzz_program.h"
#include "macros/macro_table.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "search/match_view.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/window.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "view/colors.h"
#include "view/text_view.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace {

using namespace hexlane;
using namespace hexlane::platform;
using fuzz::Bytes;

constexpr int32_t MOST_ROWS = 200;    // well below what the tiny limits can load
constexpr int32_t MOST_COLUMN = 600;  // a caret behind a row of letters that NC Mode spreads out

// ---- The steps -----------------------------------------------------------------------------------------

bool button_down;

// Ctrl+Enter while overwriting leaves the screen to the next repaint.
bool repaint_owed;

// A search has been among the rows of the block that is on show.
bool block_searched;

// One of the keys since the last record was a Ctrl+Enter.
bool ctrl_enter_pressed;

void press_a_key(Bytes* bytes) {
    static const char* const KEYS[] = {"Up",     "Down",     "Left",   "Right",  "Home",      "End",
                                       "PageUp", "PageDown", "Insert", "Delete", "Backspace", "Enter",
                                       "Tab",    "Esc",      "F3",     "F4",     "F7",        "F9",
                                       "B",      "X",        "C",      "V"};
    static const char* const WITH[] = {"", "", "Shift+", "Shift+", "Ctrl+", "Ctrl+Shift+"};
    const std::string with = WITH[bytes->below(std::size(WITH))];
    const std::string key = KEYS[bytes->below(std::size(KEYS))];
    const bool ctrl_enter = with.starts_with("Ctrl") && key == "Enter";
    ctrl_enter_pressed = ctrl_enter_pressed || ctrl_enter;
    repaint_owed = repaint_owed || (child[0].overwrite_mode && ctrl_enter);
    press_key((with + key).c_str());
}

constexpr const char* TEXTS[] = {"X", "G1", "(", ")", "12.5", "x", " ", "N1G2X3"};

void type_some_text(Bytes* bytes) {
    type_text(TEXTS[bytes->below(std::size(TEXTS))]);
}

void send_a_character(Bytes* bytes) {
    const int code = bytes->take();
    send_message(child[0].main_window, WM_CHAR, code, 1 + bytes->below(3));
}

// A cell in the window or a little outside of it.
int64_t some_place(Bytes* bytes) {
    const int col = bytes->below(child[0].window_cols + 4) - 2;
    const int row = bytes->below(child[0].window_rows + 7) - 2;
    set_pointer_cell(col, row);
    return make_parameter(col * CELL_WIDTH + 3, row * CELL_HEIGHT + 3);
}

void use_the_mouse(Bytes* bytes) {
    const int act = bytes->below(4);
    const int held = bytes->below(12) == 0 ? MK_SHIFT : 0;
    const int64_t place = some_place(bytes);
    if (act == 0 && !button_down) {
        button_down = true;
        send_message(child[0].main_window, WM_LBUTTONDOWN, MK_LBUTTON | held, place);
    } else if (act == 1 && button_down) {
        button_down = false;
        send_message(child[0].main_window, bytes->below(2) ? WM_LBUTTONUP : WM_NCLBUTTONUP, held, place);
    } else {
        send_message(child[0].main_window, WM_MOUSEMOVE, (button_down ? MK_LBUTTON : 0) | held, place);
    }
}

void let_time_pass(Bytes* bytes) {
    advance_clock(50 * (1 + bytes->below(4)));
}

void use_the_scroll_bar(Bytes* bytes) {
    const int request = bytes->below(6);
    const int position = bytes->below(child[0].vscroll_max + 1);
    send_message(child[0].main_window, WM_VSCROLL, make_parameter(request, position), 0);
}

void scroll_sideways(Bytes* bytes) {
    send_message(child[0].main_window, WM_HSCROLL, bytes->below(4), 0);
}

void choose_a_command(Bytes* bytes) {
    static const int COMMANDS[] = {1008, 1009, 1010, 1011, 1017, 1018, 1019, 1031};
    const int id = COMMANDS[bytes->below(std::size(COMMANDS))];
    if (id == 1031 || menu_enabled(id))
        send_message(child[0].main_window, WM_COMMAND, id, 0);
}

// A command with dialogs, whose answers lie ready; boxes behind them get OK.
void answer_a_command(int id) {
    answer_other_boxes("OK");
    send_message(child[0].main_window, WM_COMMAND, id, 0);
    answer_other_boxes("");
    fuzz::require(unused_answers() == 0, "a dialog that was expected has not come");
}

int32_t count_matches(const char* text) {
    SearchPattern pattern;
    prepare_pattern(text, &pattern);
    int32_t count = 0;
    for (int32_t row = 0; row <= child[0].last_file_row; row++) {
        fuzz::require(fetch_row(row) == 1, "a row can't be read");
        uint8_t positions[ROW_BUFFER_SIZE];
        for (int32_t left = find_candidates(pattern, positions); left > 0; left--)
            count += matches_at(pattern, positions[left - 1]) ? 1 : 0;
    }
    return count;
}

// A walk that stops at up to three matches.
void search(Bytes* bytes) {
    if (button_down)
        return;
    const bool replaces = bytes->below(2) != 0;
    copy_text(search_texts.find_text, sizeof search_texts.find_text, TEXTS[bytes->below(std::size(TEXTS))]);
    copy_text(search_texts.replace_text, sizeof search_texts.replace_text,
              TEXTS[bytes->below(std::size(TEXTS))]);
    search_texts.find_opened = search_texts.replace_opened = true;
    commit_pending();
    const int32_t stops = std::min(count_matches(search_texts.find_text), 1 + bytes->below(3));
    const int way = bytes->below(4);
    answer_box(!replaces ? "Find" : way == 0 ? "Replace All" : "Find Next");
    for (int32_t stop = 1; stop <= stops && (!replaces || way > 0); stop++) {
        const bool last = stop == stops;
        const char* act = replaces && bytes->below(2) != 0 ? "Replace" : "Find Next";
        answer_box(!last ? act : replaces && way == 1 ? "Replace All" : "Done");
    }
    block_searched = child[0].block_active != 0;
    answer_a_command(replaces ? 1012 : 1015);
}

void use_a_utility(Bytes* bytes) {
    static const int UTILITIES[] = {1020, 1021, 1022, 1023, 1024, 1025};
    const int id = UTILITIES[bytes->below(std::size(UTILITIES))];
    if (button_down)
        return;
    if (id == 1021)
        answer_box("Yes");
    answer_a_command(id);
}

// Records a few keys, which act meanwhile, and plays them.
void play_a_macro(Bytes* bytes) {
    if (button_down)
        return;
    macros.table[0] = {"M", "MACRO.001"};
    macros.count = 1;
    macros.active = macros.event_count = 0;
    macros.recording = true;
    ctrl_enter_pressed = false;
    update_menus();
    for (int keys = bytes->below(6); keys > 0; keys--)
        bytes->below(3) == 0 ? type_some_text(bytes) : press_a_key(bytes);
    send_message(child[0].main_window, WM_COMMAND, 1028, 0);
    fuzz::require(!macros.recording && menu_enabled(1026), "a macro that was recorded can't be played");
    answer_box("Step Through");
    answer_box("Step");
    answer_box("Cancel");
    answer_a_command(1026);
    repaint_owed = repaint_owed || ctrl_enter_pressed;
}

void resize_the_window(Bytes* bytes) {
    set_window_size(1 + bytes->below(40), 1 + bytes->below(14));
}

void save(Bytes*) {
    send_message(child[0].main_window, WM_COMMAND, 1002, 0);
}

struct Step {
    int weight;
    void (*act)(Bytes* bytes);
};
constexpr Step STEPS[] = {{100, press_a_key},
                          {40, type_some_text},
                          {8, send_a_character},
                          {44, use_the_mouse},
                          {14, let_time_pass},
                          {10, use_the_scroll_bar},
                          {2, scroll_sideways},
                          {14, choose_a_command},
                          {6, resize_the_window},
                          {2, save},
                          {6, search},
                          {5, use_a_utility},
                          {5, play_a_macro}};

void take_a_step(Bytes* bytes) {
    int number = bytes->take();
    for (const Step& step : STEPS) {
        number -= step.weight;
        if (number < 0) {
            step.act(bytes);
            break;
        }
    }
    pump_messages();
}

// ---- The screen ----------------------------------------------------------------------------------------

struct Line {
    int32_t row;  // of the document
    std::vector<Cell> cells;
};
using Screen = std::vector<Line>;

Screen screen_now() {
    Screen screen;
    const int32_t rows = std::min(child[0].window_rows + 1, child[0].client_height / CELL_HEIGHT);
    for (int32_t y = 0; y < rows; y++) {
        Line line = {top_row() + y, {}};
        for (int32_t col = 0; col < child[0].client_width / CELL_WIDTH; col++)
            line.cells.push_back(screen_cell(col, y));
        screen.push_back(line);
    }
    return screen;
}

// What a full repaint shows now. State and cells are as before afterwards.
Screen repainted(const Screen& screen) {
    const Child kept = child[0];
    const Block kept_block = block;
    const Block kept_previous = previous_block;
    const int16_t kept_lf = row_had_lf;
    const bool kept_caret = caret_shown();
    child[0].pending_row = -1;
    paint_view();
    if (kept.pending_row >= 0) {
        std::memcpy(child[0].row_text, kept.row_text, sizeof kept.row_text);
        paint_edited_row();
    }
    const Screen fresh = screen_now();
    for (std::size_t y = 0; y < screen.size(); y++) {
        for (std::size_t col = 0; col < screen[y].cells.size(); col++) {
            const Cell& cell = screen[y].cells[col];
            const char c = static_cast<char>(cell.byte);
            draw_text(kept.main_window, static_cast<int>(col) * CELL_WIDTH, static_cast<int>(y) * CELL_HEIGHT,
                      &c, 1, cell.ink, cell.paper);
        }
    }
    child[0] = kept;
    block = kept_block;
    previous_block = kept_previous;
    row_had_lf = kept_lf;
    set_caret_visible(kept_caret);
    open_segment(false);
    return fresh;
}

bool same_text(const Line& left, const Line& right) {
    return std::ranges::equal(left.cells, right.cells, {}, &Cell::byte, &Cell::byte);
}

// The ink of a blank is not seen.
bool same_look(const Cell& left, const Cell& right) {
    return left.paper == right.paper && (left.ink == right.ink || left.byte == ' ');
}
bool same_looks(const Line& left, const Line& right) {
    return std::ranges::equal(left.cells, right.cells, same_look);
}

// ---- Where the screen may differ from a repaint ----------------------------------------------------------

struct Difference {
    const Line* shown;
    const Line* fresh;
};

// A row counts as changed when it is stored, also by a key that changed nothing in it and drew nothing: then
// it stays black until it is drawn.
bool is_not_yet_drawn(const Difference& difference) {
    const auto is_black = [](const Cell& cell) { return cell.ink == BLACK && cell.paper == WHITE; };
    return child[0].changes_colored && std::ranges::all_of(difference.shown->cells, is_black);
}

// A row that a command draws by itself leaves numbers behind a parenthesis black.
bool is_number_behind_parenthesis(const Difference& difference) {
    bool behind = false;
    for (std::size_t col = 0; col < difference.shown->cells.size(); col++) {
        const Cell& cell = difference.shown->cells[col];
        behind = cell.byte == ')' || (behind && is_numeric_char(static_cast<char>(cell.byte)));
        if (!behind && !same_look(cell, difference.fresh->cells[col]))
            return false;
    }
    return true;
}

// Find and Replace draw the row of a match as if there were no block.
bool is_searched_row_of_block(const Difference& difference) {
    const int32_t last = block_holds_rows() ? block.end.row : block.start.row;
    const int32_t row = difference.shown->row;
    return block_searched && child[0].block_active && block.start.row <= row && row <= last;
}

constexpr bool (*EXCEPTIONS[])(const Difference&) = {is_not_yet_drawn, is_number_behind_parenthesis,
                                                     is_searched_row_of_block};

void check_screen() {
    const Screen shown = screen_now();
    const Screen fresh = repainted(shown);
    bool texts_fit = true;
    for (std::size_t y = 0; y < shown.size(); y++)
        texts_fit = texts_fit && same_text(shown[y], fresh[y]);
    repaint_owed = repaint_owed && !texts_fit;
    block_searched = block_searched && child[0].block_active;
    fuzz::require(texts_fit || repaint_owed, "the screen shows another text than a repaint");
    for (std::size_t y = 0; y < shown.size() && !repaint_owed; y++) {
        const Difference difference = {&shown[y], &fresh[y]};
        fuzz::require(same_looks(shown[y], fresh[y]) ||
                          std::ranges::any_of(EXCEPTIONS, [&](auto* allows) { return allows(difference); }),
                      "the screen shows other colors than a repaint");
    }
}

// ---- What always holds -----------------------------------------------------------------------------------

bool in_document(int32_t row) {
    return row >= 0 && row <= child[0].last_file_row;
}

void check_caret() {
    fuzz::require(in_document(child[0].current_row), "the caret's row lies outside the document");
    fuzz::require(child[0].caret_row >= 0 && child[0].caret_row <= child[0].window_rows,
                  "the caret's row lies outside the view");
    fuzz::require(top_row() >= 0, "the view begins in front of the document");
    fuzz::require(child[0].caret_col >= 0 && child[0].caret_col <= MOST_COLUMN,
                  "the caret's column is no column");
    fuzz::require(child[0].pending_row == -1 || child[0].pending_row == child[0].current_row,
                  "a row is in edit that the caret has left");
    fuzz::require(caret_cell_col() == child[0].caret_col && caret_cell_row() == child[0].caret_row,
                  "the caret shows elsewhere");
    fuzz::require(button_down || caret_shown() == (child[0].block_active == 0),
                  "the caret hides or shows at the wrong time");
    fuzz::require(scroll_range_high() == child[0].last_file_row / child[0].window_rows,
                  "the scroll bar has the range of another document");
}

void check_block() {
    if (!child[0].block_active) {
        fuzz::require(block.start.row == -1 && block.end.row == -1, "a block that is not on show is left");
        return;
    }
    fuzz::require(in_document(block.start.row), "the block starts outside the document");
    fuzz::require(block.end.row == -1 || (in_document(block.end.row) && block.start.row <= block.end.row),
                  "the block's ends are out of order or outside the document");
    fuzz::require(block.start.col >= 0, "the block starts in no column");
}

// ---- The session -----------------------------------------------------------------------------------------

std::string some_document(Bytes* bytes) {
    static const char* const ROWS[] = {"", "N10G1X5", "G0 X-1.5 Y2", "(A COMMENT)12", "x1", "  M30"};
    std::string text;
    for (int rows = bytes->below(40); rows > 0; rows--)
        text +=
            ROWS[bytes->below(std::size(ROWS))] + std::string(bytes->below(9) == 0 ? 251 : 0, 'Y') + "\r\n";
    return text;
}

// Nothing may be left of the session before.
void begin_session(Bytes* bytes) {
    button_down = repaint_owed = block_searched = false;
    fuzz::require(fuzz::open_bytes(some_document(bytes)), "the document can't be opened");
    block_clear();
    clear_cut_block();
    clear_copy_block();
    const int modes = bytes->take();
    child[0].overwrite_mode = modes & 1;
    child[0].nc_mode = modes >> 1 & 1;
    child[0].colors_enabled = (modes >> 2 & 1) != 0;
    child[0].changes_colored = !child[0].colors_enabled && (modes >> 3 & 1) != 0;
    child[0].mouse_pressed = 0;
    for (int slot = 0; slot < COLOR_SLOTS; slot++)
        child[0].color_table[slot] = {
            static_cast<Color>(child[0].colors_enabled || slot == CHANGES_SLOT ? 0x40 + slot : 0),
            static_cast<int16_t>(slot % 2 == (modes >> 4 & 1)), 0};
    child[0].current_row = child[0].caret_row = child[0].caret_col = 0;
    hold_keys(false, false);
    set_window_size(24, 9);
    press_key("PageUp");  // forgets the page shown last
    repaint_now();
    update_menus();
    forget_shown_lines();
}

std::vector<std::string> all_rows() {
    std::vector<std::string> rows;
    for (int32_t row = 0; row <= child[0].last_file_row; row++) {
        fuzz::require(fetch_row(row) == 1, "a row can't be read");
        rows.emplace_back(child[0].row_text);
    }
    return rows;
}

// What was edited is what is saved. An empty last row is written as a line end.
void end_session() {
    if (button_down)
        send_message(child[0].main_window, WM_LBUTTONUP, 0, 0);
    commit_pending();
    std::vector<std::string> rows = all_rows();
    block_clear();
    fuzz::save_and_reload();
    const std::vector<std::string> saved = all_rows();
    if (saved.size() == rows.size() + 1)
        rows.emplace_back();
    fuzz::require(saved == rows, "the saved file is not the document");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    begin_session(&bytes);
    while (!bytes.empty() && child[0].last_file_row < MOST_ROWS) {
        take_a_step(&bytes);
        check_caret();
        check_block();
        fuzz::check_table();
        check_screen();
    }
    end_session();
    return 0;
}
