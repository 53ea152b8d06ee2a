// test_hooks.cpp: the person of a unit test, who has all answers ready, and looks at the desktop.

#include "platform/scripted/test_hooks.h"

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/line_model.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/person.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_clock.h"
#include "platform/scripted/workers.h"

#include <algorithm>
#include <deque>

namespace hexlane::platform {

namespace {

struct Answer {
    bool for_dialog;
    bool cancels;
    std::string text;  // a button's label or a path
    int filter;
};

std::deque<Answer> answers;
std::string fallback_label;  // for boxes that find no answer ready; empty for none

void must_apply(const Refusal& refusal) {
    if (!refusal.empty()) {
        stop_run(refusal);
    }
}

// The first answer has to fit what is topmost; anything else is a wrong test or a wrong program.
bool test_person() {
    const Modal* modal = top_modal();
    if (modal != nullptr && answers.empty() && !fallback_label.empty() &&
        modal->kind != ModalKind::FILE_DIALOG) {
        must_apply(person_clicks({fallback_label, 1, -1}));
        return true;
    }
    if (modal == nullptr || answers.empty()) {
        return false;
    }
    const Answer answer = answers.front();
    answers.pop_front();
    if (answer.for_dialog != (modal->kind == ModalKind::FILE_DIALOG)) {
        stop_run(modal->name + ": the answer that is ready is " + quoted(answer.text));
    }
    if (answer.cancels) {
        must_apply(person_cancels());
    } else if (answer.for_dialog) {
        must_apply(person_gives_file(answer.text, answer.filter));
    } else {
        must_apply(person_clicks({answer.text, 1, -1}));
    }
    return true;
}

void lay_ready(const Answer& answer) {
    answers.push_back(answer);
    set_person(test_person);
}

const MenuItem& item_of(int id) {
    const MenuItem* item = find_menu_item(id);
    if (item == nullptr) {
        stop_run("the menu has no entry " + std::to_string(id));
    }
    return *item;
}

const Control* status_control(int id) {
    const View* view = status_view();
    if (view == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(view->controls.begin(), view->controls.end(),
                                    [id](const Control& control) { return control.spec->id == id; });
    return found != view->controls.end() ? &*found : nullptr;
}

}  // namespace

void reset_desktop() {
    desktop.cols = Desktop().cols;
    desktop.rows = Desktop().rows;
    hang_up_lines();
    end_workers();
    wipe_lines();
    wipe_desktop();
    answers.clear();
    fallback_label.clear();
    forget_shown_boxes();
    forget_shown_lines();
}

// ---- Answers -----------------------------------------------------------------------------------------

void answer_box(const char* label) {
    lay_ready({false, false, label, -1});
}

void answer_other_boxes(const char* label) {
    fallback_label = label;
    set_person(test_person);
}

void forget_answers() {
    answers.clear();
}

void answer_file_dialog(const char* path, int filter) {
    lay_ready({true, false, path, filter});
}

void cancel_file_dialog() {
    lay_ready({true, true, "", -1});
}

int unused_answers() {
    return static_cast<int>(answers.size());
}

// ---- What has been shown -----------------------------------------------------------------------------

const std::vector<std::string>& shown_lines() {
    return kept_lines();
}

void forget_shown_lines() {
    kept_lines().clear();
}

int beep_count() {
    return static_cast<int>(std::count(kept_lines().begin(), kept_lines().end(), "beep"));
}

// ---- The main window ---------------------------------------------------------------------------------

void set_window_size(int cols, int rows) {
    must_apply(person_resizes(cols, rows));
}

WindowHandle make_test_window(WindowProcedure procedure) {
    MainWindowSpec spec = {};
    spec.class_name = "Test";
    spec.title = "Test";
    spec.procedure = procedure;
    const WindowHandle window = create_main_window(&spec);
    show_window(window, ShowWindow::NORMAL);
    return window;
}

std::string screen_row(int row) {
    return pane_row(desktop.main.handle, row);
}

Cell screen_cell(int col, int row) {
    return pane_cell(desktop.main.handle, col, row);
}

std::string pane_row(WindowHandle pane, int row) {
    const CellGrid* grid = find_grid(pane);
    std::string text;
    for (int col = 0; grid != nullptr && row >= 0 && row < grid->rows && col < grid->cols; col++) {
        text += static_cast<char>(pane_cell(pane, col, row).byte);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

Cell pane_cell(WindowHandle pane, int col, int row) {
    const CellGrid* grid = find_grid(pane);
    if (grid == nullptr || col < 0 || row < 0 || col >= grid->cols || row >= grid->rows) {
        stop_run("there is no cell " + std::to_string(col) + "," + std::to_string(row));
    }
    return grid->cells[static_cast<std::size_t>(row * grid->cols + col)];
}

int focused_control(ViewHandle view) {
    return find_view(view, "focused_control")->focus_id;
}

bool caret_shown() {
    return grid_caret_visible(&desktop.main.grid);
}

int caret_cell_col() {
    return desktop.main.grid.caret_x / CELL_WIDTH;
}

int caret_cell_row() {
    return desktop.main.grid.caret_y / CELL_HEIGHT;
}

int scroll_range_high() {
    return desktop.main.grid.scroll_high;
}

int scroll_position_now() {
    return desktop.main.grid.scroll_position;
}

std::string window_title() {
    return desktop.main.title;
}

bool menu_enabled(int id) {
    return !item_of(id).grayed;
}

bool menu_checked(int id) {
    return item_of(id).checked;
}

std::string menu_text(int id) {
    return item_of(id).text;
}

std::string status_text(int id) {
    const Control* control = status_control(id);
    return control != nullptr ? control->text : "";
}

bool status_shown(int id) {
    const Control* control = status_control(id);
    return control != nullptr && !control->hidden;
}

void watch_painted_texts(const std::function<void(const std::string& text)>& see) {
    desktop.see_painted_text = see;
}

// ---- Time, messages and keys -------------------------------------------------------------------------

void pump_messages() {
    serve_messages();
}

bool messages_waiting() {
    return messages_are_waiting();
}

void at_pump(int count, const std::function<void()>& act) {
    act_at_pump(count, act);
}

void advance_clock(int ms) {
    must_apply(person_waits(ms));
}

bool timer_running(int id) {
    return timer_period(id) != 0;
}

int timer_period(int id) {
    return timer_period_of(desktop.main.handle, id);
}

void hold_keys(bool shift, bool ctrl) {
    desktop.person.shift = shift;
    desktop.person.ctrl = ctrl;
}

void press_key(const char* chord) {
    must_apply(person_presses(chord));
}

void type_text(const char* text) {
    must_apply(person_types(text));
}

void set_pointer_cell(int col, int row) {
    must_apply(person_places_pointer(col, row));
}

}  // namespace hexlane::platform
