// keyboard.h: from Qt's key events to the program's key down, character and key up messages.
// Keys go to the main window. Main thread only.
#pragma once

#include <QKeyEvent>
#include <QString>

#include "platform/desktop.h"

namespace hexlane::platform {

// Where keys go from now on, and its accelerators (they must outlive the window).
void set_key_window(WindowHandle window, const Accelerator* accelerators, int accelerator_count);

// A key pressed, held or let go. Both give false when the key is the toolkit's: with Alt, or without a
// meaning.
bool press_key(const QKeyEvent* event);
bool release_key(const QKeyEvent* event);

// Text from an input method, a dead key or a compose sequence: one bare WM_CHAR for each character.
void take_text(const QString& text);

// The state of Shift and Ctrl that came with an event.
void note_modifiers(Qt::KeyboardModifiers modifiers);

// The window has lost the focus: keys that are let go elsewhere are not waited for.
void forget_held_keys();

}  // namespace hexlane::platform
