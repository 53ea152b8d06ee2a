// person.h: what a person can do on the desktop in memory. Scripts and unit tests act through these alone.
// Each gives an empty text when the act was done, or the reason why it could not apply; then nothing has
// happened. Acts go to the topmost window: while something modal is up the main window takes neither keys nor
// mouse. Main thread only.
#pragma once

#include <cstdint>
#include <string>

namespace hexlane::platform {

using Refusal = std::string;

// How a control is called: its label without '&', with a number (from 1) where the label repeats, or its id.
struct ControlName {
    std::string label;
    int number = 1;
    int id = -1;  // in use when not negative
};

// ---- Keys --------------------------------------------------------------------------------------------

// A key with modifiers, "Ctrl+Shift+End": Shift and Ctrl go down, then key down with its character or its
// accelerator's command, then all are let go. What takes the keyboard from the main window has it hear of the
// releases first. In a box only Enter and Esc mean something, in a view Tab and mnemonics too, and a pane
// with the focus takes all other keys.
Refusal person_presses(const std::string& chord);

// The keys that type the text; a line end is Enter. A character without a key comes bare, as from an input
// method.
Refusal person_types(const std::string& text);

// A bare character message.
Refusal person_sends_character(int code, int repeat);

// ---- Menu and window ---------------------------------------------------------------------------------

Refusal person_chooses_command(int id);  // records `grayed ID` when it is not enabled
Refusal person_points_at_menu(int id);   // an entry or popup: its hint comes up and goes away
Refusal person_walks_menu();             // each popup and its entries, in menu order
Refusal person_closes_window();
Refusal person_leaves_window();  // the focus goes elsewhere
Refusal person_returns_to_window();
Refusal person_resizes(int cols, int rows);

// What a second start does: hands over a file, if it is there, then restores and raises the window. `path` is
// empty for none.
Refusal person_starts_again(const std::string& path);

// ---- Mouse and scroll bar ----------------------------------------------------------------------------

enum class MouseAct { DOWN, MOVE, UP, RIGHT };  // the left button; a click of the right one

struct MouseEvent {
    MouseAct act = MouseAct::MOVE;
    bool in_pane = false;  // of the topmost view; otherwise in the main window
    ControlName pane = {};
    int col = 0;
    int row = 0;
    bool shift = false;
    bool ctrl = false;
};
Refusal person_uses_mouse(const MouseEvent& event);
Refusal person_places_pointer(int col, int row);

// The bar of the topmost window; in a view that of the pane with the focus, else of the first pane.
Refusal person_scrolls(int request, int position);

// ---- Views, boxes and file dialogs -------------------------------------------------------------------

Refusal person_clicks(const ControlName& button);
Refusal person_fills(const ControlName& field, const std::string& text);
Refusal person_checks(const ControlName& box, bool checked);
Refusal person_picks(const ControlName& radio);
Refusal person_selects(const ControlName& list, int index);  // from 0
Refusal person_selects(const ControlName& list, const std::string& text);
Refusal person_gives_file(const std::string& path, int filter);  // filter -1: the entry on show
Refusal person_cancels();                                        // a file dialog or the print dialog

// Enter or Esc in a box or file dialog.
Refusal person_presses_in_modal(int key);

// ---- Time --------------------------------------------------------------------------------------------

Refusal person_waits(int64_t ms);

}  // namespace hexlane::platform
