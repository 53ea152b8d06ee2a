// person.cpp: keys, menu, mouse and the main window in the person's hands.

#include "platform/scripted/person.h"

#include "platform/keys.h"
#include "platform/process.h"
#include "platform/scripted/desktop_state.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_files.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

void send(uint32_t message, int64_t first, int64_t second) {
    deliver(desktop.main.handle, message, first, second);
}

// Why the main window can't take an act now; empty when it can.
Refusal main_window_refuses(const char* what) {
    if (desktop.main.handle == NO_WINDOW || !desktop.main.shown) {
        return std::string(what) + ": there is no window";
    }
    if (const Modal* modal = top_modal()) {
        return std::string(what) + " while " + modal->name + " is up";
    }
    return desktop.main.minimized ? std::string(what) + ": the window is minimized" : "";
}

// Whoever clicks on a window brings it to the front. Gives false when something modal came up for that, which
// takes the click.
bool click_reaches_window() {
    const int openings = desktop.modal_openings;
    main_window_gains_focus();
    return desktop.modal_openings == openings;
}

Refusal keyboard_refuses() {
    const Refusal refusal = main_window_refuses("a key");
    return refusal.empty() && !desktop.main.has_focus ? "a key: the window does not have the focus" : refusal;
}

// ---- One key -----------------------------------------------------------------------------------------

void send_modifier(int key, bool release) {
    (key == VK_SHIFT ? desktop.person.shift : desktop.person.ctrl) = !release;
    send(release ? WM_KEYUP : WM_KEYDOWN, key, key_parameter(key_by_number(key), 1, release));
    serve_messages();
}

// An accelerator's command counts when its entry is enabled, or when the menu has no entry for it.
void send_accelerator(int command) {
    const MenuItem* item = find_menu_item(command);
    if (item == nullptr || !item->grayed) {
        send(WM_COMMAND, command, 0);
    }
}

KeyPlan plan_of(const KeyEntry* entry, int modifiers) {
    const std::vector<Accelerator>& accelerators = desktop.main.accelerators;
    return plan_key(entry, modifiers, accelerators.data(), static_cast<int>(accelerators.size()));
}

// F10, and a key with Alt that is no accelerator: the program hears nothing of it.
bool belongs_to_menu_bar(const KeyEntry* entry, int modifiers) {
    constexpr int VK_F10 = VK_F1 + 9;
    const bool alone = modifiers == 0 && entry->key == VK_F10;
    return !plan_of(entry, modifiers).taken && (alone || (modifiers & KEY_WITH_ALT) != 0);
}

// Key down and character are one event: nothing is served between them.
void send_key_down(const KeyEntry* entry, int modifiers) {
    const KeyPlan plan = plan_of(entry, modifiers);
    if (plan.command != 0) {
        send_accelerator(plan.command);
    } else if (!plan.taken) {
        const int64_t second = key_parameter(entry, 1, false);
        send(WM_KEYDOWN, entry->key, second);
        if (plan.character >= 0) {
            send(WM_CHAR, plan.character, second);
        }
    }
    serve_messages();
}

// Once something modal has come up, or the window has lost the focus or is gone, what is left of the press
// happens elsewhere.
void press_key_in_window(const KeyEntry* entry, int modifiers) {
    const int openings = desktop.modal_openings;
    const auto in_window = [openings] {
        return desktop.modal_openings == openings && desktop.main.has_focus;
    };
    const bool for_menu_bar = belongs_to_menu_bar(entry, modifiers);
    const int held[] = {modifiers & KEY_WITH_SHIFT ? VK_SHIFT : 0,
                        modifiers & KEY_WITH_CTRL ? VK_CONTROL : 0};
    for (const int key : held) {
        if (key != 0 && in_window()) {
            send_modifier(key, false);
        }
    }
    if (!for_menu_bar && in_window()) {
        send_key_down(entry, modifiers);
    }
    if (!for_menu_bar && in_window()) {
        send(WM_KEYUP, entry->key, key_parameter(entry, 1, true));
        serve_messages();
    }
    for (const int key : {held[1], held[0]}) {
        if (key != 0 && in_window()) {
            send_modifier(key, true);
        }
    }
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

void type_character(unsigned char character) {
    int shift = 0;
    const KeyEntry* entry = key_by_character(character == '\n' ? '\r' : character, &shift);
    if (entry != nullptr) {
        press_key_in_window(entry, shift ? KEY_WITH_SHIFT : 0);
    } else {
        send(WM_CHAR, character, 1);
        serve_messages();
    }
}

}  // namespace

Refusal person_presses(const std::string& chord) {
    int modifiers = 0;
    const KeyEntry* entry = parse_chord(chord, &modifiers);
    if (entry == nullptr) {
        return "no key is called " + chord;
    }
    if (top_modal() != nullptr && modifiers == 0 && (entry->key == VK_RETURN || entry->key == VK_ESCAPE)) {
        return person_presses_in_modal(entry->key);
    }
    Refusal refusal = keyboard_refuses();
    if (refusal.empty()) {
        press_key_in_window(entry, modifiers);
    }
    return refusal;
}

Refusal person_types(const std::string& text) {
    Refusal refusal = keyboard_refuses();
    if (!refusal.empty()) {
        return refusal;
    }
    LongAct act;
    begin_long_act(&act, static_cast<int64_t>(text.size()));
    for (const char character : text) {
        act.done++;
        type_character(static_cast<unsigned char>(character));
        if (act.stopped) {
            break;
        }
        if (!desktop.main.has_focus && act.done < act.total) {
            record_line("stopped after " + std::to_string(act.done));
            break;
        }
    }
    end_long_act(&act);
    return "";
}

Refusal person_sends_character(int code, int repeat) {
    Refusal refusal = keyboard_refuses();
    if (refusal.empty()) {
        send(WM_CHAR, code, make_parameter(repeat, 0));
    }
    return refusal;
}

// ---- Menu and window ---------------------------------------------------------------------------------

Refusal person_chooses_command(int id) {
    Refusal refusal = main_window_refuses("a command");
    if (!refusal.empty()) {
        return refusal;
    }
    const MenuItem* item = find_menu_item(id);
    if (item == nullptr) {
        return "the menu has no entry " + std::to_string(id);
    }
    if (!click_reaches_window()) {
        return "";
    }
    if (item->grayed) {
        record_line("grayed " + std::to_string(id));
    } else {
        send(WM_COMMAND, id, 0);
    }
    return "";
}

Refusal person_points_at_menu(int id) {
    Refusal refusal = main_window_refuses("the menu");
    if (!refusal.empty()) {
        return refusal;
    }
    const std::vector<MenuPopup>& popups = desktop.main.popups;
    const bool is_popup =
        std::any_of(popups.begin(), popups.end(), [id](const MenuPopup& popup) { return popup.id == id; });
    if (!is_popup && find_menu_item(id) == nullptr) {
        return "the menu has no entry " + std::to_string(id);
    }
    if (click_reaches_window()) {
        send(WM_MENUSELECT, id, 0);
        send(WM_MENUSELECT, 0, 0);
    }
    return "";
}

Refusal person_closes_window() {
    Refusal refusal = main_window_refuses("the close box");
    if (refusal.empty()) {
        send(WM_CLOSE, 0, 0);
    }
    return refusal;
}

Refusal person_leaves_window() {
    Refusal refusal = main_window_refuses("the focus");
    if (refusal.empty() && !desktop.main.has_focus) {
        return "the window does not have the focus";
    }
    if (refusal.empty()) {
        main_window_loses_focus();
    }
    return refusal;
}

Refusal person_returns_to_window() {
    Refusal refusal = main_window_refuses("the focus");
    if (refusal.empty() && desktop.main.has_focus) {
        return "the window has the focus";
    }
    if (refusal.empty()) {
        main_window_gains_focus();
    }
    return refusal;
}

Refusal person_resizes(int cols, int rows) {
    constexpr int MOST_CELLS = 1000;  // a side; the size travels in 16 bits of units
    if (cols < 1 || rows < 1 || cols > MOST_CELLS || rows > MOST_CELLS) {
        return "a window has 1 to 1000 columns and rows";
    }
    Refusal refusal = desktop.main.shown ? main_window_refuses("a new size") : "";
    if (refusal.empty()) {
        resize_client(cols, rows);
    }
    return refusal;
}

Refusal person_starts_again(const std::string& path) {
    if (desktop.main.handle == NO_WINDOW || !desktop.main.shown) {
        return "no program runs that could be asked";
    }
    if (!path.empty() && path_exists(path)) {
        char absolute[PATH_SIZE];
        char home[PATH_SIZE];
        if (!absolute_path(path.c_str(), absolute, sizeof absolute) || !launch_folder(home, sizeof home)) {
            return "the path is too long";
        }
        const std::string below = std::string(home) + "/ZOLT";
        const std::string start_folder = folder_exists(below) ? below : home;
        const Refusal refusal = write_new_file(start_folder + "/newnm.fil", absolute);
        if (!refusal.empty()) {
            return refusal;
        }
        send(OPEN_REQUEST_MESSAGE, 0, 0);
    }
    show_window(desktop.main.handle, ShowWindow::RESTORED);
    raise_window(desktop.main.handle);
    return "";
}

// ---- Mouse and scroll bar ----------------------------------------------------------------------------

Refusal person_uses_mouse(MouseAct act, int col, int row, bool shift, bool ctrl) {
    Refusal refusal = main_window_refuses("the mouse");
    if (!refusal.empty()) {
        return refusal;
    }
    Person& person = desktop.person;
    const bool inside = col >= 0 && row >= 0 && col < desktop.cols && row < desktop.rows;
    if (act == MouseAct::DOWN ? person.button_down : act == MouseAct::UP && !person.button_down) {
        return person.button_down ? "the button is down already" : "the button is not down";
    }
    if (!inside && !person.button_down) {  // a held button keeps the mouse with the window
        return "the mouse: that cell is outside the client area";
    }
    if (act == MouseAct::DOWN && !click_reaches_window()) {
        return "";
    }
    person.button_down = act == MouseAct::DOWN || (act == MouseAct::MOVE && person.button_down);
    person.pointer_x = col * CELL_WIDTH;
    person.pointer_y = row * CELL_HEIGHT;
    person.shift = shift;
    person.ctrl = ctrl;
    const int flags =
        (person.button_down ? MK_LBUTTON : 0) | (shift ? MK_SHIFT : 0) | (ctrl ? MK_CONTROL : 0);
    constexpr uint32_t MESSAGES[] = {WM_LBUTTONDOWN, WM_MOUSEMOVE, WM_LBUTTONUP};
    send(MESSAGES[static_cast<int>(act)], flags, make_parameter(person.pointer_x, person.pointer_y));
    desktop.person.shift = desktop.person.ctrl = false;
    return "";
}

Refusal person_places_pointer(int col, int row) {
    desktop.person.pointer_x = col * CELL_WIDTH;
    desktop.person.pointer_y = row * CELL_HEIGHT;
    return "";
}

Refusal person_scrolls(int request, int position) {
    Refusal refusal = main_window_refuses("the scroll bar");
    const CellGrid& grid = desktop.main.grid;
    if (refusal.empty() && request == SB_THUMBPOSITION &&
        (position < grid.scroll_low || position > grid.scroll_high)) {
        return "the scroll bar goes from " + std::to_string(grid.scroll_low) + " to " +
               std::to_string(grid.scroll_high);
    }
    if (refusal.empty()) {
        send(WM_VSCROLL, make_parameter(request, position), 0);
    }
    return refusal;
}

// ---- Time --------------------------------------------------------------------------------------------

namespace {

LongAct* waiting = nullptr;  // the innermost wait

}  // namespace

Refusal person_waits(int64_t ms) {
    LongAct act;
    LongAct* const outer = waiting;
    begin_long_act(&act, ms);
    waiting = &act;
    move_clock(ms, &act.done, [] { return waiting->stopped; });
    waiting = outer;
    end_long_act(&act);
    return "";
}

}  // namespace hexlane::platform
