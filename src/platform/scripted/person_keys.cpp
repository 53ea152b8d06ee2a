// person_keys.cpp: the keyboard in the person's hands. Keys go to the main window, or to the pane with the
// focus of the topmost view; Enter, Esc, Tab and mnemonics are the view's own.

#include "platform/scripted/person.h"

#include "platform/keys.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/person_internal.h"
#include "platform/scripted/record.h"

namespace hexlane::platform {

namespace {

// ---- Where a key goes --------------------------------------------------------------------------------

Refusal find_key_target(InputTarget* target) {
    const View* view = top_view();
    if (view == nullptr) {
        const Refusal refusal = main_window_refuses("a key");
        *target = main_window_target();
        return refusal.empty() && !desktop.main.has_focus ? "a key: the window does not have the focus"
                                                          : refusal;
    }
    const Refusal refusal = pane_in_use("a key", target);
    return refusal.empty() && view->focus_id != target->pane
               ? "a key: the focus is not on a pane but on @" + std::to_string(view->focus_id)
               : refusal;
}

bool has_focus(const InputTarget& target) {
    if (target.pane == 0) {
        return desktop.main.has_focus;
    }
    const View* view = top_view();
    return view != nullptr && view->handle == target.window && !top_modal()->done &&
           view->focus_id == target.pane;
}

// ---- One key -----------------------------------------------------------------------------------------

void note_modifier(int key, bool down) {
    if (key == VK_SHIFT || key == VK_CONTROL) {
        (key == VK_SHIFT ? desktop.person.shift : desktop.person.ctrl) = down;
    }
}

void send_modifier_down(const InputTarget& target, int key) {
    desktop.person.keys_down.push_back(key);
    note_modifier(key, true);
    send_input(target, WM_KEYDOWN, key, key_parameter(key_by_number(key), 1, false));
    serve_messages();
}

// Keys go up in the opposite order.
void send_last_key_up(const InputTarget& target) {
    const int key = desktop.person.keys_down.back();
    desktop.person.keys_down.pop_back();
    note_modifier(key, false);
    send_input(target, WM_KEYUP, key, key_parameter(key_by_number(key), 1, true));
    serve_messages();
}

// An accelerator's command counts when its entry is enabled, or when the menu has no entry for it.
void send_accelerator(int command) {
    const MenuItem* item = find_menu_item(command);
    if (item == nullptr || !item->grayed) {
        send_input(main_window_target(), WM_COMMAND, command, 0);
    }
}

// Accelerators are the main window's.
KeyPlan plan_of(const InputTarget& target, const KeyEntry* entry, int modifiers) {
    const std::vector<Accelerator>& accelerators = desktop.main.accelerators;
    const int count = target.pane == 0 ? static_cast<int>(accelerators.size()) : 0;
    return plan_key(entry, modifiers, accelerators.data(), count);
}

// F10, and a key with Alt that is no accelerator: the main window hears nothing of it.
bool belongs_to_menu_bar(const InputTarget& target, const KeyEntry* entry, int modifiers) {
    constexpr int VK_F10 = VK_F1 + 9;
    const bool alone = target.pane == 0 && modifiers == 0 && entry->key == VK_F10;
    return !plan_of(target, entry, modifiers).taken && (alone || (modifiers & KEY_WITH_ALT) != 0);
}

// Key down and character are one event: nothing is served between them.
void send_key_down(const InputTarget& target, const KeyEntry* entry, int modifiers) {
    const KeyPlan plan = plan_of(target, entry, modifiers);
    desktop.person.keys_down.push_back(entry->key);
    if (plan.command != 0) {
        send_accelerator(plan.command);
    } else if (!plan.taken) {
        const int64_t second = key_parameter(entry, 1, false);
        send_input(target, WM_KEYDOWN, entry->key, second);
        if (plan.character >= 0) {
            send_input(target, WM_CHAR, plan.character, second);
        }
    }
    serve_messages();
}

// Once something modal has come up, or the target has lost the focus or is gone, what is left of the press
// happens elsewhere; what is held then has been let go.
void press_key(const InputTarget& target, const KeyEntry* entry, int modifiers) {
    const int openings = desktop.modal_openings;
    const auto in_target = [&] { return desktop.modal_openings == openings && has_focus(target); };
    const bool for_menu_bar = belongs_to_menu_bar(target, entry, modifiers);
    const int held[] = {modifiers & KEY_WITH_SHIFT ? VK_SHIFT : 0,
                        modifiers & KEY_WITH_CTRL ? VK_CONTROL : 0};
    for (const int key : held) {
        if (key != 0 && in_target()) {
            send_modifier_down(target, key);
        }
    }
    if (in_target()) {
        if (for_menu_bar) {
            let_go_over_main_window();
        } else {
            send_key_down(target, entry, modifiers);
        }
    }
    while (!desktop.person.keys_down.empty() && in_target()) {
        send_last_key_up(target);
    }
    desktop.person.keys_down.clear();
    desktop.person.shift = desktop.person.ctrl = false;
}

// Splits "Ctrl+Shift+End". Gives nullptr when a part names nothing.
const KeyEntry* parse_chord(const std::string& chord, int* modifiers) {
    *modifiers = 0;
    std::size_t at = 0;
    for (std::size_t plus; (plus = chord.find('+', at)) != std::string::npos; at = plus + 1) {
        const std::string part = chord.substr(at, plus - at);
        if (part == "Shift") {
            *modifiers |= KEY_WITH_SHIFT;
        } else if (part == "Ctrl") {
            *modifiers |= KEY_WITH_CTRL;
        } else if (part == "Alt") {
            *modifiers |= KEY_WITH_ALT;
        } else {
            return nullptr;
        }
    }
    return key_by_name(chord.substr(at).c_str());
}

void type_character(const InputTarget& target, unsigned char character) {
    if (character == '\n' && target.pane != 0) {
        press_key_in_view(VK_RETURN, 0);
        return;
    }
    int shift = 0;
    const KeyEntry* entry = key_by_character(character == '\n' ? '\r' : character, &shift);
    if (entry != nullptr) {
        press_key(target, entry, shift ? KEY_WITH_SHIFT : 0);
    } else {
        send_input(target, WM_CHAR, character, 1);
        serve_messages();
    }
}

// What a view keeps to itself wherever its focus is.
bool is_views_key(const KeyEntry* entry, int modifiers) {
    switch (entry->key) {
    case VK_RETURN:
    case VK_ESCAPE:
        return modifiers == 0;
    case VK_TAB:
        return modifiers == 0 || modifiers == KEY_WITH_SHIFT;
    default:
        return (modifiers & KEY_WITH_ALT) != 0;
    }
}

}  // namespace

Refusal person_presses(const std::string& chord) {
    int modifiers = 0;
    const KeyEntry* entry = parse_chord(chord, &modifiers);
    if (entry == nullptr) {
        return "no key is called " + chord;
    }
    if (top_view() != nullptr && is_views_key(entry, modifiers)) {
        return press_key_in_view(entry->key, modifiers);
    }
    if (top_modal() != nullptr && top_view() == nullptr && modifiers == 0 &&
        (entry->key == VK_RETURN || entry->key == VK_ESCAPE)) {
        return person_presses_in_modal(entry->key);
    }
    InputTarget target;
    Refusal refusal = find_key_target(&target);
    if (refusal.empty()) {
        press_key(target, entry, modifiers);
    }
    return refusal;
}

Refusal person_types(const std::string& text) {
    InputTarget target;
    Refusal refusal = find_key_target(&target);
    if (!refusal.empty()) {
        return refusal;
    }
    LongAct act;
    begin_long_act(&act, static_cast<int64_t>(text.size()));
    for (const char character : text) {
        act.done++;
        type_character(target, static_cast<unsigned char>(character));
        if (act.stopped) {
            break;
        }
        if (!has_focus(target) && act.done < act.total) {
            record_line("stopped after " + std::to_string(act.done));
            break;
        }
    }
    end_long_act(&act);
    return "";
}

Refusal person_sends_character(int code, int repeat) {
    InputTarget target;
    Refusal refusal = find_key_target(&target);
    if (refusal.empty()) {
        send_input(target, WM_CHAR, code, make_parameter(repeat, 0));
    }
    return refusal;
}

}  // namespace hexlane::platform
