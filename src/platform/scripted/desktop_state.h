// desktop_state.h: what the desktop in memory holds: the main window with its menu, the views, what is up and
// modal, and what the person holds down. Only files of this folder include it. Main thread only.
// Wiped by: wipe_desktop.
#pragma once

#include "platform/common/cell_grid.h"
#include "platform/desktop.h"
#include "platform/views.h"

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace hexlane::platform {

struct MenuItem {
    MenuEntry spec;
    std::string text;
    bool grayed;
    bool checked;
};

struct MainWindow {
    WindowHandle handle = NO_WINDOW;  // none before create_main_window and after destroy_window
    WindowProcedure procedure = nullptr;
    std::string title;
    std::vector<MenuPopup> popups;
    std::vector<MenuItem> items;  // in menu order
    std::vector<Accelerator> accelerators;
    bool shown = false;
    bool minimized = false;
    bool in_loop = false;  // the program has started: its message loop runs
    bool has_focus = false;
    bool captures_mouse = false;
    CellGrid grid;
};

struct Control {
    const ControlSpec* spec;
    std::string text;  // of a field, or written over a label
    bool hidden;
    bool disabled;
    bool checked;
    std::vector<std::string> rows;  // of a list or drop-down
    int selection;                  // -1 for none
    WindowHandle pane = NO_WINDOW;  // of a pane: its text surface
    CellGrid grid = {};
};

struct View {
    ViewHandle handle;
    const ViewSpec* spec;
    WindowProcedure procedure;
    std::vector<Control> controls;
    int focus_id;  // control that has the focus, 0 for none
    int chosen_field;
    bool child;  // the status line
};

enum class ModalKind { BOX, VIEW, FILE_DIALOG };

// One thing that is up and waits for the person. Lies on the stack of the call that shows it.
struct Modal {
    ModalKind kind;
    bool done = false;
    int result = 0;                    // button index, view result, or 1 and 0 of a file dialog
    std::string name;                  // how a stopped run calls it: `message "Really?"`, `view IDD_ABOUT`
    std::string closing_line;          // goes into the record when it closes; empty for none
    std::vector<std::string> buttons;  // of a box, without '&'
    ViewHandle view = NO_WINDOW;
    FileDialog* dialog = nullptr;
    bool saves = false;  // a file dialog for saving
};

// What the person has in hand.
struct Person {
    bool shift = false;
    bool ctrl = false;
    std::vector<int> keys_down;  // of the press under way, whose release nobody has heard of yet
    bool button_down = false;
    WindowHandle button_surface = NO_WINDOW;  // where it went down: the main window or a pane
    int pointer_x = 0;                        // units, from the client area's corner
    int pointer_y = 0;
};

struct Desktop {
    int cols = 80;  // client area of the main window, in cells
    int rows = 28;
    MainWindow main;
    WindowHandle last_handle = NO_WINDOW;  // handles are never used twice
    std::map<ViewHandle, View> views;
    std::vector<Modal*> modals;  // the topmost one last
    int modal_openings = 0;      // how many modals have come up so far: a change tells an interrupted act
    Person person;
    std::deque<std::string> handovers;  // files of second starts that the program has not taken yet
    PointerShape pointer_shape = PointerShape::ARROW;
    std::function<void(const std::string& text)> see_painted_text;  // of a test
};
extern Desktop desktop;

// Where the client area's corner lies on the screen, and how far the title and the menu reach above it.
constexpr int SCREEN_LEFT = 10 * CELL_WIDTH;
constexpr int SCREEN_TOP = 10 * CELL_HEIGHT;
constexpr int HEADER_HEIGHT = 3 * CELL_HEIGHT;

// Everything as it is before the program starts. Keeps the size of the client area.
void wipe_desktop();

// The view of a handle. A handle that names none stops the run with the name of the call; 0 gives nullptr: a
// program without a window may write to a status line that it does not have.
View* find_view(ViewHandle handle, const char* call);

// The status line, nullptr before it is made.
View* status_view();

// The cells of the main window or of a pane, nullptr when there is none of that handle.
CellGrid* find_grid(WindowHandle surface);

// Gives the focus to the first control that takes it; 0 when none does.
void focus_first_control(View* view);

// Whether a person can type into a control: a field, or a drop-down that takes text too.
bool is_typed_into(const Control& control);

// Picks a row of a list or drop-down, -1 for none.
void select_row(Control* list, int index);

// Whether the focus can stand on a control.
bool takes_focus(const Control& control);

// Where the controls lie in a view among which a radio button is the only one picked: from the button that
// starts the group up to the next one that starts a group.
struct RadioGroup {
    std::size_t first;
    std::size_t behind;
};
RadioGroup radio_group(const View* view, std::size_t at);

// The entry of an id, nullptr when the menu has none.
MenuItem* find_menu_item(int id);

// Runs the procedure of a window or view; a handle that is gone gives 0.
int64_t deliver(WindowHandle window, uint32_t message, int64_t first, int64_t second);

// Gives the main window a new client size and, when it is on show, WM_SIZE and WM_PAINT.
void resize_client(int cols, int rows);

// Keys and button go up while the main window can still hear of it: whatever takes the keyboard from it would
// take the releases too.
void let_go_over_main_window();

// The main window's focus; both do nothing when it is so already, or when the window is not on show.
void main_window_loses_focus();
void main_window_gains_focus();

}  // namespace hexlane::platform
