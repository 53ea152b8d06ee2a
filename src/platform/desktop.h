// desktop.h: the main window, its menu, the message queue, timers, boxes, file dialogs, pointer and help.
// Main thread only, but for post_message and send_message. Back ends: qt/ (Qt 6 Widgets), scripted/ (a
// desktop in memory, played by a script), console/ (messages, timers and boxes alone).
#pragma once

#include "platform/keys.h"
#include "platform/messages.h"
#include "platform/text.h"

#include <cstdint>

namespace hexlane::platform {

// ---- Main window -------------------------------------------------------------------------------------

struct MenuEntry {
    int16_t popup;     // popup that the entry stands in
    int16_t id;        // 0: a separating line
    const char* text;  // with '&' mnemonic and, behind a tab, the key's name
    const char* hint;
    bool checked;  // at start
    bool grayed;   // at start
};

struct MenuPopup {
    int16_t id;
    const char* text;
    const char* hint;
    bool at_right;  // stands at the right end of the bar
};

struct MainWindowSpec {
    const char* class_name;
    const char* title;
    WindowProcedure procedure;
    const MenuPopup* popups;
    int popup_count;
    const MenuEntry* entries;
    int entry_count;
    const Accelerator* accelerators;
    int accelerator_count;
};

// Makes the main window, hidden; sends WM_CREATE. Gives its handle, or 0 on failure.
WindowHandle create_main_window(const MainWindowSpec* spec);

enum class ShowWindow : uint8_t { NORMAL, MINIMIZED, RESTORED };

// The first NORMAL shows the window and brings WM_SIZE, then WM_PAINT and WM_SETFOCUS.
void show_window(WindowHandle window, ShowWindow how);
void raise_window(WindowHandle window);

// Sends WM_DESTROY and takes the window away.
void destroy_window(WindowHandle window);
void set_window_title(WindowHandle window, const char* title);

void set_menu_enabled(int id, bool enabled);
void set_menu_checked(int id, bool checked);
void set_menu_text(int id, const char* text);

// Top and bottom edge of the window on the screen, in units.
void window_edges(WindowHandle window, int* top, int* bottom);
bool window_has_focus(WindowHandle window);

// ---- Messages and timers -----------------------------------------------------------------------------

// Runs until post_quit; gives post_quit's code. Keys go through plan_key: accelerators first.
int run_message_loop();
void post_quit(int code);

// Runs the procedure at once; from another thread it waits until the main thread has run it.
int64_t send_message(WindowHandle window, uint32_t message, int64_t first, int64_t second);

// Queues; messages are served in the order of posting. Any thread.
void post_message(WindowHandle window, uint32_t message, int64_t first, int64_t second);

// Takes one waiting message and serves it: for a long run that keeps the windows alive. Costs a flag test
// when nothing waits. Gives whether one was served.
bool pump_one_message();

// Sends WM_TIMER with `id` every `period_ms`. Starting a running timer gives it the new period.
void start_timer(WindowHandle window, int id, int period_ms);
void kill_timer(WindowHandle window, int id);

// ---- Boxes and sounds --------------------------------------------------------------------------------

enum class BoxIcon : uint8_t { NONE, STOP, QUESTION, EXCLAMATION, INFORMATION };

// Shows a message box, modal to the whole program, and gives the index of the button pressed. `buttons` are
// labels with a bar between them. Esc and the close box press "Cancel", or the only button; with neither they
// do nothing. The first button is the default.
int message_box(const char* text, const char* title, BoxIcon icon, const char* buttons);

constexpr const char* BUTTONS_OK = "OK";
constexpr const char* BUTTONS_YES_NO = "Yes|No";
constexpr const char* BUTTONS_YES_NO_CANCEL = "Yes|No|Cancel";

void message_beep(BoxIcon sound);

// ---- File dialogs ------------------------------------------------------------------------------------

struct FileFilter {
    const char* text;
    const char* pattern;  // "*.NC"; matched in either case
};

struct FileDialog {
    const char* title;
    const FileFilter* filters;
    int filter_count;
    const char* custom_text;  // an entry of its own in front of the others; empty for none
    const char* custom_pattern;
    int filter_index;          // entry on show: 0 the custom one, 1 the first of `filters`; takes the chosen
    const char* start_folder;  // empty for the current directory
    const char* default_extension;  // put behind a name typed without one; empty for none
    char path[PATH_SIZE];           // the chosen file, absolute
    char file_title[PATH_SIZE];     // its name without folder
};

// Both give 1 for a chosen file and 0 for Cancel. They can name a file that does not exist; the questions
// about creating and overwriting, and the refusal of a folder that is not there and of a path that is too
// long, are message boxes shared by all desktops (common/file_questions).
int choose_open_file(FileDialog* dialog);
int choose_save_file(FileDialog* dialog);

// ---- Pointer, keys and help --------------------------------------------------------------------------

enum class PointerShape : uint8_t { TEXT, ARROW, WAIT };

// Gives the shape that it replaces.
PointerShape set_pointer_shape(PointerShape shape);

// Where the pointer stands on the screen, in units.
void pointer_position(int* x, int* y);
void set_capture(WindowHandle window);
void release_capture();

// Whether Shift or Ctrl (VK_SHIFT, VK_CONTROL) is held.
bool key_is_down(int key);

enum class HelpRequest : uint8_t { CONTENTS, ON_HELP, CONTEXT, QUIT };

// Shows the manual in a window of its own: at its start, at the page of a context number, or the page about
// the help window itself; QUIT closes that window.
void show_help(HelpRequest request, int context);

}  // namespace hexlane::platform
