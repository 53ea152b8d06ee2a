// commands.h: the one table of commands behind menu, accelerators, hints and graying. Main thread only.
// To add a command: one line in COMMANDS (commands.cpp), in the place where its menu entry stands.
#pragma once

#include "platform/desktop.h"

#include <cstdint>

namespace hexlane {

// When a menu entry may be chosen, worked out in menus.cpp.
enum class Enabled : uint8_t {
    ALWAYS,
    FILE_OPEN,
    BLOCK_MARKED,   // a file, a block on show, no macro being recorded
    CUT_OR_COPIED,  // a file, something to paste, no macro being recorded
    MACRO_THERE,    // a file, at least one macro, none being recorded
    NOT_RECORDING,  // a file, no macro being recorded
    RECORDING,      // a file, a macro being recorded
    PORT_QUIET,     // a file, slot 0 neither sends nor receives
};

struct Command {
    int16_t id;        // 0: a separating line
    int16_t popup;     // 0: no menu entry
    const char* text;  // of the menu entry
    const char* hint;
    Enabled enabled;
    bool wrapped;   // the caret is hidden while it runs
    void (*run)();  // nullptr: not built yet, always grayed
};

extern const Command COMMANDS[];
extern const int COMMAND_COUNT;

constexpr int COMMAND_DELETE = 1011;
constexpr int COMMAND_ENABLE_COLORS = 1017;
constexpr int COMMAND_COLOR_EDIT_CHANGES = 1018;
constexpr int COMMAND_NC_MODE = 1019;
constexpr int COMMAND_OPEN = 1001;
constexpr int COMMAND_CLOSE = 1035;
constexpr int COMMAND_SEND_THIS = 1042;

// Fills menu and accelerators of the main window.
void describe_commands(platform::MainWindowSpec* spec);

// Runs a command by its id; an unknown or unbuilt one does nothing.
void run_command(int id);

}  // namespace hexlane
