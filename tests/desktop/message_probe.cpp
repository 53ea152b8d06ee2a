// message_probe.cpp: a main window with no editor behind it, which prints each message that reaches it, one
// line each. The test beside it plays the person and compares. The argument names a file whose appearance
// ends the long run.

#include <sys/stat.h>
#include <time.h>

#include <cstdarg>
#include <cstdio>
#include <thread>

#include "platform/desktop.h"
#include "platform/qt/application.h"
#include "platform/surface.h"
#include "platform/views.h"

using namespace hexlane::platform;

namespace {

constexpr int BOX = 101;
constexpr int TIMER = 102;
constexpr int WORKER = 103;
constexpr int LONG_RUN = 104;
constexpr int GRAYED = 105;
constexpr int LEAVE = 106;
constexpr int VIEW = 107;

constexpr uint32_t SENT_BY_WORKER = 0x8101;
constexpr uint32_t POSTED_BY_WORKER = 0x8102;
constexpr Color MARK_COLOR = 0x0000FF;  // red, of the cell that shows how large a cell is
constexpr Color PANE_MARK_COLOR = 0xFF0000;

constexpr MenuPopup POPUPS[] = {{1, "&Acts", "Hint of Acts", false}, {2, "&Help", "Hint of Help", true}};
constexpr MenuEntry ENTRIES[] = {
    {1, BOX, "&Box...", "Hint of Box", false, false},
    {1, TIMER, "&Timer", "Hint of Timer", true, false},
    {1, WORKER, "&Worker", "Hint of Worker", false, false},
    {1, LONG_RUN, "&Long Run", "Hint of Long Run", false, false},
    {1, GRAYED, "&Grayed\tCtrl+G", "Hint of Grayed", false, true},
    {1, VIEW, "&View...", "Hint of View", false, false},
    {2, LEAVE, "&Leave", "Hint of Leave", false, false},
};
constexpr Accelerator ACCELERATORS[] = {
    {'G', KEY_WITH_CTRL, GRAYED}, {'O', KEY_WITH_CTRL, 201}, {VK_DELETE, 0, 202}};

constexpr ControlSpec FIELDS[] = {
    {1, ControlKind::TEXT, "", 0, 0, 1, 1, 200, CONTROL_SUNKEN, nullptr},
    {2, ControlKind::TEXT, "", 0, 1, 1, 1, 60, CONTROL_SUNKEN, nullptr},
};
constexpr ViewSpec STATUS = {"Status", "", 1, FIELDS, 2};

constexpr int16_t NUMBER_FIELD = 12;
constexpr int16_t PANE = 14;
constexpr int16_t OK_BUTTON = 15;
constexpr InputRule NUMBER_RULE = {3, "0123456789", 1, 100, nullptr, "1 to 100, please.", "Bad number"};
constexpr ControlSpec VIEW_CONTROLS[] = {
    {11, ControlKind::TEXT, "&Number:", 0, 0, 1, 1, 0, 0, nullptr},
    {NUMBER_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, 8, 0, &NUMBER_RULE},
    {13, ControlKind::CHECK, "&Mirror", 1, 0, 1, 1, 0, 0, nullptr},
    {PANE, ControlKind::PANE, "", 2, 0, 5, 2, 30, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "&OK", 7, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {16, ControlKind::BUTTON, "Cancel", 7, 1, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec VIEW_SPEC = {"Probe", "Probe view", 2, VIEW_CONTROLS, 6, 40, 40};

WindowHandle window = NO_WINDOW;
ViewHandle status = NO_WINDOW;
const char* end_of_long_run = "";
int ticks = 0;

void say(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
    std::putchar('\n');
    std::fflush(stdout);
}

int number(int64_t parameter) {
    return static_cast<int>(parameter);
}

void begin_view(ViewHandle view) {
    say("view begins");
    const WindowHandle pane = view_pane(view, PANE);
    draw_text(pane, 0, 0, " ", 1, BLACK, PANE_MARK_COLOR);
    set_scroll_range(pane, 0, 10);
}

int64_t view_procedure(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    switch (message) {
    case WM_INITDIALOG:
        begin_view(view);
        return 1;
    case WM_COMMAND:
        say("view command %d", number(first));
        if (first == OK_BUTTON) {
            char text[8];
            view_get_text(view, NUMBER_FIELD, text, sizeof text);
            say("number %s", text);
            view_end(view, 5);
        }
        break;
    case WM_KEYDOWN:
        say("pane %d down %d", high_word(first), low_word(first));
        break;
    case WM_LBUTTONDOWN:
        say("pane %d press %d,%d", high_word(first), signed_low(second) / CELL_WIDTH,
            signed_high(second) / CELL_HEIGHT);
        break;
    case WM_VSCROLL:
        say("pane %d scroll %d", high_word(first), low_word(first));
        break;
    default:
        break;
    }
    return view_default(view, message, first, second);
}

void write_status(const char* text) {
    view_choose_field(status, 1);
    view_set_text(status, text);
    view_repaint_control(status, 1);
}

void paint() {
    draw_text(window, 0, 0, " ", 1, BLACK, MARK_COLOR);
    draw_text(window, 0, CELL_HEIGHT, "HHHHHHHHHHHHHHHHHHHH", 20, BLACK, WHITE);
}

bool run_may_end() {
    struct stat found;
    return stat(end_of_long_run, &found) == 0;
}

void run_long() {
    const PointerShape before = set_pointer_shape(PointerShape::WAIT);
    write_status("XXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX");
    say("long run begins");
    while (!run_may_end()) {
        const timespec pause = {0, 10000000};
        nanosleep(&pause, nullptr);
    }
    write_status("");
    set_pointer_shape(before);
    say("long run ends");
}

void tick() {
    say("tick %d", ++ticks);
    if (ticks == 5) {
        kill_timer(window, 1);
    }
    if (ticks == 2) {
        message_box("The timer goes on under this box.", "Tick", BoxIcon::INFORMATION, BUTTONS_OK);
        say("box of the timer closed");
    }
}

void start_worker() {
    std::thread([] {
        const int64_t result = send_message(window, SENT_BY_WORKER, 7, 0);
        for (int i = 0; i < 3; i++) {
            post_message(window, POSTED_BY_WORKER, result + i, 0);
        }
    }).detach();
}

void run_command(int command) {
    say("command %d", command);
    switch (command) {
    case BOX:
        say("pressed %d", message_box("What now?", "Question", BoxIcon::QUESTION, BUTTONS_YES_NO_CANCEL));
        break;
    case TIMER:
        start_timer(window, 1, 50);
        break;
    case WORKER:
        start_worker();
        break;
    case LONG_RUN:
        run_long();
        break;
    case VIEW:
        say("view gave %d", view_run(view_create(&VIEW_SPEC, window, view_procedure)));
        break;
    case LEAVE:
        send_message(window, WM_CLOSE, 0, 0);
        break;
    default:
        break;
    }
}

int64_t procedure(WindowHandle, uint32_t message, int64_t first, int64_t second) {
    switch (message) {
    case WM_CREATE:
        say("create");
        break;
    case WM_SIZE:
        say("size");
        view_parent_resized(window);
        break;
    case WM_PAINT:
        say("paint");
        paint();
        set_scroll_range(window, 0, 100);
        break;
    case WM_SETFOCUS:
        say("focus gained");
        break;
    case WM_KILLFOCUS:
        say("focus lost");
        break;
    case WM_KEYDOWN:
        say("down %d%s%s", number(first), key_is_down(VK_SHIFT) ? " shift" : "",
            key_is_down(VK_CONTROL) ? " ctrl" : "");
        break;
    case WM_KEYUP:
        say("up %d", number(first));
        break;
    case WM_CHAR:
        say("char %d", number(first));
        break;
    case WM_MENUSELECT:
        say("select %d", number(first));
        view_menu_hint(window, first, second);
        break;
    case WM_LBUTTONDOWN:
        say("press %d,%d flags %d", signed_low(second) / CELL_WIDTH, signed_high(second) / CELL_HEIGHT,
            number(first));
        break;
    case WM_MOUSEMOVE:
        if (first & MK_LBUTTON) {
            say("drag");
        }
        break;
    case WM_LBUTTONUP:
        say("release");
        break;
    case WM_NCLBUTTONUP:
        say("release outside");
        break;
    case WM_VSCROLL:
        say("scroll %d %d", low_word(first), high_word(first));
        break;
    case WM_TIMER:
        tick();
        break;
    case WM_COMMAND:
        run_command(number(first));
        break;
    case SENT_BY_WORKER:
        say("worker sent %d", number(first));
        return 10;
    case POSTED_BY_WORKER:
        say("worker posted %d", number(first));
        break;
    case WM_CLOSE:
        say("close");
        destroy_window(window);
        break;
    case WM_DESTROY:
        post_quit(3);
        break;
    default:
        break;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !start_desktop(argv[0])) {
        return 1;
    }
    end_of_long_run = argv[1];
    const MainWindowSpec spec = {"Probe", "Message probe", procedure, POPUPS, 2, ENTRIES, 7, ACCELERATORS, 3};
    window = create_main_window(&spec);
    status = view_create_child(window, &STATUS, view_default);
    show_window(window, ShowWindow::NORMAL);
    const int code = run_message_loop();
    end_desktop();
    return code;
}
