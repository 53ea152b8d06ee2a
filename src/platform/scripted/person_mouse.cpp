// person_mouse.cpp: the mouse and the scroll bars in the person's hands, over the main window or over a pane
// of the topmost view.

#include "platform/scripted/person.h"

#include "platform/scripted/modal.h"
#include "platform/scripted/person_internal.h"

namespace hexlane::platform {

namespace {

Refusal find_mouse_target(const ControlName* pane, InputTarget* target) {
    if (pane != nullptr) {
        return find_pane(*pane, target);
    }
    *target = main_window_target();
    return main_window_refuses("the mouse");
}

bool cell_is_inside(const InputTarget& target, int col, int row) {
    const CellGrid& grid = *find_grid(target.surface);
    return col >= 0 && row >= 0 && col < grid.cols && row < grid.rows;
}

// Why this act can't follow on those before it.
Refusal button_refuses(const InputTarget& target, const MouseEvent& event) {
    const Person& person = desktop.person;
    if (person.button_down && person.button_surface != target.surface) {
        return "the mouse: the button is held over another window";
    }
    if (event.act == MouseAct::UP && !person.button_down) {
        return "the button is not down";
    }
    if ((event.act == MouseAct::DOWN || event.act == MouseAct::RIGHT) && person.button_down) {
        return "the button is down already";
    }
    if (event.act == MouseAct::RIGHT && target.pane == 0) {
        return "the main window has nothing for the right button";
    }
    // A held button keeps the mouse with the window.
    return !person.button_down && !cell_is_inside(target, event.col, event.row)
               ? "the mouse: that cell is outside"
               : "";
}

// A press brings its window to the front, or gives the focus to its pane. Gives false when it does not come
// to that: something came up, or a field of the view keeps the focus.
bool press_reaches(const InputTarget& target) {
    if (target.pane == 0) {
        return click_reaches_window();
    }
    for (const Control& control : top_view()->controls) {
        if (control.pane == target.surface) {
            return focus_moves_to(control.spec);
        }
    }
    return false;
}

// Both messages of a right click go to its pane, the second one unless something came up in the first.
void click_right(const InputTarget& target, int64_t keys, int64_t place) {
    const int openings = desktop.modal_openings;
    send_input(target, WM_RBUTTONDOWN, MK_RBUTTON | keys, place);
    if (desktop.modal_openings == openings && !top_modal()->done) {
        send_input(target, WM_RBUTTONUP, keys, place);
    }
}

}  // namespace

Refusal person_uses_mouse(const MouseEvent& event) {
    InputTarget target;
    Refusal refusal = find_mouse_target(event.in_pane ? &event.pane : nullptr, &target);
    if (refusal.empty()) {
        refusal = button_refuses(target, event);
    }
    if (!refusal.empty()) {
        return refusal;
    }
    const bool presses = event.act == MouseAct::DOWN || event.act == MouseAct::RIGHT;
    if (presses && !press_reaches(target)) {
        return "";
    }
    Person& person = desktop.person;
    person.button_down = event.act == MouseAct::DOWN || (event.act == MouseAct::MOVE && person.button_down);
    person.button_surface = target.surface;
    const int x = event.col * CELL_WIDTH;
    const int y = event.row * CELL_HEIGHT;
    if (target.pane == 0) {
        person.pointer_x = x;
        person.pointer_y = y;
    }
    person.shift = event.shift;
    person.ctrl = event.ctrl;
    const int keys = (event.shift ? MK_SHIFT : 0) | (event.ctrl ? MK_CONTROL : 0);
    const int64_t place = make_parameter(x, y);
    if (event.act == MouseAct::RIGHT) {
        click_right(target, keys, place);
    } else {
        constexpr uint32_t MESSAGES[] = {WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP};
        const int flags = keys | (person.button_down ? MK_LBUTTON : 0);
        const bool outside = event.act == MouseAct::UP && !cell_is_inside(target, event.col, event.row);
        send_input(target, outside ? WM_NCLBUTTONUP : MESSAGES[static_cast<int>(event.act)], flags, place);
    }
    desktop.person.shift = desktop.person.ctrl = false;
    return "";
}

Refusal person_places_pointer(int col, int row) {
    desktop.person.pointer_x = col * CELL_WIDTH;
    desktop.person.pointer_y = row * CELL_HEIGHT;
    return "";
}

// Of a pane, whose id stands where the main window's position does, the second parameter has the position.
Refusal person_scrolls(int request, int position) {
    InputTarget target = main_window_target();
    Refusal refusal = top_view() != nullptr ? pane_in_use("the scroll bar", &target)
                                            : main_window_refuses("the scroll bar");
    if (!refusal.empty()) {
        return refusal;
    }
    const CellGrid& grid = *find_grid(target.surface);
    if (request == SB_THUMBPOSITION && (position < grid.scroll_low || position > grid.scroll_high)) {
        return "the scroll bar goes from " + std::to_string(grid.scroll_low) + " to " +
               std::to_string(grid.scroll_high);
    }
    if (target.pane != 0) {
        send_input(target, WM_VSCROLL, request, position);
    } else {
        send_input(target, WM_VSCROLL, make_parameter(request, position), 0);
    }
    return "";
}

}  // namespace hexlane::platform
