// colors.cpp: the colour file, and the commands that switch the display modes.

#include "view/colors.h"

#include "platform/desktop.h"
#include "platform/files.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "store/replace_file.h"
#include "view/color_file_format.h"
#include "view/text_view.h"

#include <cstring>

namespace hexlane {
namespace {

using platform::FileHandle;

constexpr int ENABLE_COLORS_ID = 1017;
constexpr int COLOR_EDIT_CHANGES_ID = 1018;
constexpr int NC_MODE_ID = 1019;

// The file as it was read or written last. It keeps the reserved bytes from one to the next.
ColorFileImage image;

// The file is there and could not be read: what it holds is not in the image, so it must not be replaced.
bool file_unread = false;

// Gives 1, or 0 when the path does not fit.
int color_file_path(char* path) {
    return platform::format_text(path, platform::PATH_SIZE, "%s/ZOLT.INI", directories.start_dir);
}

void show_modes() {
    platform::set_menu_checked(ENABLE_COLORS_ID, child[0].colors_enabled != 0);
    platform::set_menu_checked(COLOR_EDIT_CHANGES_ID, child[0].changes_colored != 0);
    platform::set_menu_checked(NC_MODE_ID, child[0].nc_mode != 0);
    if (child[0].file_open)
        paint_view();
}

}  // namespace

void load_colors() {
    char path[platform::PATH_SIZE];
    const FileHandle file =
        color_file_path(path) ? platform::file_open(path, platform::FileAccess::READ) : platform::NO_FILE;
    file_unread = file == platform::NO_FILE && platform::last_file_error() != platform::FileError::NOT_FOUND;
    ColorFileImage read = image;
    if (file != platform::NO_FILE) {
        file_unread = platform::file_read_at(file, 0, read.bytes, sizeof read.bytes) < 0;
        platform::file_close(file);
    }
    if (file == platform::NO_FILE || file_unread) {
        make_default_colors();
        return;
    }
    image = read;
    for (int slot = 0; slot < COLOR_SLOTS; ++slot)
        child[0].color_table[slot] = color_slot_from(image, slot);
}

int save_colors() {
    for (int slot = 0; slot < COLOR_SLOTS; ++slot)
        color_slot_into(&image, slot, child[0].color_table[slot]);
    char path[platform::PATH_SIZE];
    return !file_unread && color_file_path(path) && replace_whole_file(path, image.bytes, sizeof image.bytes);
}

void make_default_colors() {
    std::memset(image.bytes, 0, sizeof image.bytes);
    for (ColorEntry& entry : child[0].color_table)
        entry = {platform::BLACK, 0, 0};
    save_colors();
}

void blacken_letters_and_comments() {
    for (int slot = 0; slot <= COMMENT_SLOT; ++slot)
        child[0].color_table[slot].color = platform::BLACK;
}

void command_enable_colors() {
    if (!child[0].colors_enabled) {
        child[0].colors_enabled = 1;
        child[0].changes_colored = 0;
        load_colors();
    } else {
        child[0].colors_enabled = 0;
        blacken_letters_and_comments();
    }
    show_modes();
}

void command_color_edit_changes() {
    if (!child[0].changes_colored) {
        child[0].colors_enabled = 0;
        child[0].changes_colored = 1;
        blacken_letters_and_comments();
    } else {
        child[0].changes_colored = 0;
    }
    show_modes();
}

void command_nc_mode() {
    child[0].nc_mode = !child[0].nc_mode;
    show_modes();
}

bool is_numeric_char(char c) {
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

}  // namespace hexlane
