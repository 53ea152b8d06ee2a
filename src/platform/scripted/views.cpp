// views.cpp: the view toolkit in memory. What a person does to a view is in person_views.cpp.

#include "platform/views.h"

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_clock.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

Control make_control(const ControlSpec& spec) {
    const bool hidden = (spec.flags & CONTROL_HIDDEN) != 0;
    const bool disabled = (spec.flags & CONTROL_DISABLED) != 0;
    const bool checked = (spec.flags & CONTROL_CHECKED) != 0;
    Control control = {&spec, "", hidden, disabled, checked, {}, -1};
    if (spec.kind == ControlKind::PANE) {
        control.pane = ++desktop.last_handle;
        grid_resize(&control.grid, spec.width, spec.rows);
    }
    return control;
}

ViewHandle add_view(const ViewSpec* spec, WindowProcedure procedure, bool child) {
    View view = {++desktop.last_handle, spec, procedure, {}, 0, 0, child};
    for (int i = 0; i < spec->control_count; i++) {
        view.controls.push_back(make_control(spec->controls[i]));
    }
    if (!child) {
        focus_first_control(&view);
    }
    desktop.views.emplace(view.handle, view);
    return view.handle;
}

// The control that a call names; nullptr with handle 0. A wrong id is a fault of the program.
Control* find_control(ViewHandle handle, int id, const char* call) {
    View* view = find_view(handle, call);
    if (view == nullptr) {
        return nullptr;
    }
    for (Control& control : view->controls) {
        if (control.spec->id == id) {
            return &control;
        }
    }
    stop_run(std::string(call) + ": " + view->spec->name + " has no control " + std::to_string(id));
}

Modal* modal_of(ViewHandle view) {
    const auto found = std::find_if(desktop.modals.begin(), desktop.modals.end(),
                                    [view](const Modal* modal) { return modal->view == view; });
    return found != desktop.modals.end() ? *found : nullptr;
}

// Picks a radio button and lets go of the others of its group.
void pick_radio(View* view, const Control* picked) {
    const auto at = static_cast<std::size_t>(picked - view->controls.data());
    const RadioGroup group = radio_group(view, at);
    for (std::size_t i = group.first; i < group.behind; i++) {
        if (view->controls[i].spec->kind == ControlKind::RADIO) {
            view->controls[i].checked = i == at;
        }
    }
}

// A label or button that nothing was written over has its label, a drop-down that can't be typed into the row
// that is picked.
std::string text_of(const Control& control) {
    switch (control.spec->kind) {
    case ControlKind::FIELD:
        return control.text;
    case ControlKind::CHOICE:
        if (is_typed_into(control)) {
            return control.text;
        }
        return control.selection >= 0 ? control.rows[static_cast<std::size_t>(control.selection)] : "";
    default:
        return control.text.empty() && control.spec->label != nullptr ? control.spec->label : control.text;
    }
}

// A control that can't have the focus any more leaves it to the first one that can.
void give_focus_away(ViewHandle handle, const Control& control) {
    View* view = find_view(handle, "view");
    if (!view->child && view->focus_id == control.spec->id && !takes_focus(control)) {
        focus_first_control(view);
    }
}

// A button that is held over a pane is let go when its view closes.
void release_button_over(const View& view) {
    for (const Control& control : view.controls) {
        if (control.pane != NO_WINDOW && control.pane == desktop.person.button_surface) {
            desktop.person.button_down = false;
        }
    }
}

}  // namespace

bool is_typed_into(const Control& control) {
    return control.spec->kind == ControlKind::FIELD ||
           (control.spec->kind == ControlKind::CHOICE && (control.spec->flags & CONTROL_EDITABLE) != 0);
}

void select_row(Control* list, int index) {
    const bool there = index >= 0 && index < static_cast<int>(list->rows.size());
    list->selection = there ? index : -1;
    if (is_typed_into(*list)) {
        list->text = there ? list->rows[static_cast<std::size_t>(index)] : "";
    }
}

bool takes_focus(const Control& control) {
    const ControlKind kind = control.spec->kind;
    return kind != ControlKind::TEXT && kind != ControlKind::FRAME && kind != ControlKind::ICON &&
           !control.hidden && !control.disabled;
}

void focus_first_control(View* view) {
    const auto first = std::find_if(view->controls.begin(), view->controls.end(), takes_focus);
    view->focus_id = first != view->controls.end() ? first->spec->id : 0;
}

RadioGroup radio_group(const View* view, std::size_t at) {
    const auto starts_group = [view](std::size_t i) {
        const ControlSpec* spec = view->controls[i].spec;
        return spec->kind == ControlKind::RADIO && (spec->flags & CONTROL_GROUP) != 0;
    };
    RadioGroup group = {at, at + 1};
    while (group.first > 0 && !starts_group(group.first)) {
        group.first--;
    }
    while (group.behind < view->controls.size() && !starts_group(group.behind)) {
        group.behind++;
    }
    return group;
}

CellGrid* find_grid(WindowHandle surface) {
    if (surface == NO_WINDOW) {
        return nullptr;
    }
    if (surface == desktop.main.handle) {
        return &desktop.main.grid;
    }
    for (auto& [handle, view] : desktop.views) {
        for (Control& control : view.controls) {
            if (control.pane == surface) {
                return &control.grid;
            }
        }
    }
    return nullptr;
}

View* find_view(ViewHandle handle, const char* call) {
    if (handle == NO_WINDOW) {
        return nullptr;
    }
    const auto found = desktop.views.find(handle);
    if (found == desktop.views.end()) {
        stop_run(std::string(call) + ": there is no view " + std::to_string(handle));
    }
    return &found->second;
}

View* status_view() {
    const auto found = std::find_if(desktop.views.begin(), desktop.views.end(),
                                    [](const auto& entry) { return entry.second.child; });
    return found != desktop.views.end() ? &found->second : nullptr;
}

// ---- Life --------------------------------------------------------------------------------------------

ViewHandle view_create(const ViewSpec* spec, WindowHandle, WindowProcedure procedure) {
    return add_view(spec, procedure, false);
}

int view_run(ViewHandle handle) {
    const View* view = find_view(handle, "view_run");
    if (view == nullptr || view->child || modal_of(handle) != nullptr) {
        return -1;
    }
    const std::string name = view->spec->name;
    record_line("view " + name + " " + quoted(view->spec->title));
    Modal modal;
    modal.kind = ModalKind::VIEW;
    modal.name = "view " + name;
    modal.closing_line = "view " + name + " closed";
    modal.view = handle;
    run_modal(&modal);
    release_button_over(desktop.views.at(handle));
    forget_messages(handle);
    forget_timers(handle);
    desktop.views.erase(handle);
    return modal.result;
}

void view_end(ViewHandle handle, int result) {
    Modal* modal = modal_of(handle);
    if (modal == nullptr) {
        stop_run("view_end: that view is not up");
    }
    modal->done = true;
    modal->result = result;
}

void view_attach(ViewHandle handle) {
    find_view(handle, "view_attach");
}

int64_t view_default(ViewHandle handle, uint32_t message, int64_t first, int64_t) {
    const View* view = find_view(handle, "view_default");
    if (view == nullptr || view->child) {
        return 0;
    }
    bool ends = message == WM_CLOSE;
    if (message == WM_COMMAND) {
        ends = std::any_of(view->controls.begin(), view->controls.end(), [first](const Control& control) {
            return control.spec->id == low_word(first) && (control.spec->flags & CONTROL_CANCEL) != 0;
        });
    }
    if (ends) {
        view_end(handle, 0);
    }
    return 0;
}

ViewHandle view_create_child(WindowHandle, const ViewSpec* spec, WindowProcedure procedure) {
    if (status_view() != nullptr) {
        stop_run("view_create_child: there is a child view already");
    }
    const ViewHandle handle = add_view(spec, procedure, true);
    deliver(handle, WM_INITDIALOG, 0, 0);
    return handle;
}

// ---- Controls ----------------------------------------------------------------------------------------

void view_choose_field(ViewHandle handle, int id) {
    if (find_control(handle, id, "view_choose_field") != nullptr) {
        find_view(handle, "view_choose_field")->chosen_field = id;
    }
}

void view_set_text(ViewHandle handle, const char* text) {
    if (const View* view = find_view(handle, "view_set_text")) {
        find_control(handle, view->chosen_field, "view_set_text")->text = text;
    }
}

void view_get_text(ViewHandle handle, int id, char* text, std::size_t size) {
    const Control* control = find_control(handle, id, "view_get_text");
    copy_text(text, size, control != nullptr ? text_of(*control).c_str() : "");
}

void view_hide_control(ViewHandle handle, int id) {
    if (Control* control = find_control(handle, id, "view_hide_control")) {
        control->hidden = true;
        give_focus_away(handle, *control);
    }
}

void view_show_control(ViewHandle handle, int id) {
    if (Control* control = find_control(handle, id, "view_show_control")) {
        control->hidden = false;
    }
}

void view_enable_control(ViewHandle handle, int id, bool enabled) {
    if (Control* control = find_control(handle, id, "view_enable_control")) {
        control->disabled = !enabled;
        give_focus_away(handle, *control);
    }
}

void view_focus_control(ViewHandle handle, int id) {
    if (find_control(handle, id, "view_focus_control") != nullptr) {
        find_view(handle, "view_focus_control")->focus_id = id;
    }
}

void view_check(ViewHandle handle, int id, bool checked) {
    Control* control = find_control(handle, id, "view_check");
    if (control == nullptr) {
        return;
    }
    if (control->spec->kind == ControlKind::RADIO && checked) {
        pick_radio(find_view(handle, "view_check"), control);
    } else {
        control->checked = checked;
    }
}

bool view_checked(ViewHandle handle, int id) {
    const Control* control = find_control(handle, id, "view_checked");
    return control != nullptr && control->checked;
}

void view_clear_list(ViewHandle handle, int id) {
    if (Control* control = find_control(handle, id, "view_clear_list")) {
        control->rows.clear();
        select_row(control, -1);
    }
}

void view_add_to_list(ViewHandle handle, int id, const char* text) {
    if (Control* control = find_control(handle, id, "view_add_to_list")) {
        control->rows.push_back(text);
    }
}

void view_select(ViewHandle handle, int id, int index) {
    if (Control* control = find_control(handle, id, "view_select")) {
        select_row(control, index);
    }
}

int view_selection(ViewHandle handle, int id) {
    const Control* control = find_control(handle, id, "view_selection");
    return control != nullptr ? control->selection : -1;
}

// Nobody rests a pointer here.
void view_set_tip(ViewHandle handle, int id, const char*) {
    find_control(handle, id, "view_set_tip");
}

WindowHandle view_pane(ViewHandle handle, int id) {
    const Control* control = find_control(handle, id, "view_pane");
    return control != nullptr ? control->pane : NO_WINDOW;
}

// ---- Drawing -----------------------------------------------------------------------------------------

// A control is on show as soon as it changes; there is nothing to draw. The id is looked at all the same.
void view_repaint_control(ViewHandle handle, int id) {
    const Control* control = id != -1 ? find_control(handle, id, "view_repaint_control") : nullptr;
    if (control != nullptr && desktop.see_painted_text) {
        desktop.see_painted_text(control->text);
    }
}

// The child view has no place of its own here: it takes the two cell rows that the text leaves free.
void view_parent_resized(WindowHandle) {}

void view_menu_hint(WindowHandle, int64_t first, int64_t) {
    const int id = low_word(first);
    if (id == 0) {
        return;
    }
    const char* hint = nullptr;
    for (const MenuPopup& popup : desktop.main.popups) {
        hint = popup.id == id ? popup.hint : hint;
    }
    if (const MenuItem* item = find_menu_item(id)) {
        hint = item->spec.hint;
    }
    record_line("hint " + std::to_string(id) + " " + quoted(hint != nullptr ? hint : ""));
}

}  // namespace hexlane::platform
