// macro_table.cpp: the folder of macro files, as a table in memory.

#include "macros/macro_table.h"

#include "platform/files.h"
#include "platform/text.h"
#include "shell/directories.h"
#include "store/replace_file.h"

#include <cstring>

namespace hexlane {

using namespace platform;

MacroState macros;

namespace {

constexpr const char* FILE_STEM = "MACRO.";

int macro_path(const char* file_name, char path[PATH_SIZE]) {
    if (format_text(path, PATH_SIZE, "%s%s", directories.macro_dir, file_name))
        return 1;
    set_last_file_error(FileError::NAME_TOO_LONG);
    return 0;
}

bool is_macro_name(const char* file_name) {
    char stem[7];
    copy_text(stem, sizeof stem, file_name);
    return equal_ignoring_case(stem, FILE_STEM) && std::strlen(file_name) < MACRO_FILE_NAME_SIZE;
}

// The name inside a file, with zeros behind it; empty when the file cannot be read.
void read_macro_name(const char* path, char name[MACRO_NAME_SIZE]) {
    std::memset(name, 0, MACRO_NAME_SIZE);
    const FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE)
        return;
    char read[MACRO_NAME_SIZE] = "";
    if (file_read_at(file, 0, read, MACRO_NAME_SIZE - 1) >= 0)
        std::memcpy(name, read, std::strlen(read));
    file_close(file);
}

void enter_file(void*, const char* file_name) {
    char path[PATH_SIZE];
    if (macros.count == MAX_MACROS || !is_macro_name(file_name) || !macro_path(file_name, path) ||
        path_kind(path) == PathKind::FOLDER)
        return;
    MacroEntry& entry = macros.table[macros.count++];
    read_macro_name(path, entry.name);
    copy_text(entry.file_name, sizeof entry.file_name, file_name);
}

bool name_is_taken(const char* file_name, int32_t but) {
    char path[PATH_SIZE];
    if (!macro_path(file_name, path) || path_kind(path) != PathKind::NONE)
        return true;
    for (int32_t i = 0; i < macros.count; ++i)
        if (i != but && equal_ignoring_case(macros.table[i].file_name, file_name))
            return true;
    return false;
}

}  // namespace

void reset_macros() {
    macros = {};
    scan_macros();
}

void scan_macros() {
    macros.count = 0;
    list_folder(directories.macro_dir, "", enter_file, nullptr);
}

int new_macro_file(int32_t entry) {
    for (int number = 1; number <= MAX_MACROS; ++number) {
        char name[MACRO_FILE_NAME_SIZE];
        format_text(name, sizeof name, "%s%03d", FILE_STEM, number);
        if (!name_is_taken(name, entry)) {
            copy_text(macros.table[entry].file_name, sizeof macros.table[entry].file_name, name);
            return 1;
        }
    }
    return 0;
}

int macro_file_path(int32_t entry, char path[PATH_SIZE]) {
    return macro_path(macros.table[entry].file_name, path);
}

int write_macro(int32_t entry) {
    put_macro_count(&macros.block, macros.event_count);
    std::memcpy(macros.block.bytes, macros.table[entry].name, MACRO_NAME_SIZE);
    char path[PATH_SIZE];
    return macro_file_path(entry, path) &&
           replace_whole_file(path, macros.block.bytes, sizeof macros.block.bytes);
}

MacroRead read_macro(int32_t entry) {
    static MacroFileImage image;
    char path[PATH_SIZE];
    const FileHandle file = macro_file_path(entry, path) ? file_open(path, FileAccess::READ) : NO_FILE;
    if (file == NO_FILE)
        return MacroRead::FAILED;
    const int64_t length = file_read_at(file, 0, image.bytes, sizeof image.bytes);
    const FileError reason = last_file_error();
    file_close(file);
    set_last_file_error(reason);
    if (length < 0)
        return MacroRead::FAILED;
    const int count = get_macro_count(image);
    if (length != MACRO_FILE_SIZE || count < 0 || count > MACRO_MOST_EVENTS)
        return MacroRead::DAMAGED;
    macros.block = image;
    macros.event_count = count;
    return MacroRead::DONE;
}

int delete_macro(int32_t entry) {
    char path[PATH_SIZE];
    const int deleted = macro_file_path(entry, path) && delete_file(path);
    const FileError reason = last_file_error();
    scan_macros();
    set_last_file_error(reason);
    return deleted;
}

int32_t find_macro(const char* name) {
    for (int32_t i = 0; i < macros.count; ++i)
        if (std::strcmp(macros.table[i].name, name) == 0)
            return i;
    return -1;
}

}  // namespace hexlane
