// file_questions.cpp: from a name that a person gave in a file dialog to a file that may be opened or saved.

#include "platform/common/file_questions.h"

#include "platform/files.h"
#include "platform/process.h"

#include <cstring>
#include <iterator>

namespace hexlane::platform {

namespace {

// What is said; %s stands for the name as it was given or worked out.
enum class FileSaying { TOO_LONG, NO_FOLDER, IS_FOLDER, NO_FILE_AT_ALL, CREATE, REPLACE, COUNT };

struct FileText {
    FileSaying saying;
    const char* text;
    BoxIcon icon;
    const char* buttons;
};
constexpr FileText FILE_TEXTS[] = {
    {FileSaying::TOO_LONG, "%s\nThis name is too long.", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {FileSaying::NO_FOLDER, "%s\nThere is no such folder.", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {FileSaying::IS_FOLDER, "%s\nThis is a folder, not a file.", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {FileSaying::NO_FILE_AT_ALL, "%s\nThis is a device or a pipe, not a file.", BoxIcon::EXCLAMATION,
     BUTTONS_OK},
    {FileSaying::CREATE, "%s\nThis file does not exist.\nCreate it?", BoxIcon::QUESTION, BUTTONS_YES_NO},
    {FileSaying::REPLACE, "%s\nThis file exists already.\nReplace it?", BoxIcon::EXCLAMATION, BUTTONS_YES_NO},
};
static_assert(std::size(FILE_TEXTS) == static_cast<std::size_t>(FileSaying::COUNT));
constexpr int FIRST_BUTTON = 0;  // OK or Yes

// Shows a text about `name` under the dialog's title. Gives 1 for Yes.
int say_about(const FileDialog* dialog, FileSaying saying, const char* name) {
    const FileText& entry = FILE_TEXTS[static_cast<int>(saying)];
    char text[PATH_SIZE + 64];
    char shown[PATH_SIZE];
    copy_text(shown, sizeof shown, name);
    format_text(text, sizeof text, entry.text, shown);
    return message_box(text, dialog->title, entry.icon, entry.buttons) == FIRST_BUTTON ? 1 : 0;
}

// A name without a dot gets the default extension, unless a file of just that name is there to be meant.
int add_extension(const FileDialog* dialog, char* path, std::size_t size) {
    const char* extension = dialog->default_extension != nullptr ? dialog->default_extension : "";
    extension += extension[0] == '.' ? 1 : 0;
    if (extension[0] == '\0' || std::strchr(file_title_of(path), '.') != nullptr ||
        path_kind(path) != PathKind::NONE) {
        return 1;
    }
    return append_text(path, size, ".") && append_text(path, size, extension);
}

// The absolute path of a name typed below the folder on show.
int complete_path(const FileDialog* dialog, const char* typed, char* path, std::size_t size) {
    const bool below_folder =
        typed[0] != '/' && dialog->start_folder != nullptr && dialog->start_folder[0] != '\0';
    char joined[2 * PATH_SIZE];
    return format_text(joined, sizeof joined, "%s%s%s", below_folder ? dialog->start_folder : "",
                       below_folder ? "/" : "", typed) &&
           absolute_path(joined, path, size) && add_extension(dialog, path, size);
}

bool folder_exists(const char* path) {
    char folder[PATH_SIZE];
    copy_text(folder, sizeof folder, path);
    folder[file_title_of(path) - path] = '\0';
    return path_kind(folder) == PathKind::FOLDER;
}

// `question` is asked when the file is there (`when_file`) or is not there.
int settle(FileDialog* dialog, const char* typed, int filter_index, PathKind ask_when, FileSaying question) {
    char path[PATH_SIZE];
    if (typed[0] == '\0') {
        return 0;
    }
    if (!complete_path(dialog, typed, path, sizeof path)) {
        say_about(dialog, FileSaying::TOO_LONG, typed);
        return 0;
    }
    const PathKind kind = path_kind(path);
    if (kind == PathKind::OTHER) {
        say_about(dialog, FileSaying::NO_FILE_AT_ALL, path);
        return 0;
    }
    if (kind == PathKind::FOLDER) {
        say_about(dialog, FileSaying::IS_FOLDER, path);
        return 0;
    }
    if (!folder_exists(path)) {
        say_about(dialog, FileSaying::NO_FOLDER, path);
        return 0;
    }
    if (kind == ask_when && !say_about(dialog, question, path)) {
        return 0;
    }
    copy_text(dialog->path, sizeof dialog->path, path);
    copy_text(dialog->file_title, sizeof dialog->file_title, file_title_of(path));
    dialog->filter_index = filter_index;
    return 1;
}

}  // namespace

int settle_open_file(FileDialog* dialog, const char* typed, int filter_index) {
    return settle(dialog, typed, filter_index, PathKind::NONE, FileSaying::CREATE);
}

int settle_save_file(FileDialog* dialog, const char* typed, int filter_index) {
    return settle(dialog, typed, filter_index, PathKind::FILE, FileSaying::REPLACE);
}

}  // namespace hexlane::platform
