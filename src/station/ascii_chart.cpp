// ascii_chart.cpp: the view ASCIICHART, a reference for typing character codes: code, and character or name.

#include "dnc/control_names.h"
#include "platform/surface.h"
#include "platform/text.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "station/parameter_views.h"

#include <cstring>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t CHART_PANE = 101;
constexpr int CHART_ROWS = 16;
constexpr int CHART_COLUMNS = 8;
constexpr int ENTRY_CELLS = 9;  // "127 DEL  "

constexpr ControlSpec CONTROLS[] = {
    {CHART_PANE, ControlKind::PANE, "ASCII", 0, 0, CHART_ROWS, 1, CHART_COLUMNS* ENTRY_CELLS, 0, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "&Exit", CHART_ROWS, 0, 1, 1, 0,
     CONTROL_DEFAULT | CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec CHART_VIEW = {"ASCIICHART", "ASCII Chart", 0, CONTROLS,
                                 static_cast<int16_t>(std::size(CONTROLS))};

void draw_chart(ViewHandle view) {
    const WindowHandle pane = view_pane(view, CHART_PANE);
    for (int code = 0; code < CHART_ROWS * CHART_COLUMNS; code++) {
        const char character[2] = {static_cast<char>(code), '\0'};
        const char* name = code < static_cast<int>(std::size(CONTROL_NAMES)) ? CONTROL_NAMES[code]
                           : code == 127                                     ? "DEL"
                                                                             : character;
        char entry[ENTRY_CELLS + 1];
        format_text(entry, sizeof entry, "%3d %-5s", code, name);
        draw_text(pane, code / CHART_ROWS * ENTRY_CELLS * CELL_WIDTH, code % CHART_ROWS * CELL_HEIGHT, entry,
                  static_cast<int>(std::strlen(entry)), BLACK, WHITE);
    }
}

int64_t chart_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        draw_chart(view);
        return 1;
    }
    return view_default(view, message, first, second);
}

}  // namespace

void show_ascii_chart() {
    show_view(&CHART_VIEW, chart_proc);
}

}  // namespace hexlane
