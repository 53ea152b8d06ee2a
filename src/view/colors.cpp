// colors.cpp: the colour file, and the commands that switch the display modes.

#include "view/colors.h"

#include "frame/child.h"
#include "frame/directories.h"
#include "platform/desktop.h"
#include "platform/files.h"
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

// Gives 1, or 0 when the path does not fit.
int color_file_path(char* path) {
    return platform::format_text(path, platform::PATH_SIZE, "%s/ZOLT.INI", directories.start_dir);
}

int write_image(const char* path, FileHandle old) {
    Replacement replacement;
    if (!begin_replacement(&replacement, path))
        return 0;
    if (!replacement_write(&replacement, image.bytes, sizeof image.bytes)) {
        abandon_replacement(&replacement);
        return 0;
    }
    return finish_replacement(&replacement, old);
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
    const FileHandle file = color_file_path(path)
                                ? platform::file_open(path, platform::FileAccess::READ_WRITE)
                                : platform::NO_FILE;
    if (file == platform::NO_FILE) {
        make_default_colors();
        return;
    }
    platform::file_read_at(file, 0, image.bytes, sizeof image.bytes);
    platform::file_close(file);
    for (int slot = 0; slot < COLOR_SLOTS; ++slot)
        child[0].color_table[slot] = color_slot_from(image, slot);
}

int save_colors() {
    for (int slot = 0; slot < COLOR_SLOTS; ++slot)
        color_slot_into(&image, slot, child[0].color_table[slot]);
    char path[platform::PATH_SIZE];
    if (!color_file_path(path))
        return 0;
    // A file that may not be written must not be replaced either.
    const FileHandle old = platform::file_open(path, platform::FileAccess::READ_WRITE);
    if (old == platform::NO_FILE && platform::path_kind(path) != platform::PathKind::NONE)
        return 0;
    const int written = write_image(path, old);
    if (old != platform::NO_FILE)
        platform::file_close(old);
    return written;
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
