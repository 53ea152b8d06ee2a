#include "shell/directories.h"

#include <cstring>

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/process.h"
#include "shell/child.h"
#include "shell/temp_names.h"

namespace hexlane {

using namespace platform;

Directories directories;

namespace {

// Bytes of the longest path below the home folder, "/ZOLTTMP/" and a temporary name or "/INIT/" and a file.
constexpr std::size_t LONGEST_NAME_BELOW = 32;

constexpr int NAME_CHARS = 62;
constexpr int VALUES_PER_CHAR = 529;
constexpr int NAME_CHAR_RANGE = 32768;

// What may follow temp_prefix in the name of a file of this run: one of these, or a number behind "" or "DX".
constexpr const char* FIXED_NAMES[] = {"chng.txt", "CUT.INX", "idx.twr", "tmpx.twr"};
constexpr const char* NUMBERED_NAMES[] = {"", "DX"};

bool is_number(const char* text) {
    return text[0] != '\0' && text[std::strspn(text, "0123456789")] == '\0';
}

bool is_name_of_this_run(const char* name) {
    const char* rest = name + std::strlen(directories.temp_prefix);
    for (const char* fixed : FIXED_NAMES) {
        if (std::strcmp(rest, fixed) == 0)
            return true;
    }
    for (const char* front : NUMBERED_NAMES) {
        const std::size_t length = std::strlen(front);
        if (std::strncmp(rest, front, length) == 0 && is_number(rest + length))
            return true;
    }
    return false;
}

void delete_if_ours(void*, const char* name) {
    char path[PATH_SIZE];
    if (is_name_of_this_run(name) && format_text(path, sizeof path, "%s/%s", directories.temp_dir, name))
        delete_file(path);
}

void note_name(void* context, const char*) {
    *static_cast<bool*>(context) = true;
}

void draw_prefix() {
    unsigned char bytes[2 * (sizeof directories.temp_prefix - 1)];
    random_bytes(bytes, sizeof bytes);
    for (std::size_t i = 0; i + 1 < sizeof directories.temp_prefix; i++)
        directories.temp_prefix[i] = random_name_char(bytes[2 * i] << 8 | bytes[2 * i + 1]);
}

// A prefix that no name in temp_dir has yet, so that the sweep at the end meets only files of this run.
void choose_prefix() {
    bool taken = true;
    while (taken) {
        taken = false;
        draw_prefix();
        list_folder(directories.temp_dir, directories.temp_prefix, note_name, &taken);
    }
}

// `start_dir`/`name`, made if it is missing, with `end` behind it.
void make_home_folder(const char* name, const char* end, char path[PATH_SIZE]) {
    const char* separator = std::strcmp(directories.start_dir, "/") == 0 ? "" : "/";
    format_text(path, PATH_SIZE, "%s%s%s", directories.start_dir, separator, name);
    make_folder(path);
    append_text(path, PATH_SIZE, end);
}

}  // namespace

char random_name_char(int value) {
    const int index = (value & (NAME_CHAR_RANGE - 1)) / VALUES_PER_CHAR % NAME_CHARS;
    return "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"[index];
}

int find_home() {
    Directories& d = directories;
    if (launch_doubt(d.doubt, sizeof d.doubt))
        warn_on_terminal(d.doubt);
    if (!launch_folder(d.launch_dir, sizeof d.launch_dir))
        return 0;
    char home[PATH_SIZE];
    const char* separator = std::strcmp(d.launch_dir, "/") == 0 ? "" : "/";
    if (!format_text(home, sizeof home, "%s%sZOLT", d.launch_dir, separator) ||
        !format_text(d.help_path, sizeof d.help_path, "%s/zolt.hlp", home) ||
        !format_text(d.terminal_path, sizeof d.terminal_path, "%s/term.exe", home) ||
        std::strlen(home) + LONGEST_NAME_BELOW >= PATH_SIZE)
        return 0;
    copy_text(d.start_dir, sizeof d.start_dir, path_kind(home) == PathKind::FOLDER ? home : d.launch_dir);
    return 1;
}

int terminal_may_run(char doubt[DOUBT_SIZE]) {
    doubt[0] = '\0';
    if (path_kind(directories.terminal_path) != PathKind::FILE)
        return 0;
    const char* place = directories.launch_dir;
    const char* reason = stranger_reason(place);
    if (reason == nullptr) {
        place = directories.terminal_path;
        reason = stranger_reason_of_program(place);
    }
    if (reason != nullptr)
        format_text(doubt, DOUBT_SIZE, "term.exe is not run: %s: %s", place, reason);
    return reason == nullptr;
}

void create_directories() {
    Directories& d = directories;
    char wanted[PATH_SIZE];
    make_home_folder("ZOLTTMP", "", wanted);
    make_home_folder("MACROS", "/", d.macro_dir);
    choose_temp_folder(wanted, d.temp_dir);
    choose_prefix();
    format_text(child[0].change_path, PATH_SIZE, "%s/%schng.txt", d.temp_dir, d.temp_prefix);
    make_home_folder("INIT", "/", d.init_dir);
    make_home_folder("TEMP", "", wanted);
    format_text(d.parameter_file_path, sizeof d.parameter_file_path, "%sCOMMPARM.INI", d.init_dir);
}

void cleanup_temp_files() {
    list_folder(directories.temp_dir, directories.temp_prefix, delete_if_ours, nullptr);
}

}  // namespace hexlane
