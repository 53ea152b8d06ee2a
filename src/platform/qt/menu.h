// menu.h: the menu bar, made from the program's tables, and the state of its entries.
// A chosen entry is posted as WM_COMMAND, so that the menu is gone from the screen when the command runs.
// Key names in the entries are text alone: keys are served by keyboard.h. Main thread only.
#pragma once

#include <QMenuBar>

#include "platform/desktop.h"

namespace hexlane::platform {

// Fills the bar; `window` gets WM_MENUSELECT and WM_COMMAND. The tables must outlive the bar.
void build_menu(QMenuBar* bar, const MainWindowSpec& spec, WindowHandle window);

// False for a grayed entry; true for one that is enabled and for a command that has no entry.
bool menu_entry_enabled(int id);

// Hint of an entry or popup; empty when it has none.
const char* menu_hint(int id);

// Opens the first popup, as F10 does.
void open_first_menu();

// The bar is gone.
void forget_menu();

}  // namespace hexlane::platform
