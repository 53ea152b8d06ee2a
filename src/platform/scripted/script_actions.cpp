// script_actions.cpp: the table of the language, and the lines by which the person acts.
// To add a line: one row of the table, and its function here or in script_prints.cpp; then
// docs/scripted-runs.md.

#include "platform/scripted/script_actions.h"

#include "platform/messages.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/printer.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_files.h"
#include "platform/scripted/script_watch.h"

#include <climits>

namespace hexlane::platform {

const Refusal WRONG_USE = "?";

namespace {

void (*state_printer)() = nullptr;
std::string (*rows_printer)(int64_t first, int64_t last) = nullptr;

// ---- Words -------------------------------------------------------------------------------------------

bool has(const Words& words, std::size_t least, std::size_t most) {
    return words.size() > least && words.size() - 1 <= most;
}

bool number_at(const Words& words, std::size_t at, int64_t low, int64_t high, int* number) {
    int64_t value = 0;
    if (at >= words.size() || !parse_number(words[at], low, high, &value)) {
        return false;
    }
    *number = static_cast<int>(value);
    return true;
}

bool text_at(const Words& words, std::size_t at) {
    return at < words.size() && words[at].is_quoted;
}

std::string path_at(const Words& words, std::size_t at) {
    return without_place_name(words[at].text);
}

// ---- Window and keys ---------------------------------------------------------------------------------

Refusal do_size(const Words& words) {
    int cols = 0;
    int rows = 0;
    const bool right =
        has(words, 2, 2) && number_at(words, 1, 0, INT_MAX, &cols) && number_at(words, 2, 0, INT_MAX, &rows);
    return right ? person_resizes(cols, rows) : WRONG_USE;
}

Refusal do_start(const Words&) {
    return "one start a script, before anything else";  // the first one is taken by script.cpp
}

Refusal do_later(const Words&) {
    return "`later` cannot stand behind another `later`";  // a first one is taken by script.cpp
}

Refusal do_key(const Words& words) {
    int times = 1;
    if (!has(words, 1, 2) || words[1].is_quoted ||
        (words.size() == 3 && !number_at(words, 2, 1, INT16_MAX, &times))) {
        return WRONG_USE;
    }
    LongAct act;
    Refusal refusal;
    for (begin_long_act(&act, times); refusal.empty() && act.done < act.total && !act.stopped;) {
        act.done++;
        refusal = person_presses(words[1].text);
    }
    end_long_act(&act);
    return refusal;
}

Refusal do_type(const Words& words) {
    return has(words, 1, 1) && text_at(words, 1) ? person_types(words[1].text) : WRONG_USE;
}

Refusal do_char(const Words& words) {
    int code = 0;
    int repeat = 1;
    const bool right = has(words, 1, 2) && number_at(words, 1, 0, UINT8_MAX, &code) &&
                       (words.size() == 2 || number_at(words, 2, 1, INT16_MAX, &repeat));
    return right ? person_sends_character(code, repeat) : WRONG_USE;
}

Refusal do_command(const Words& words) {
    int id = 0;
    return has(words, 1, 1) && number_at(words, 1, 1, INT16_MAX, &id) ? person_chooses_command(id)
                                                                      : WRONG_USE;
}

Refusal do_hint(const Words& words) {
    int id = 0;
    if (has(words, 0, 0)) {
        return person_walks_menu();
    }
    return has(words, 1, 1) && number_at(words, 1, 1, INT16_MAX, &id) ? person_points_at_menu(id) : WRONG_USE;
}

Refusal do_focus(const Words& words) {
    if (has(words, 1, 1) && words[1].text == "lost") {
        return person_leaves_window();
    }
    return has(words, 1, 1) && words[1].text == "gained" ? person_returns_to_window() : WRONG_USE;
}

Refusal do_close(const Words& words) {
    return has(words, 0, 0) ? person_closes_window() : WRONG_USE;
}

Refusal do_open_request(const Words& words) {
    if (!has(words, 0, 1) || (words.size() == 2 && !text_at(words, 1))) {
        return WRONG_USE;
    }
    return person_starts_again(words.size() == 2 ? path_at(words, 1) : "");
}

Refusal do_tick(const Words& words) {
    int ms = 0;
    return has(words, 1, 1) && number_at(words, 1, 0, INT_MAX, &ms) ? person_waits(ms) : WRONG_USE;
}

// ---- Mouse and scroll bar ----------------------------------------------------------------------------

// [PANE] ACT COL ROW [Shift] [Ctrl]
Refusal do_mouse(const Words& words) {
    constexpr struct {
        const char* name;
        MouseAct act;
    } ACTS[] = {{"down", MouseAct::DOWN},
                {"move", MouseAct::MOVE},
                {"up", MouseAct::UP},
                {"right", MouseAct::RIGHT},
                {"click", MouseAct::DOWN}};
    MouseEvent event;
    event.in_pane = control_at(words, 1, &event.pane);
    const std::size_t at = event.in_pane ? 2 : 1;
    if (!has(words, at + 2, at + 4) || !number_at(words, at + 1, INT8_MIN, INT16_MAX, &event.col) ||
        !number_at(words, at + 2, INT8_MIN, INT16_MAX, &event.row)) {
        return WRONG_USE;
    }
    for (std::size_t i = at + 3; i < words.size(); i++) {
        event.shift = event.shift || words[i].text == "Shift";
        event.ctrl = event.ctrl || words[i].text == "Ctrl";
    }
    if (words.size() != at + 3 + event.shift + event.ctrl) {
        return WRONG_USE;
    }
    for (const auto& candidate : ACTS) {
        if (words[at].text == candidate.name) {
            event.act = candidate.act;
            const Refusal refusal = person_uses_mouse(event);
            event.act = MouseAct::UP;
            return refusal.empty() && words[at].text == "click" ? person_uses_mouse(event) : refusal;
        }
    }
    return WRONG_USE;
}

Refusal do_pointer(const Words& words) {
    int col = 0;
    int row = 0;
    const bool right = has(words, 2, 2) && number_at(words, 1, INT16_MIN, INT16_MAX, &col) &&
                       number_at(words, 2, INT16_MIN, INT16_MAX, &row);
    return right ? person_places_pointer(col, row) : WRONG_USE;
}

Refusal do_scroll(const Words& words) {
    constexpr struct {
        const char* name;
        int request;
    } REQUESTS[] = {{"line-up", SB_LINEUP},
                    {"line-down", SB_LINEDOWN},
                    {"page-up", SB_PAGEUP},
                    {"page-down", SB_PAGEDOWN},
                    {"top", SB_TOP},
                    {"bottom", SB_BOTTOM},
                    {"thumb", SB_THUMBPOSITION}};
    for (const auto& candidate : REQUESTS) {
        if (!has(words, 1, 2) || words[1].text != candidate.name) {
            continue;
        }
        const bool thumb = candidate.request == SB_THUMBPOSITION;
        int position = 0;
        if (words.size() != (thumb ? 3U : 2U) || (thumb && !number_at(words, 2, 0, INT16_MAX, &position))) {
            return WRONG_USE;
        }
        return person_scrolls(candidate.request, position);
    }
    return WRONG_USE;
}

// ---- Views, boxes, file dialogs ----------------------------------------------------------------------

Refusal do_press(const Words& words) {
    ControlName name;
    return has(words, 1, 1) && control_at(words, 1, &name) ? person_clicks(name) : WRONG_USE;
}

Refusal do_set(const Words& words) {
    ControlName name;
    const bool right = has(words, 2, 2) && control_at(words, 1, &name) && text_at(words, 2);
    return right ? person_fills(name, words[2].text) : WRONG_USE;
}

Refusal do_check(const Words& words) {
    ControlName name;
    return has(words, 1, 1) && control_at(words, 1, &name) ? person_checks(name, words[0].text == "check")
                                                           : WRONG_USE;
}

Refusal do_pick(const Words& words) {
    ControlName name;
    return has(words, 1, 1) && control_at(words, 1, &name) ? person_picks(name) : WRONG_USE;
}

Refusal do_select(const Words& words) {
    ControlName name;
    int index = 0;
    if (!has(words, 2, 2) || !control_at(words, 1, &name)) {
        return WRONG_USE;
    }
    if (text_at(words, 2)) {
        return person_selects(name, words[2].text);
    }
    return number_at(words, 2, 0, INT_MAX, &index) ? person_selects(name, index) : WRONG_USE;
}

Refusal do_choose(const Words& words) {
    int filter = -1;
    const bool right = has(words, 1, 2) && text_at(words, 1) &&
                       (words.size() == 2 || number_at(words, 2, 0, INT8_MAX, &filter));
    return right ? person_gives_file(path_at(words, 1), filter) : WRONG_USE;
}

Refusal do_cancel(const Words& words) {
    return has(words, 0, 0) ? person_cancels() : WRONG_USE;
}

// ---- Files and the program's state -------------------------------------------------------------------

Refusal do_write(const Words& words) {
    const bool right = has(words, 2, 2) && text_at(words, 1) && text_at(words, 2);
    return right ? write_new_file(path_at(words, 1), words[2].text) : WRONG_USE;
}

Refusal do_state(const Words& words) {
    if (!has(words, 0, 0)) {
        return WRONG_USE;
    }
    state_printer();
    return "";
}

Refusal do_rows(const Words& words) {
    int first = 0;
    int last = -1;
    const bool right = has(words, 0, 0) || (has(words, 2, 2) && number_at(words, 1, 0, INT_MAX, &first) &&
                                            number_at(words, 2, first, INT_MAX, &last));
    return right ? rows_printer(first, last) : WRONG_USE;
}

// ---- Printer -----------------------------------------------------------------------------------------

Refusal do_printer(const Words& words) {
    if (!has(words, 1, 1)) {
        return WRONG_USE;
    }
    const std::string& word = words[1].text;
    if (!words[1].is_quoted && word != "none" && word != "fail") {
        return WRONG_USE;
    }
    const bool fails = !words[1].is_quoted && word == "fail";
    set_printer(words[1].is_quoted ? word : fails ? "Printer" : "", fails);
    return "";
}

constexpr const char* LINE_USE = "N feed \"BYTES\" [MS] [at-once] | break | cts on|off | sent [times] | rate "
                                 "N | fifo BYTES | drain MS | fail | "
                                 "refuse \"REASON\" | refuse-settings | ready";
constexpr const char* CONTROL_USE = "\"LABEL\"|\"LABEL\"/N|@ID";

const Action ACTIONS[] = {
    {"size", "COLS ROWS", BEFORE_START | WHILE_RUNNING, do_size},
    {"start", "[\"FILE\"]", BEFORE_START | WHILE_RUNNING, do_start},
    {"key", "[Shift+][Ctrl+][Alt+]NAME [TIMES]", WHILE_RUNNING, do_key},
    {"type", "\"TEXT\"", WHILE_RUNNING, do_type},
    {"char", "CODE [REPEAT]", WHILE_RUNNING, do_char},
    {"command", "ID", WHILE_RUNNING, do_command},
    {"hint", "[ID]", WHILE_RUNNING, do_hint},
    {"later", "N LINE", WHILE_RUNNING, do_later},
    {"mouse", "[PANE] down|move|up|click|right COL ROW [Shift] [Ctrl]", WHILE_RUNNING, do_mouse},
    {"pointer", "COL ROW", WHILE_RUNNING, do_pointer},
    {"scroll", "line-up|line-down|page-up|page-down|top|bottom|thumb POS", WHILE_RUNNING, do_scroll},
    {"tick", "MS", WHILE_RUNNING, do_tick},
    {"focus", "lost|gained", WHILE_RUNNING, do_focus},
    {"close", "", WHILE_RUNNING, do_close},
    {"press", CONTROL_USE, WHILE_RUNNING, do_press},
    {"set", "\"LABEL\"|@ID \"TEXT\"", WHILE_RUNNING, do_set},
    {"check", CONTROL_USE, WHILE_RUNNING, do_check},
    {"uncheck", CONTROL_USE, WHILE_RUNNING, do_check},
    {"pick", CONTROL_USE, WHILE_RUNNING, do_pick},
    {"select", "\"LABEL\"|@ID N|\"TEXT\"", WHILE_RUNNING, do_select},
    {"choose", "\"PATH\" [N]", WHILE_RUNNING, do_choose},
    {"cancel", "", WHILE_RUNNING, do_cancel},
    {"open-request", "[\"FILE\"]", WHILE_RUNNING, do_open_request},
    {"line", LINE_USE, ALWAYS, do_line},
    {"printer", "\"NAME\"|none|fail", BEFORE_START | WHILE_RUNNING, do_printer},
    {"screen", "[PANE]", WHILE_RUNNING, print_screen},
    {"colors", "[PANE]", WHILE_RUNNING, print_colors},
    {"status", "", WHILE_RUNNING, print_status},
    {"menu", "", WHILE_RUNNING, print_menu},
    {"title", "", WHILE_RUNNING, print_title},
    {"caret", "", WHILE_RUNNING, print_caret},
    {"view", "[@ID...]", WHILE_RUNNING, print_view},
    {"state", "", WHILE_RUNNING, do_state},
    {"rows", "[FIRST LAST]", WHILE_RUNNING, do_rows},
    {"bytes", "\"PATH\"", ALWAYS, print_bytes},
    {"files", "\"DIR\"", ALWAYS, print_files},
    {"watch",
     "[screen] [colors] [status] [menu] [title] [caret] [rows] [state] [bytes \"PATH\"] [files \"DIR\"]",
     BEFORE_START | WHILE_RUNNING, do_watch},
    {"write", "\"PATH\" \"BYTES\"", ALWAYS, do_write},
};

}  // namespace

bool control_at(const Words& words, std::size_t at, ControlName* name) {
    if (at >= words.size()) {
        return false;
    }
    const Word& word = words[at];
    if (word.is_quoted) {
        *name = {word.text, word.number, -1};
        return true;
    }
    int64_t id = 0;
    if (word.text.empty() || word.text[0] != '@' ||
        !parse_number({word.text.substr(1), false, 1}, 0, INT16_MAX, &id)) {
        return false;
    }
    name->id = static_cast<int>(id);
    return true;
}

const Action* find_action(const std::string& name) {
    for (const Action& action : ACTIONS) {
        if (name == action.name) {
            return &action;
        }
    }
    return nullptr;
}

void set_state_printers(void (*state)(), std::string (*rows)(int64_t first, int64_t last)) {
    state_printer = state;
    rows_printer = rows;
}

}  // namespace hexlane::platform
