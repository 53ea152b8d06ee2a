// process.cpp: the launch directory, the environment and the current directory.

#include "platform/process.h"

#include "platform/files.h"

#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr const char* PROGRAM_FOLDER = "ZOLT";

// Makes the absolute path `path`, which has no '/' at its end, that of the folder above. Above a link is the
// folder above what it leads to. 0 when that does not fit.
int go_up(char* path, std::size_t size) {
    struct stat entry;
    if (lstat(path, &entry) == 0 && S_ISLNK(entry.st_mode)) {
        char* real = realpath(path, nullptr);
        const bool fits = real == nullptr || copy_text(path, size, real);
        std::free(real);
        if (!fits) {
            return 0;
        }
    }
    char* slash = std::strrchr(path, '/');
    if (slash != nullptr) {
        *slash = '\0';
    }
    return 1;
}

// Appends the parts of `path` to the absolute path in `absolute`, which has no '/' at its end.
int append_parts(char* absolute, std::size_t size, const char* path) {
    while (*path != '\0') {
        const std::size_t length = std::strcspn(path, "/");
        if (length == 2 && path[0] == '.' && path[1] == '.') {
            if (!go_up(absolute, size)) {
                return 0;
            }
        } else if (length > 0 && !(length == 1 && path[0] == '.')) {
            const std::size_t used = std::strlen(absolute);
            if (used + 1 + length >= size) {
                return 0;
            }
            absolute[used] = '/';
            std::memcpy(absolute + used + 1, path, length);
            absolute[used + 1 + length] = '\0';
        }
        path += length + (path[length] == '/' ? 1 : 0);
    }
    return 1;
}

int current_folder(char* path, std::size_t size) {
    return getcwd(path, size) != nullptr && path[0] == '/' ? 1 : 0;
}

// `folder`/`name`. 0 when it does not fit.
int join(char* path, std::size_t size, const char* folder, const char* name) {
    return format_text(path, size, "%s/%s", std::strcmp(folder, "/") == 0 ? "" : folder, name);
}

// Makes a folder and those above it, as far as they are missing.
int make_folders(const char* path) {
    char part[PATH_SIZE];
    if (!copy_text(part, sizeof part, path)) {
        return 0;
    }
    for (char* slash = std::strchr(part + 1, '/'); slash != nullptr; slash = std::strchr(slash + 1, '/')) {
        *slash = '\0';
        if (path_kind(part) == PathKind::NONE && !make_folder(part)) {
            return 0;
        }
        *slash = '/';
    }
    return make_folder(part);
}

// Where programs keep a user's data by the XDG base directory rules.
int data_folder(char* path, std::size_t size) {
    char home[PATH_SIZE];
    if (environment_value("XDG_DATA_HOME", home, sizeof home) && home[0] == '/') {
        return absolute_path(home, path, size);
    }
    if (!environment_value("HOME", home, sizeof home) || home[0] != '/') {
        const passwd* user = getpwuid(getuid());
        if (user == nullptr || !copy_text(home, sizeof home, user->pw_dir)) {
            return 0;
        }
    }
    char data[PATH_SIZE];
    return join(data, sizeof data, home, ".local/share") && absolute_path(data, path, size);
}

// Whether the current folder holds the program's; both are filled in then.
bool is_portable_installation(char folder[PATH_SIZE], char program[PATH_SIZE]) {
    return current_folder(folder, PATH_SIZE) && join(program, PATH_SIZE, folder, PROGRAM_FOLDER) &&
           path_kind(program) == PathKind::FOLDER;
}

// The one of two folders into which somebody else may have put something, nullptr when there is none.
const char* stranger_of(const char* folder, const char* program) {
    if (stranger_reason(folder) != nullptr) {
        return folder;
    }
    return stranger_reason(program) != nullptr ? program : nullptr;
}

}  // namespace

int launch_folder(char* path, std::size_t size) {
    const char* wanted = std::getenv("HEXLANE_HOME");
    if (wanted != nullptr && wanted[0] != '\0') {
        return absolute_path(wanted, path, size) && path_kind(path) == PathKind::FOLDER ? 1 : 0;
    }
    char folder[PATH_SIZE];
    char program[PATH_SIZE];
    if (is_portable_installation(folder, program) && stranger_of(folder, program) == nullptr) {
        return copy_text(path, size, folder);
    }
    return data_folder(folder, sizeof folder) && join(path, size, folder, "hexlane") &&
                   join(program, sizeof program, path, PROGRAM_FOLDER) && make_folders(program)
               ? 1
               : 0;
}

int launch_doubt(char* text, std::size_t size) {
    char folder[PATH_SIZE];
    char program[PATH_SIZE];
    const char* place = nullptr;
    const char* wanted = std::getenv("HEXLANE_HOME");
    text[0] = '\0';
    if (wanted != nullptr && wanted[0] != '\0') {
        if (absolute_path(wanted, folder, sizeof folder) &&
            join(program, sizeof program, folder, PROGRAM_FOLDER)) {
            place = stranger_of(folder, path_kind(program) == PathKind::FOLDER ? program : folder);
        }
        return place != nullptr &&
               format_text(text, size, "HEXLANE_HOME is used, but no program in it is run: %s: %s", place,
                           stranger_reason(place));
    }
    if (is_portable_installation(folder, program)) {
        place = stranger_of(folder, program);
    }
    return place != nullptr &&
           format_text(text, size, "the current folder is not taken as the program's: %s: %s", place,
                       stranger_reason(place));
}

int environment_value(const char* name, char* value, std::size_t size) {
    const char* text = std::getenv(name);
    if (text != nullptr && copy_text(value, size, text)) {
        return 1;
    }
    if (size > 0) {
        value[0] = '\0';
    }
    return 0;
}

int absolute_path(const char* path, char* absolute, std::size_t size) {
    char result[PATH_SIZE];
    result[0] = '\0';
    if (path[0] != '/') {
        char folder[PATH_SIZE];
        if (!current_folder(folder, sizeof folder) || !append_parts(result, sizeof result, folder)) {
            return 0;
        }
    }
    if (!append_parts(result, sizeof result, path)) {
        return 0;
    }
    return copy_text(absolute, size, result[0] != '\0' ? result : "/");
}

}  // namespace hexlane::platform
