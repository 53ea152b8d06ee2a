#include "frame/about.h"

#include "shell/views.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr ControlSpec ABOUT_CONTROLS[] = {
    {100, ControlKind::ICON, "HEXLANE", 0, 0, 5, 1, 0, 0, nullptr},
    {101, ControlKind::TEXT, "Hexlane NC Editor and DNC Communications", 0, 1, 1, 1, 0, 0, nullptr},
    {102, ControlKind::TEXT, "Ver 2.16", 1, 1, 1, 1, 0, 0, nullptr},
    {105, ControlKind::TEXT, "Release " HEXLANE_VERSION, 2, 1, 1, 1, 0, 0, nullptr},
    {103, ControlKind::TEXT,
     "Edits NC programs of any length, and sends and receives them over serial lines.", 3, 1, 1, 1, 0, 0,
     nullptr},
    {104, ControlKind::TEXT, "Free software under the MIT licence.", 4, 1, 1, 1, 0, 0, nullptr},
    {1, ControlKind::BUTTON, "OK", 5, 0, 1, 2, 0, CONTROL_DEFAULT | CONTROL_CANCEL | CONTROL_CENTERED,
     nullptr},
};

constexpr ViewSpec ABOUT_VIEW = {"IDD_ABOUT", "About", 0, ABOUT_CONTROLS, 7};

int64_t about_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG)
        return 1;
    return view_default(window, message, first, second);
}

}  // namespace

void show_about() {
    show_view(&ABOUT_VIEW, about_proc);
}

}  // namespace hexlane
