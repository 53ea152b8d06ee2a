// person.cpp: menu, main window and time in the person's hands.

#include "platform/scripted/person.h"

#include "platform/process.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/person_internal.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_clock.h"
#include "platform/scripted/script_files.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

void send(uint32_t message, int64_t first, int64_t second) {
    deliver(desktop.main.handle, message, first, second);
}

}  // namespace

InputTarget main_window_target() {
    return {desktop.main.handle, 0, desktop.main.handle};
}

void send_input(const InputTarget& target, uint32_t message, int64_t first, int64_t second) {
    deliver(target.window, message, first | static_cast<int64_t>(target.pane) << 16, second);
}

Refusal main_window_refuses(const char* what) {
    if (desktop.main.handle == NO_WINDOW || !desktop.main.shown) {
        return std::string(what) + ": there is no window";
    }
    if (const Modal* modal = top_modal()) {
        return std::string(what) + " while " + modal->name + " is up";
    }
    return desktop.main.minimized ? std::string(what) + ": the window is minimized" : "";
}

bool click_reaches_window() {
    const int openings = desktop.modal_openings;
    main_window_gains_focus();
    return desktop.modal_openings == openings;
}

// ---- Menu and window ---------------------------------------------------------------------------------

namespace {

// An open menu has the keyboard and the button. Gives false when something modal came up first.
bool menu_opens() {
    const bool opens = click_reaches_window();
    if (opens) {
        let_go_over_main_window();
    }
    return opens;
}

}  // namespace

Refusal person_chooses_command(int id) {
    Refusal refusal = main_window_refuses("a command");
    if (!refusal.empty()) {
        return refusal;
    }
    const MenuItem* item = find_menu_item(id);
    if (item == nullptr) {
        return "the menu has no entry " + std::to_string(id);
    }
    if (!menu_opens()) {
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
    if (menu_opens()) {
        send(WM_MENUSELECT, id, 0);
        send(WM_MENUSELECT, 0, 0);
    }
    return "";
}

Refusal person_walks_menu() {
    Refusal refusal;
    for (const MenuPopup& popup : desktop.main.popups) {
        refusal = person_points_at_menu(popup.id);
        for (const MenuItem& item : desktop.main.items) {
            if (refusal.empty() && item.spec.popup == popup.id && item.spec.id != 0) {
                refusal = person_points_at_menu(item.spec.id);
            }
        }
    }
    return refusal;
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
        if (!absolute_path(path.c_str(), absolute, sizeof absolute)) {
            return "the path is too long";
        }
        desktop.handovers.emplace_back(absolute);
        send(HANDOVER_MESSAGE, 0, 0);
    }
    show_window(desktop.main.handle, ShowWindow::RESTORED);
    raise_window(desktop.main.handle);
    return "";
}

// ---- Time --------------------------------------------------------------------------------------------

Refusal person_waits(int64_t ms) {
    LongAct act;
    begin_long_act(&act, ms);
    move_clock(ms * NS_PER_MS, &act.done, [&act] { return act.stopped; });
    end_long_act(&act);
    return "";
}

}  // namespace hexlane::platform
