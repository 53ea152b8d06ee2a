// desktop.cpp: the main window, its menu, focus, pointer, sounds and help, in memory.

#include "platform/desktop.h"

#include "platform/scripted/desktop_state.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/printer.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_clock.h"

#include <algorithm>

namespace hexlane::platform {

Desktop desktop;

namespace {

bool is_main_window(WindowHandle window) {
    return window != NO_WINDOW && window == desktop.main.handle;
}

// The entry that a call names. A wrong id is a fault of the program's tables; without a main window there is
// no menu to be wrong about.
MenuItem* named_item(int id, const char* call) {
    MenuItem* item = find_menu_item(id);
    if (item == nullptr && desktop.main.handle != NO_WINDOW && !desktop.main.items.empty()) {
        stop_run(std::string(call) + ": the menu has no entry " + std::to_string(id));
    }
    return item;
}

void send_size() {
    const int width = desktop.cols * CELL_WIDTH;
    const int height = desktop.rows * CELL_HEIGHT;
    deliver(desktop.main.handle, WM_SIZE, 0, make_parameter(width, height));
    deliver(desktop.main.handle, WM_PAINT, 0, 0);
}

}  // namespace

void wipe_desktop() {
    const int cols = desktop.cols;
    const int rows = desktop.rows;
    desktop = Desktop();
    desktop.cols = cols;
    desktop.rows = rows;
    wipe_messages();
    wipe_clock();
    wipe_printer();
}

MenuItem* find_menu_item(int id) {
    if (id == 0) {  // the separating lines
        return nullptr;
    }
    const auto found = std::find_if(desktop.main.items.begin(), desktop.main.items.end(),
                                    [id](const MenuItem& item) { return item.spec.id == id; });
    return found != desktop.main.items.end() ? &*found : nullptr;
}

int64_t deliver(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    if (is_main_window(window)) {
        return desktop.main.procedure(window, message, first, second);
    }
    const auto view = desktop.views.find(window);
    return view != desktop.views.end() ? view->second.procedure(window, message, first, second) : 0;
}

// ---- Window ------------------------------------------------------------------------------------------

WindowHandle create_main_window(const MainWindowSpec* spec) {
    MainWindow& main = desktop.main;
    if (main.handle != NO_WINDOW) {
        stop_run("create_main_window: there is one already");
    }
    main = MainWindow();
    main.handle = ++desktop.last_handle;
    main.procedure = spec->procedure;
    main.title = spec->title;
    main.popups.assign(spec->popups, spec->popups + spec->popup_count);
    main.accelerators.assign(spec->accelerators, spec->accelerators + spec->accelerator_count);
    for (int i = 0; i < spec->entry_count; i++) {
        const MenuEntry& entry = spec->entries[i];
        main.items.push_back({entry, entry.text != nullptr ? entry.text : "", entry.grayed, entry.checked});
    }
    grid_resize(&main.grid, desktop.cols, desktop.rows);
    deliver(main.handle, WM_CREATE, 0, 0);
    return main.handle;
}

void show_window(WindowHandle window, ShowWindow how) {
    if (!is_main_window(window)) {
        return;
    }
    MainWindow& main = desktop.main;
    if (how == ShowWindow::MINIMIZED) {
        main_window_loses_focus();
        main.minimized = true;
        record_line("minimized");
        return;
    }
    main.minimized = false;
    if (!main.shown) {
        main.shown = true;
        send_size();
    }
    main_window_gains_focus();
}

// A window that comes up at the start is in front anyway.
void raise_window(WindowHandle window) {
    if (!is_main_window(window)) {
        return;
    }
    if (desktop.main.in_loop) {
        record_line("raised");
    }
    main_window_gains_focus();
}

void destroy_window(WindowHandle window) {
    if (!is_main_window(window)) {
        return;
    }
    deliver(window, WM_DESTROY, 0, 0);
    forget_messages(window);
    forget_timers(window);
    std::erase_if(desktop.views, [](const auto& entry) { return entry.second.child; });
    desktop.main = MainWindow();
}

void set_window_title(WindowHandle window, const char* title) {
    if (is_main_window(window)) {
        desktop.main.title = title;
    }
}

void window_edges(WindowHandle, int* top, int* bottom) {
    *top = SCREEN_TOP - HEADER_HEIGHT;
    *bottom = SCREEN_TOP + desktop.rows * CELL_HEIGHT;
}

void resize_client(int cols, int rows) {
    desktop.cols = cols;
    desktop.rows = rows;
    if (desktop.main.handle != NO_WINDOW) {
        grid_resize(&desktop.main.grid, cols, rows);
    }
    if (desktop.main.shown) {
        send_size();
    }
}

// ---- Focus -------------------------------------------------------------------------------------------

bool window_has_focus(WindowHandle window) {
    return is_main_window(window) && desktop.main.has_focus;
}

void let_go_over_main_window() {
    Person& person = desktop.person;
    person.shift = person.ctrl = false;
    while (!person.keys_down.empty()) {
        const int key = person.keys_down.back();
        person.keys_down.pop_back();
        deliver(desktop.main.handle, WM_KEYUP, key, key_parameter(key_by_number(key), 1, true));
    }
    if (person.button_down && is_main_window(person.button_surface)) {
        person.button_down = false;
        deliver(desktop.main.handle, WM_NCLBUTTONUP, 0, make_parameter(person.pointer_x, person.pointer_y));
    }
}

void main_window_loses_focus() {
    if (desktop.main.has_focus) {
        desktop.main.has_focus = false;
        let_go_over_main_window();
        deliver(desktop.main.handle, WM_KILLFOCUS, 0, 0);
    }
}

void main_window_gains_focus() {
    const MainWindow& main = desktop.main;
    if (main.shown && !main.minimized && !main.has_focus && desktop.modals.empty()) {
        desktop.main.has_focus = true;
        deliver(main.handle, WM_SETFOCUS, 0, 0);
    }
}

// ---- Menu --------------------------------------------------------------------------------------------

void set_menu_enabled(int id, bool enabled) {
    if (MenuItem* item = named_item(id, "set_menu_enabled")) {
        item->grayed = !enabled;
    }
}

void set_menu_checked(int id, bool checked) {
    if (MenuItem* item = named_item(id, "set_menu_checked")) {
        item->checked = checked;
    }
}

void set_menu_text(int id, const char* text) {
    if (MenuItem* item = named_item(id, "set_menu_text")) {
        item->text = text;
    }
}

// ---- Message loop ------------------------------------------------------------------------------------

int run_message_loop() {
    desktop.main.in_loop = true;
    for (;;) {
        serve_messages();
        int code = 0;
        if (quit_asked(&code)) {
            return code;
        }
        if (!person_acts()) {
            return 0;
        }
    }
}

// ---- Pointer, keys, sounds, help ---------------------------------------------------------------------

PointerShape set_pointer_shape(PointerShape shape) {
    const PointerShape before = desktop.pointer_shape;
    desktop.pointer_shape = shape;
    return before;
}

void pointer_position(int* x, int* y) {
    *x = SCREEN_LEFT + desktop.person.pointer_x;
    *y = SCREEN_TOP + desktop.person.pointer_y;
}

void set_capture(WindowHandle window) {
    desktop.main.captures_mouse = is_main_window(window);
}

void release_capture() {
    desktop.main.captures_mouse = false;
}

bool key_is_down(int key) {
    return (key == VK_SHIFT && desktop.person.shift) || (key == VK_CONTROL && desktop.person.ctrl);
}

void message_beep(BoxIcon) {
    record_line("beep");
}

void show_help(HelpRequest request, int context) {
    switch (request) {
    case HelpRequest::CONTENTS:
        record_line("help contents");
        break;
    case HelpRequest::ON_HELP:
        record_line("help on-help");
        break;
    case HelpRequest::CONTEXT:
        record_line("help context " + std::to_string(context));
        break;
    case HelpRequest::QUIT:
        record_line("help quit");
        break;
    }
}

}  // namespace hexlane::platform
