#include "files/file_filter.h"

#include <cstring>

#include "platform/text.h"
#include "shell/window.h"

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

}  // namespace hexlane
