// person_views.cpp: message boxes, views and file dialogs in the person's hands.

#include "platform/scripted/person.h"

#include "platform/common/file_questions.h"
#include "platform/common/input_rules.h"
#include "platform/keys.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/person_internal.h"
#include "platform/scripted/record.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace hexlane::platform {

namespace {

using Kinds = std::initializer_list<ControlKind>;

// Second parameter of WM_COMMAND from a control: nonzero, so that it is not taken for the menu's.
constexpr int64_t CONTROL_SOURCE = 1;

std::string plain(const char* label) {
    char text[256];
    plain_label(label != nullptr ? label : "", text, sizeof text);
    return text;
}

std::string name_of(const ControlName& name) {
    if (name.id >= 0) {
        return "@" + std::to_string(name.id);
    }
    return quoted(name.label) + (name.number > 1 ? "/" + std::to_string(name.number) : "");
}

Refusal no_such(const ControlName& name) {
    return top_modal()->name + " has no " + name_of(name);
}

// A control is called by its own label; one without a label by that of the text in front of it.
bool is_called(const std::vector<Control>& controls, std::size_t at, const std::string& label) {
    const std::string own = plain(controls[at].spec->label);
    if (!own.empty() || at == 0) {
        return own == label;
    }
    const ControlSpec* before = controls[at - 1].spec;
    return before->kind == ControlKind::TEXT && plain(before->label) == label;
}

// The control of that name among those of the given kinds, if a person can get at it.
Refusal find_usable(const ControlName& name, Kinds kinds, Control** found) {
    View* view = top_view();
    if (view == nullptr) {
        return "no view is up";
    }
    int number = 0;
    for (std::size_t i = 0; i < view->controls.size() && *found == nullptr; i++) {
        Control& control = view->controls[i];
        const bool right_kind = std::find(kinds.begin(), kinds.end(), control.spec->kind) != kinds.end();
        if (!right_kind) {
            continue;
        }
        if (name.id >= 0 ? control.spec->id == name.id
                         : is_called(view->controls, i, name.label) && ++number == name.number) {
            *found = &control;
        }
    }
    if (*found == nullptr) {
        return no_such(name);
    }
    return (*found)->hidden     ? name_of(name) + " is hidden"
           : (*found)->disabled ? name_of(name) + " is disabled"
                                : "";
}

bool value_is_good(const Control& control) {
    return control.spec->kind != ControlKind::FIELD || control.hidden || control.disabled ||
           value_in_range(control.spec->rule, control.text.c_str());
}

void tell_view(const ControlSpec* control) {
    deliver(top_modal()->view, WM_COMMAND, control->id, CONTROL_SOURCE);
}

void click(const ControlSpec* button) {
    if (focus_moves_to(button)) {
        tell_view(button);
    }
}

Refusal press_box_button(Modal* box, const ControlName& name) {
    const auto found = std::find(box->buttons.begin(), box->buttons.end(), name.label);
    if (name.id >= 0 || found == box->buttons.end()) {
        return no_such(name);
    }
    box->result = static_cast<int>(found - box->buttons.begin());
    box->done = true;
    return "";
}

// Esc presses Cancel or the only button, Enter the first one.
void press_key_in_box(Modal* box, int key) {
    const auto cancel = std::find(box->buttons.begin(), box->buttons.end(), "Cancel");
    if (key == VK_ESCAPE && cancel != box->buttons.end()) {
        box->result = static_cast<int>(cancel - box->buttons.begin());
    } else if (key == VK_ESCAPE && box->buttons.size() > 1) {
        return;
    } else {
        box->result = 0;
    }
    box->done = true;
}

const ControlSpec* button_with(const View* view, uint16_t flag) {
    for (const Control& control : view->controls) {
        if ((control.spec->flags & flag) != 0 && !control.hidden && !control.disabled) {
            return control.spec;
        }
    }
    return nullptr;
}

// Enter presses the button with the focus, else the default one.
void press_enter(const View* view) {
    const ControlSpec* pressed = button_with(view, CONTROL_DEFAULT);
    for (const Control& control : view->controls) {
        if (control.spec->id == view->focus_id && control.spec->kind == ControlKind::BUTTON) {
            pressed = control.spec;
        }
    }
    if (pressed != nullptr) {
        click(pressed);
    }
}

// Esc presses the cancel button or closes the view.
void press_escape(const View* view) {
    const ControlSpec* cancel = button_with(view, CONTROL_CANCEL);
    if (cancel != nullptr) {
        click(cancel);
    } else {
        deliver(view->handle, WM_CLOSE, 0, 0);
    }
}

bool is_radio(const Control& control) {
    return control.spec->kind == ControlKind::RADIO;
}

// Radio buttons of a group are one stop of the Tab key: the one that is picked, else the first.
bool is_tab_stop(const View* view, std::size_t at) {
    const Control& control = view->controls[at];
    if (!takes_focus(control) || !is_radio(control) || control.checked) {
        return takes_focus(control);
    }
    const RadioGroup group = radio_group(view, at);
    for (std::size_t i = group.first; i < group.behind; i++) {
        const Control& other = view->controls[i];
        if (is_radio(other) && takes_focus(other) && (other.checked || i < at)) {
            return false;
        }
    }
    return true;
}

// The next stop behind the focus, or before it, round the end.
void move_focus(View* view, bool back) {
    const std::size_t count = view->controls.size();
    std::size_t at = 0;
    while (at < count && view->controls[at].spec->id != view->focus_id) {
        at++;
    }
    for (std::size_t step = 1; step < count; step++) {
        const std::size_t next = (at + (back ? count - step : step)) % count;
        if (is_tab_stop(view, next)) {
            focus_moves_to(view->controls[next].spec);
            return;
        }
    }
}

Refusal person_selects_row(Control* list, int index) {
    if (index < 0 || index >= static_cast<int>(list->rows.size())) {
        return "the list has " + std::to_string(list->rows.size()) + " rows";
    }
    if (focus_moves_to(list->spec) && (list->selection != index || is_typed_into(*list))) {
        select_row(list, index);
        tell_view(list->spec);
    }
    return "";
}

// A label's letter behind its '&', in either case.
bool has_mnemonic(const ControlSpec* spec, int key) {
    const char* label = spec->label != nullptr ? spec->label : "";
    for (; *label != '\0'; label++) {
        if (*label == '&' && *++label != '&') {
            return (*label & ~0x20) == key || *label == key;
        }
    }
    return false;
}

// A label leads to the control behind it.
void use_mnemonic_of(View* view, std::size_t at) {
    Control& control = view->controls[at];
    switch (control.spec->kind) {
    case ControlKind::BUTTON:
        click(control.spec);
        return;
    case ControlKind::CHECK:
        if (focus_moves_to(control.spec)) {
            control.checked = !control.checked;
            tell_view(control.spec);
        }
        return;
    case ControlKind::RADIO:
        if (focus_moves_to(control.spec)) {
            view_check(view->handle, control.spec->id, true);
            tell_view(control.spec);
        }
        return;
    case ControlKind::TEXT:
        if (at + 1 < view->controls.size() && takes_focus(view->controls[at + 1])) {
            focus_moves_to(view->controls[at + 1].spec);
        }
        return;
    default:
        focus_moves_to(control.spec);
    }
}

Refusal press_mnemonic(View* view, int key) {
    for (std::size_t i = 0; i < view->controls.size(); i++) {
        const Control& control = view->controls[i];
        const ControlKind kind = control.spec->kind;
        const bool usable = takes_focus(control) || (kind == ControlKind::TEXT && !control.hidden);
        if (usable && has_mnemonic(control.spec, key)) {
            use_mnemonic_of(view, i);
            return "";
        }
    }
    return top_modal()->name + " has no mnemonic " + static_cast<char>(key);
}

constexpr Kinds LISTS = {ControlKind::LIST, ControlKind::CHOICE};

// Length of the UTF-8 character at the front of `text`; a stray byte counts as one.
std::size_t character_length(const std::string& text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        end++;
    }
    return end - at;
}

}  // namespace

View* top_view() {
    const Modal* modal = top_modal();
    return modal != nullptr && modal->kind == ModalKind::VIEW ? find_view(modal->view, "view") : nullptr;
}

bool focus_moves_to(const ControlSpec* to) {
    View* view = top_view();
    const bool is_button = to->kind == ControlKind::BUTTON;
    const bool cancels = (to->flags & CONTROL_CANCEL) != 0;
    for (const Control& control : view->controls) {
        const bool judged = is_button || (control.spec->id == view->focus_id && control.spec != to);
        if (judged && !cancels && !value_is_good(control)) {
            view->focus_id = control.spec->id;
            report_bad_value(control.spec->rule);
            return false;
        }
    }
    view->focus_id = to->id;
    return true;
}

Refusal find_pane(const ControlName& name, InputTarget* target) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(name, {ControlKind::PANE}, &control);
    if (refusal.empty()) {
        *target = {top_modal()->view, control->spec->id, control->pane};
    }
    return refusal;
}

Refusal pane_in_use(const char* what, InputTarget* target) {
    const View* view = top_view();
    const Control* found = nullptr;
    for (const Control& control : view->controls) {
        const bool usable = control.spec->kind == ControlKind::PANE && takes_focus(control);
        if (usable && (found == nullptr || control.spec->id == view->focus_id)) {
            found = &control;
        }
    }
    if (found == nullptr) {
        return std::string(what) + " while " + top_modal()->name + " is up";
    }
    *target = {view->handle, found->spec->id, found->pane};
    return "";
}

Refusal press_key_in_view(int key, int modifiers) {
    View* view = top_view();
    if ((modifiers & KEY_WITH_ALT) != 0) {
        return press_mnemonic(view, key);
    }
    switch (key) {
    case VK_RETURN:
        press_enter(view);
        break;
    case VK_ESCAPE:
        press_escape(view);
        break;
    case VK_TAB:
        move_focus(view, (modifiers & KEY_WITH_SHIFT) != 0);
        break;
    }
    return "";
}

Refusal person_clicks(const ControlName& button) {
    Modal* modal = top_modal();
    if (modal == nullptr) {
        return "nothing is up that has buttons";
    }
    if (modal->kind == ModalKind::BOX) {
        return press_box_button(modal, button);
    }
    Control* control = nullptr;
    const Refusal refusal = find_usable(button, {ControlKind::BUTTON}, &control);
    if (refusal.empty()) {
        click(control->spec);
    }
    return refusal;
}

// The text is typed over what stands there, and the view hears of each character; those that the field does
// not take are refused, in silence. Something that comes up takes the rest.
Refusal person_fills(const ControlName& field, const std::string& text) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(field, {ControlKind::FIELD, ControlKind::CHOICE}, &control);
    if (refusal.empty() && !is_typed_into(*control)) {
        return name_of(field) + " takes no typing";
    }
    if (!refusal.empty() || !focus_moves_to(control->spec)) {
        return refusal;
    }
    const int openings = desktop.modal_openings;
    control->text.clear();
    if (text.empty()) {
        tell_view(control->spec);
    }
    for (std::size_t at = 0; at < text.size(); at += character_length(text, at)) {
        std::string longer = control->text + text.substr(at, character_length(text, at));
        longer.back() = field_character(control->spec->rule, longer.back());
        if (!field_takes(control->spec->rule, longer.c_str())) {
            continue;
        }
        control->text = longer;
        tell_view(control->spec);
        if (desktop.modal_openings != openings || top_modal()->done) {
            break;
        }
    }
    return "";
}

Refusal person_checks(const ControlName& box, bool checked) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(box, {ControlKind::CHECK}, &control);
    if (!refusal.empty()) {
        return refusal;
    }
    if (control->checked == checked) {
        return name_of(box) + (checked ? " is checked already" : " is not checked");
    }
    if (focus_moves_to(control->spec)) {
        control->checked = checked;
        tell_view(control->spec);
    }
    return "";
}

Refusal person_picks(const ControlName& radio) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(radio, {ControlKind::RADIO}, &control);
    if (refusal.empty() && focus_moves_to(control->spec)) {
        view_check(top_modal()->view, control->spec->id, true);
        tell_view(control->spec);
    }
    return refusal;
}

Refusal person_selects(const ControlName& list, int index) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(list, LISTS, &control);
    return refusal.empty() ? person_selects_row(control, index) : refusal;
}

Refusal person_selects(const ControlName& list, const std::string& text) {
    Control* control = nullptr;
    const Refusal refusal = find_usable(list, LISTS, &control);
    if (!refusal.empty()) {
        return refusal;
    }
    const auto row = std::find(control->rows.begin(), control->rows.end(), text);
    if (row == control->rows.end()) {
        return "the list has no row " + quoted(text);
    }
    return person_selects_row(control, static_cast<int>(row - control->rows.begin()));
}

// The dialog stays up after a question answered No.
Refusal person_gives_file(const std::string& path, int filter) {
    Modal* modal = top_modal();
    if (modal == nullptr || modal->kind != ModalKind::FILE_DIALOG) {
        return "no file dialog is up";
    }
    FileDialog* dialog = modal->dialog;
    const int entry = filter < 0 ? dialog->filter_index : filter;
    const bool has_custom = dialog->custom_text != nullptr && dialog->custom_text[0] != '\0';
    if (filter >= 0 && (entry < (has_custom ? 0 : 1) || entry > dialog->filter_count)) {
        return "the file dialog has no filter " + std::to_string(entry);
    }
    const int settled = modal->saves ? settle_save_file(dialog, path.c_str(), entry)
                                     : settle_open_file(dialog, path.c_str(), entry);
    if (settled == 1) {
        modal->result = 1;
        modal->done = true;
    }
    return "";
}

Refusal person_cancels() {
    Modal* modal = top_modal();
    if (modal != nullptr && modal->name == "view IDD_PRINT") {
        press_escape(top_view());
        return "";
    }
    if (modal == nullptr || modal->kind != ModalKind::FILE_DIALOG) {
        return "no file dialog is up";
    }
    modal->result = 0;
    modal->done = true;
    return "";
}

Refusal person_presses_in_modal(int key) {
    Modal* modal = top_modal();
    switch (modal->kind) {
    case ModalKind::BOX:
        press_key_in_box(modal, key);
        return "";
    case ModalKind::VIEW:
        return press_key_in_view(key, 0);
    case ModalKind::FILE_DIALOG:
        return key == VK_ESCAPE ? person_cancels() : "use `choose` to answer a file dialog";
    }
    return "";
}

}  // namespace hexlane::platform
