// views.cpp: the view toolkit in memory. What a person does to a view is in person_views.cpp.

#include "platform/views.h"

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/record.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

Control make_control(const ControlSpec& spec) {
    const bool hidden = (spec.flags & CONTROL_HIDDEN) != 0;
    const bool disabled = (spec.flags & CONTROL_DISABLED) != 0;
    const bool checked = (spec.flags & CONTROL_CHECKED) != 0;
    return {&spec, "", hidden, disabled, checked, {}, -1};
}

bool takes_focus(const Control& control) {
    const ControlKind kind = control.spec->kind;
    return kind != ControlKind::TEXT && kind != ControlKind::FRAME && kind != ControlKind::ICON &&
           !control.hidden && !control.disabled;
}

ViewHandle add_view(const ViewSpec* spec, WindowProcedure procedure, bool child) {
    View view = {++desktop.last_handle, spec, procedure, {}, 0, 0, child};
    for (int i = 0; i < spec->control_count; i++) {
        view.controls.push_back(make_control(spec->controls[i]));
    }
    const auto first = std::find_if(view.controls.begin(), view.controls.end(), takes_focus);
    if (!child && first != view.controls.end()) {
        view.focus_id = first->spec->id;
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

// A radio button and those of its group: up to the next one that starts a group.
void pick_radio(View* view, int id) {
    const auto is_radio = [](const Control& control) { return control.spec->kind == ControlKind::RADIO; };
    const auto starts_group = [&](const Control& control) {
        return is_radio(control) && (control.spec->flags & CONTROL_GROUP) != 0;
    };
    const auto here = std::find_if(view->controls.begin(), view->controls.end(),
                                   [id](const Control& control) { return control.spec->id == id; });
    auto first = here;
    while (first != view->controls.begin() && !starts_group(*first)) {
        --first;
    }
    const auto behind = std::find_if(here + 1, view->controls.end(), starts_group);
    for (auto control = first; control != behind; ++control) {
        if (is_radio(*control)) {
            control->checked = control == here;
        }
    }
}

}  // namespace

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
    forget_window(handle);
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
    copy_text(text, size, control != nullptr ? control->text.c_str() : "");
}

void view_hide_control(ViewHandle handle, int id) {
    if (Control* control = find_control(handle, id, "view_hide_control")) {
        control->hidden = true;
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
        pick_radio(find_view(handle, "view_check"), id);
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
        control->selection = -1;
    }
}

void view_add_to_list(ViewHandle handle, int id, const char* text) {
    if (Control* control = find_control(handle, id, "view_add_to_list")) {
        control->rows.push_back(text);
    }
}

void view_select(ViewHandle handle, int id, int index) {
    if (Control* control = find_control(handle, id, "view_select")) {
        const bool there = index >= 0 && index < static_cast<int>(control->rows.size());
        control->selection = there ? index : -1;
    }
}

int view_selection(ViewHandle handle, int id) {
    const Control* control = find_control(handle, id, "view_selection");
    return control != nullptr ? control->selection : -1;
}

// ---- Drawing -----------------------------------------------------------------------------------------

// A control is on show as soon as it changes; there is nothing to draw. The id is looked at all the same.
void view_repaint_control(ViewHandle handle, int id) {
    if (id != -1) {
        find_control(handle, id, "view_repaint_control");
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
