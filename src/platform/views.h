// views.h: the view toolkit. A view is data: name, title, controls with labels, grid places and input rules,
// and a view procedure. Modal views nest; the first one to open takes the focus from the main window
// (WM_KILLFOCUS), the last one to close gives it back (WM_SETFOCUS). Timers, posted and sent messages go on
// meanwhile. Main thread only.
// Back ends: qt/ lays the controls out by their grid; scripted/ holds them in memory and a script plays the
// person. Input rules are judged by common/input_rules for both.
#pragma once

#include "platform/messages.h"

#include <cstddef>
#include <cstdint>

namespace hexlane::platform {

using ViewHandle = WindowHandle;

enum class ControlKind : uint8_t {
    TEXT,  // a label
    BUTTON,
    FIELD,  // one line of text
    CHECK,
    RADIO,
    LIST,
    CHOICE,  // a drop-down list
    FRAME,   // a titled frame behind other controls
    ICON,    // a named picture
    PANE,    // a text surface of its own
};

// What may stand in a field, and what happens when it does not. All-zero means: anything, as long as it fits.
struct InputRule {
    int16_t limit = 0;              // at most this many bytes of UTF-8; 0 for no limit
    const char* allowed = nullptr;  // only these characters; nullptr for all
    int32_t low = 0, high = 0;      // number range, when they differ
    const int32_t* high_field =
        nullptr;                    // the range's upper end is in this field (plus `high`), when not nullptr
    const char* message = nullptr;  // box at a bad value; nullptr for a beep
    const char* message_title = nullptr;
    bool capitals = false;      // letters a to z become capitals
    bool may_be_empty = false;  // no text at all counts as in the range
    bool beeps = false;         // at a bad value, ahead of the message
    bool characters = false;    // the limit counts characters, and the caller's buffer takes that many of any
};

constexpr uint16_t CONTROL_HIDDEN = 1;    // at start
constexpr uint16_t CONTROL_DISABLED = 2;  // at start
constexpr uint16_t CONTROL_CHECKED = 4;   // at start
constexpr uint16_t CONTROL_DEFAULT = 8;   // the button that Enter presses
constexpr uint16_t CONTROL_CANCEL = 16;   // the button that Esc presses
constexpr uint16_t CONTROL_SUNKEN = 32;   // a sunken text; of a pane: it only shows, and takes no focus
constexpr uint16_t CONTROL_GROUP = 64;    // a radio button that starts a new group
constexpr uint16_t CONTROL_CENTERED = 128;
constexpr uint16_t CONTROL_EDITABLE =
    256;  // a CHOICE whose text can be typed too; picks and typing both tell

struct ControlSpec {
    int16_t id;
    ControlKind kind;
    const char* label;      // with its '&' mnemonic; for ICON the picture's name
    uint8_t row, column;    // place in the view's grid
    uint8_t rows, columns;  // how many grid places it covers, at least 1
    uint16_t width;         // wish, in characters or (child views) dialog units; 0 for its own size
    uint16_t flags;         // CONTROL_ bits
    const InputRule* rule;  // nullptr for none
};

struct ViewSpec {
    const char* name;  // "IDD_RENUM"
    const char* title;
    int16_t number;  // resource number, for the record; 0 when none is told
    const ControlSpec* controls;
    int16_t control_count;
    int16_t x =
        0;  // wished place in dialog units from the corner of the parent's client area; 0, 0: centered
    int16_t y = 0;
};

// A control tells its view what the person did with WM_COMMAND: first is the control's id, second is not 0. A
// button was pressed, a box or radio button changed, another line of a LIST or CHOICE picked, a field's text
// changed.

// Makes a modal view, not yet on show; its procedure gets WM_INITDIALOG when it runs. 0 on failure.
ViewHandle view_create(const ViewSpec* spec, WindowHandle parent, WindowProcedure procedure);

// Shows it and runs until view_end. Gives view_end's result, or -1 when it cannot be shown.
int view_run(ViewHandle view);
void view_end(ViewHandle view, int result);

// The first and the last call of every view procedure. view_default ends the view on WM_CLOSE and on its
// CONTROL_CANCEL button with result 0; its result is the procedure's.
void view_attach(ViewHandle view);
int64_t view_default(ViewHandle view, uint32_t message, int64_t first, int64_t second);

// Makes a child view at the bottom of the parent's client area: the status line. 0 on failure.
ViewHandle view_create_child(WindowHandle parent, const ViewSpec* spec, WindowProcedure procedure);

// Chooses the field that the next view_set_text writes; each is kept for each view.
void view_choose_field(ViewHandle view, int id);
void view_set_text(ViewHandle view, const char* text);

void view_get_text(ViewHandle view, int id, char* text, std::size_t size);
void view_hide_control(ViewHandle view, int id);
void view_show_control(ViewHandle view, int id);
void view_enable_control(ViewHandle view, int id, bool enabled);
void view_focus_control(ViewHandle view, int id);
void view_check(ViewHandle view, int id, bool checked);
bool view_checked(ViewHandle view, int id);
void view_clear_list(ViewHandle view, int id);
void view_add_to_list(ViewHandle view, int id, const char* text);
void view_select(ViewHandle view, int id, int index);  // -1 for none
int view_selection(ViewHandle view, int id);           // -1 for none

// What a control shows when the pointer rests on it; empty for nothing. Scripted runs do not show it.
void view_set_tip(ViewHandle view, int id, const char* text);

// The text surface of a PANE control, for surface.h; its grid has the control's size in cells. NO_WINDOW when
// there is no such pane. A pane tells its view's procedure of mouse and keys as a main window does, with
// WM_VSCROLL of its bar too; bits 16 to 31 of the message's `first` then hold the pane's id.
WindowHandle view_pane(ViewHandle view, int id);

// Draws one control at once, all with id -1, also during a long run that serves no messages.
void view_repaint_control(ViewHandle view, int id);

// From WM_SIZE: keeps the child view at the bottom of its parent.
void view_parent_resized(WindowHandle parent);

// From WM_MENUSELECT: shows the hint of the entry or popup; id 0 (the menu closed) takes it away.
void view_menu_hint(WindowHandle window, int64_t first, int64_t second);

}  // namespace hexlane::platform
