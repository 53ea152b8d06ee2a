// temp_names.cpp: one counter gives all numbered names of the run.

#include "shell/temp_names.h"

#include <cstring>

#include "platform/process.h"
#include "platform/text.h"
#include "shell/directories.h"

namespace hexlane {

using namespace platform;

namespace {

// Bytes of the longest name behind temp_prefix's folder: the prefix, "DX" and a number.
constexpr std::size_t LONGEST_NAME = 4 + 2 + 10;

constexpr char SHORT_NAMES[] = "0123456789abcdefghijklmnopqrstuvwxyz";

int32_t name_counter = 0;  // the number given last; goes on through the run

const char* separator_behind(const char* folder) {
    std::size_t length = 0;
    while (folder[length] != '\0')
        length++;
    return length == 0 || folder[length - 1] == '/' ? "" : "/";
}

}  // namespace

FileHandle create_unique_file(const char* folder, const char* prefix, char* path) {
    for (;;) {
        if (!format_text(path, PATH_SIZE, "%s%s%s%d", folder, separator_behind(folder), prefix,
                         ++name_counter)) {
            set_last_file_error(FileError::NAME_TOO_LONG);
            return NO_FILE;
        }
        FileHandle file = file_create(path, FileCreate::PRIVATE);
        if (file != NO_FILE || last_file_error() != FileError::EXISTS)
            return file;
    }
}

FileHandle create_work_file(const char* folder, char* path) {
    char prefix[sizeof directories.temp_prefix + 2];
    format_text(prefix, sizeof prefix, "%sDX", directories.temp_prefix);
    return create_unique_file(folder, prefix, path);
}

FileHandle create_output_file(const char* folder, char* path) {
    FileHandle file = create_work_file(folder, path);
    if (file != NO_FILE || last_file_error() != FileError::NAME_TOO_LONG)
        return file;
    for (const char* name = SHORT_NAMES; *name != '\0'; name++) {
        if (!format_text(path, PATH_SIZE, "%s%s%c", folder, separator_behind(folder), *name))
            break;
        file = file_create(path, FileCreate::PRIVATE);
        if (file != NO_FILE || last_file_error() != FileError::EXISTS)
            return file;
    }
    set_last_file_error(FileError::NAME_TOO_LONG);
    return NO_FILE;
}

void choose_temp_folder(const char* wanted, char* folder) {
    char named[PATH_SIZE];
    const char* candidates[] = {named, wanted, "/"};
    environment_value("TMP", named, sizeof named);
    for (const char* candidate : candidates) {
        // A relative TMP is taken from where the program was started. A folder with a path so long that names
        // in it would be cut is of no use.
        if (candidate[0] != '\0' && path_kind(candidate) == PathKind::FOLDER &&
            absolute_path(candidate, folder, PATH_SIZE) && std::strlen(folder) + 1 + LONGEST_NAME < PATH_SIZE)
            return;
    }
    copy_text(folder, PATH_SIZE, ".");
}

void choose_free_name(char* name, std::size_t size) {
    char path[PATH_SIZE];
    do {
        format_text(name, size, "%s%d", directories.temp_prefix, ++name_counter);
    } while (format_text(path, sizeof path, "%s%s%s", directories.temp_dir,
                         separator_behind(directories.temp_dir), name) &&
             path_kind(path) != PathKind::NONE);
}

}  // namespace hexlane
