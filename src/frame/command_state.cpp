#include "frame/command_state.h"

#include <cstring>

#include "dnc/transfer_state.h"
#include "edit/block_buffer.h"
#include "frame/commands.h"
#include "frame/transfer_watch.h"
#include "macros/macro_table.h"
#include "platform/text.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

const FileFilter FILE_FILTERS[] = {
    {"NC Files   *.NC", "*.NC"},   {"NCI Files  *.NCI", "*.NCI"}, {"Document Files  *.DOC", "*.DOC"},
    {"IGES Files *.IGS", "*.IGS"}, {"Post Files *.PST", "*.PST"}, {"All Files  *.*", "*.*"},
};
const int FILE_FILTER_COUNT = sizeof FILE_FILTERS / sizeof FILE_FILTERS[0];

namespace {

// In the order of FILE_FILTERS.
constexpr const char* KNOWN_EXTENSIONS[] = {"NC", "NCI", "DOC", "IGS", "PST", "*"};
constexpr int CUSTOM_ENTRY = 0;
constexpr int FIRST_ENTRY = 1;
constexpr int ALL_FILES_ENTRY = 6;

char named_file_dir[PATH_SIZE];
char named_file_ext[6];
char dialog_dir[PATH_SIZE];
char dialog_ext[10];

bool drag_timer_on = false;
bool slow_timer_on = false;

bool is_enabled(Enabled rule) {
    if (rule == Enabled::ALWAYS)
        return true;
    if (!child[0].file_open)
        return false;
    switch (rule) {
    case Enabled::BLOCK_MARKED:
        return !macros.recording && child[0].block_active != 0;
    case Enabled::CUT_OR_COPIED:
        return !macros.recording && (copy_block.start.row >= 0 || cut_block.start.row >= 0);
    case Enabled::PORT_QUIET:
        return transfer_state[0].status != SENDING && transfer_state[0].status != RECEIVING;
    case Enabled::MACRO_THERE:
        return !macros.recording && macros.count > 0;
    case Enabled::NOT_RECORDING:
        return !macros.recording;
    case Enabled::RECORDING:
        return macros.recording;
    default:
        return true;
    }
}

// The folder of `path` without the '/' at its end; the root keeps its own.
void copy_folder(const char* path, char folder[PATH_SIZE]) {
    copy_text(folder, PATH_SIZE, path);
    char* slash = std::strrchr(folder, '/');
    if (slash == nullptr)
        folder[0] = '\0';
    else
        slash[slash == folder ? 1 : 0] = '\0';
}

// Puts what stands behind the first dot of the whole path into extension[size], unless it is a known one, is
// too long for it, or has a '/' in it and so is no extension. Gives the filter index.
int take_extension(const char* path, char* extension, std::size_t size, int without_dot) {
    extension[0] = '\0';
    const char* dot = std::strchr(path, '.');
    if (dot == nullptr)
        return without_dot;
    const char* behind = dot + 1;
    for (int i = 0; i < FILE_FILTER_COUNT; i++) {
        if (equal_ignoring_case(behind, KNOWN_EXTENSIONS[i]))
            return FIRST_ENTRY + i;
    }
    if (std::strchr(behind, '/') != nullptr || behind[0] == '\0' || !copy_text(extension, size, behind)) {
        extension[0] = '\0';
        return ALL_FILES_ENTRY;
    }
    return CUSTOM_ENTRY;
}

void build_custom_filter(char filter[CUSTOM_FILTER_SIZE]) {
    const char* extension = dialog_ext;
    if (named_file_ext[0] != '\0' && dialog_ext[0] == '\0')
        copy_text(dialog_ext, sizeof dialog_ext, named_file_ext);
    if (extension[0] == '\0')
        return;
    format_text(filter, CUSTOM_FILTER_SIZE, "Custom *.%s", extension);
    const std::size_t behind = std::strlen(filter) + 1;
    format_text(filter + behind, CUSTOM_FILTER_SIZE - behind, "*.%s", extension);
}

}  // namespace

void update_menus(WindowHandle) {
    label_send_this();
    for (int i = 0; i < COMMAND_COUNT; i++) {
        const Command& command = COMMANDS[i];
        if (command.id != 0 && command.popup != 0)
            set_menu_enabled(command.id, command.run != nullptr && is_enabled(command.enabled));
    }
}

int file_filter(FilterMode mode, const char* path, char custom_filter[CUSTOM_FILTER_SIZE]) {
    std::memset(custom_filter, 0, CUSTOM_FILTER_SIZE);
    switch (mode) {
    case FilterMode::NAMED:
        copy_folder(path, named_file_dir);
        return take_extension(path, named_file_ext, sizeof named_file_ext, FIRST_ENTRY);
    case FilterMode::BEFORE:
        build_custom_filter(custom_filter);
        if (dialog_dir[0] == '\0')
            copy_text(dialog_dir, sizeof dialog_dir, named_file_dir);
        return FIRST_ENTRY;
    default:
        copy_folder(path, dialog_dir);
        return take_extension(path, dialog_ext, sizeof dialog_ext, ALL_FILES_ENTRY);
    }
}

const char* dialog_folder() {
    return dialog_dir;
}
const char* dialog_extension() {
    return dialog_ext;
}

void set_ui_timer(int use) {
    if (use == UI_TIMER_DRAG ? drag_timer_on : slow_timer_on)
        return;
    stop_ui_timer();
    drag_timer_on = use == UI_TIMER_DRAG;
    slow_timer_on = use != UI_TIMER_DRAG;
    start_timer(child[0].main_window, UI_TIMER, use == UI_TIMER_DRAG ? 50 : 1000);
}

void stop_ui_timer() {
    if (drag_timer_on || slow_timer_on)
        kill_timer(child[0].main_window, UI_TIMER);
    drag_timer_on = false;
    slow_timer_on = false;
}

bool drag_timer_running() {
    return drag_timer_on;
}
bool slow_timer_running() {
    return slow_timer_on;
}

}  // namespace hexlane
