#include "frame/commands.h"

#include "edit/block_commands.h"
#include "files/file_commands.h"
#include "frame/about.h"
#include "frame/compare_command.h"
#include "macros/playback.h"
#include "macros/recording.h"
#include "ncutils/nc_commands.h"
#include "platform/keys.h"
#include "print/print_view.h"
#include "search/search.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/activity.h"
#include "station/parameter_views.h"
#include "view/colors.h"
#include "view/colors_dialog.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t FILE_POPUP = 1401;
constexpr int16_t EDIT_POPUP = 1402;
constexpr int16_t VIEW_POPUP = 1403;
constexpr int16_t NC_POPUP = 1404;
constexpr int16_t MACROS_POPUP = 1405;
constexpr int16_t DNC_POPUP = 1406;
constexpr int16_t HELP_POPUP = 1407;

constexpr int SUPPORT_CONTEXT = 54;  // the manual's page for Technical Support

constexpr MenuPopup POPUPS[] = {
    {FILE_POPUP, "&File", "File operations", false},
    {EDIT_POPUP, "&Edit", "Edit operations", false},
    {VIEW_POPUP, "&View", "View options", false},
    {NC_POPUP, "&NC Utils", "NC edit operations", false},
    {MACROS_POPUP, "&Macros", "Macro operations", false},
    {DNC_POPUP, "&DNC", "DNC Communications", false},
    // "Utilites": so spelled by the system itself.
    {HELP_POPUP, "&Help", "Help Utilites", true},
};

constexpr Accelerator ACCELERATORS[] = {
    {'O', KEY_WITH_CTRL, 1001},
    {'S', KEY_WITH_CTRL, 1002},
    {VK_F1 + 5, 0, 1006},
    {'X', KEY_WITH_CTRL, 1008},
    {VK_DELETE, KEY_WITH_SHIFT, 1008},
    {'C', KEY_WITH_CTRL, 1009},
    {VK_INSERT, KEY_WITH_CTRL, 1009},
    {'V', KEY_WITH_CTRL, 1010},
    {VK_INSERT, KEY_WITH_SHIFT, 1010},
    {VK_DELETE, 0, 1011},
    {VK_BACK, 0, 1031},
    {VK_F1 + 2, 0, 1017},
    {VK_F1 + 3, 0, 1018},
    {VK_F1 + 6, 0, 1019},
    {VK_F1 + 7, 0, 1026},
};

void command_exit() {
    send_message(child[0].main_window, WM_CLOSE, 0, 0);
}

void command_backspace() {
    if (block.start.row < 0)
        send_message(child[0].main_window, WM_CHAR, VK_BACK, key_parameter(key_by_number(VK_BACK), 1, false));
    else
        send_message(child[0].main_window, WM_COMMAND, COMMAND_DELETE, 0);
}

void command_help_contents() {
    show_help(HelpRequest::CONTENTS, 0);
}
void command_help_on_help() {
    show_help(HelpRequest::ON_HELP, 0);
}
void command_support() {
    show_help(HelpRequest::CONTEXT, SUPPORT_CONTEXT);
}

constexpr Command line_in(int16_t popup) {
    return {0, popup, "", "", Enabled::ALWAYS, false, nullptr};
}

}  // namespace

const Command COMMANDS[] = {
    // "exsiting": so spelled by the system itself.
    {1001, FILE_POPUP, "&Open...\tCtrl+O", "Open an exsiting file", Enabled::ALWAYS, false, command_open},
    {1035, FILE_POPUP, "C&lose", "Close the active file", Enabled::FILE_OPEN, false, command_close},
    line_in(FILE_POPUP),
    {1002, FILE_POPUP, "&Save...", "Save the active file", Enabled::FILE_OPEN, false, command_save},
    {1003, FILE_POPUP, "Save &As...", "Save the active file with a new name", Enabled::FILE_OPEN, false,
     command_save_as},
    line_in(FILE_POPUP),
    {1004, FILE_POPUP, "&Merge...", "Merge a file with the active file", Enabled::FILE_OPEN, false,
     command_merge},
    {1005, FILE_POPUP, "&Print", "Print part or all of the active file", Enabled::FILE_OPEN, false,
     command_print},
    line_in(FILE_POPUP),
    {1006, FILE_POPUP, "&Compare\tF6", "Compare the active file with another", Enabled::FILE_OPEN, false,
     command_compare},
    line_in(FILE_POPUP),
    {1007, FILE_POPUP, "E&xit", "Quit the application", Enabled::ALWAYS, false, command_exit},

    {1008, EDIT_POPUP, "Cu&t\tCtrl+X", "Cut and copy the selected text", Enabled::BLOCK_MARKED, false,
     command_cut},
    {1009, EDIT_POPUP, "&Copy\tCtrl+C", "Copy the selected text", Enabled::BLOCK_MARKED, false, command_copy},
    {1010, EDIT_POPUP, "&Paste\tCtrl+V", "Paste the selected text", Enabled::CUT_OR_COPIED, false,
     command_paste},
    {COMMAND_DELETE, EDIT_POPUP, "&Delete\tDel", "Delete the selected text", Enabled::FILE_OPEN, false,
     command_delete},
    line_in(EDIT_POPUP),
    {1012, EDIT_POPUP, "&Find and Replace...", "Find and replace a text pattern", Enabled::FILE_OPEN, true,
     command_find_and_replace},

    {1013, VIEW_POPUP, "Move To &Row...", "Move to a specific row number", Enabled::FILE_OPEN, true,
     command_move_to_row},
    {1014, VIEW_POPUP, "Move To &Line Number...", "Move to a specific line number", Enabled::FILE_OPEN, true,
     command_move_to_line_number},
    line_in(VIEW_POPUP),
    {1015, VIEW_POPUP, "&Find...", "Find a text pattern", Enabled::FILE_OPEN, true, command_find},
    line_in(VIEW_POPUP),
    {1016, VIEW_POPUP, "&Set Colors...", "Set environment colors", Enabled::ALWAYS, true, command_set_colors},
    {COMMAND_ENABLE_COLORS, VIEW_POPUP, "&Enable Colors\tF3", "Enable or disable colors", Enabled::FILE_OPEN,
     false, command_enable_colors},
    {COMMAND_COLOR_EDIT_CHANGES, VIEW_POPUP, "Color Edit Changes \tF4", "Enable or disable colors changes",
     Enabled::FILE_OPEN, false, command_color_edit_changes},
    line_in(VIEW_POPUP),
    {COMMAND_NC_MODE, VIEW_POPUP, "&NC Mode\tF7", "Place text in NC Mode", Enabled::ALWAYS, false,
     command_nc_mode},

    {1020, NC_POPUP, "&Renumber...", "Renumber the active file", Enabled::FILE_OPEN, true, command_renumber},
    {1021, NC_POPUP, "Strip &Line Numbers", "Strip the line numbers from active file", Enabled::FILE_OPEN,
     true, command_strip},
    line_in(NC_POPUP),
    {1022, NC_POPUP, "&Shift...", "Shift values in active file", Enabled::FILE_OPEN, true, command_shift},
    {1023, NC_POPUP, "S&cale...", "Scale values in active file", Enabled::FILE_OPEN, true, command_scale},
    line_in(NC_POPUP),
    {1024, NC_POPUP, "&Incremental to Absolute...", "Change to absolute values in active file",
     Enabled::FILE_OPEN, true, command_incr_to_abs},
    {1025, NC_POPUP, "&Absolute to Incremental...", "Change to incremental values in active file",
     Enabled::FILE_OPEN, true, command_abs_to_incr},

    {1026, MACROS_POPUP, "&Play...\tF8", "Play a prerecorded macro", Enabled::MACRO_THERE, true,
     command_play_macro},
    {1027, MACROS_POPUP, "&Record...", "Record a new macro", Enabled::NOT_RECORDING, true,
     command_record_macro},
    {1028, MACROS_POPUP, "&End Record", "Stop recording the active macro", Enabled::RECORDING, false,
     command_end_record},

    {1032, DNC_POPUP, "&Parameter Settings", "Set the communication parameters", Enabled::ALWAYS, true,
     show_parameters},
    {1033, DNC_POPUP, "&Activity", "Display communications activity", Enabled::ALWAYS, false,
     command_activity},
    {COMMAND_SEND_THIS, DNC_POPUP, "Send This - Port 1", "Sends active file to current machine",
     Enabled::PORT_QUIET, false, command_send_this},

    {1037, HELP_POPUP, "Help &Contents", "Displays Help contents for Parlock", Enabled::ALWAYS, true,
     command_help_contents},
    // "contenst": so spelled by the system itself.
    {1039, HELP_POPUP, "&Help on Help", "Displays Help contenst for Windows Help", Enabled::ALWAYS, true,
     command_help_on_help},
    line_in(HELP_POPUP),
    {1040, HELP_POPUP, "&Technical Support", "Displays support information for Parlock", Enabled::ALWAYS,
     true, command_support},
    line_in(HELP_POPUP),
    {1041, HELP_POPUP, "&About...", "Displays program information and copyright", Enabled::ALWAYS, true,
     show_about},

    {1031, 0, "", "", Enabled::ALWAYS, false, command_backspace},
};
const int COMMAND_COUNT = sizeof COMMANDS / sizeof COMMANDS[0];

void describe_commands(MainWindowSpec* spec) {
    static MenuEntry entries[sizeof COMMANDS / sizeof COMMANDS[0]];
    int count = 0;
    for (const Command& command : COMMANDS) {
        if (command.popup != 0)
            entries[count++] = {command.popup,
                                command.id,
                                command.text,
                                command.hint,
                                command.id == COMMAND_ENABLE_COLORS,
                                command.run == nullptr};
    }
    spec->popups = POPUPS;
    spec->popup_count = sizeof POPUPS / sizeof POPUPS[0];
    spec->entries = entries;
    spec->entry_count = count;
    spec->accelerators = ACCELERATORS;
    spec->accelerator_count = sizeof ACCELERATORS / sizeof ACCELERATORS[0];
}

void run_command(int id) {
    for (const Command& command : COMMANDS) {
        if (id == 0 || command.id != id || command.run == nullptr)
            continue;
        if (command.wrapped)
            set_caret_visible(false);
        command.run();
        if (command.wrapped)
            set_caret_visible(true);
        return;
    }
}

}  // namespace hexlane
