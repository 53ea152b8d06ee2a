// keyboard.h: from Qt's key events to the program's key down, character and key up messages.
// Main thread only.
#pragma once

#include <QKeyEvent>
#include <QString>

#include "platform/desktop.h"

namespace hexlane::platform {

// Where the input of a text area goes.
struct InputTarget {
    WindowHandle window = NO_WINDOW;            // whose procedure takes it
    int pane = 0;                               // control id of a view's pane; 0 for the main window
    const Accelerator* accelerators = nullptr;  // they outlive the target
    int accelerator_count = 0;
};

// Sends a message of a text area; a pane puts its id into bits 16 to 31 of the first parameter.
void send_input(const InputTarget& target, uint32_t message, int64_t first, int64_t second);

// A key pressed, held or let go. Both give false when the key is the toolkit's: with Alt, without a meaning,
// or, in a pane, one that moves in or closes its view.
bool press_key(const InputTarget& target, const QKeyEvent* event);
bool release_key(const InputTarget& target, const QKeyEvent* event);

// Text from an input method, a dead key or a compose sequence: one bare WM_CHAR for each character.
void take_text(const InputTarget& target, const QString& text);

// The state of Shift and Ctrl that came with an event.
void note_modifiers(Qt::KeyboardModifiers modifiers);

// The keyboard goes elsewhere, and the releases with it: tells them now for every key that is held.
void let_go_of_keys(const InputTarget& target);

}  // namespace hexlane::platform
