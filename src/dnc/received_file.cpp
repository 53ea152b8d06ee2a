#include "dnc/received_file.h"

#include "platform/text.h"
#include "store/replace_file.h"

namespace hexlane {

using namespace platform;

namespace {

int refuse_in_use() {
    set_last_file_error(FileError::IN_USE);
    return 0;
}

void close_if_open(FileHandle file) {
    if (file != NO_FILE)
        file_close(file);
}

// Whether nobody receives into the file; the locks are let go again.
int part_is_free(const char* target) {
    char part[PATH_SIZE];
    FileHandle file = NO_FILE;
    if (!name_part(target, part))
        return 1;  // no program can make it
    if (!lock_name(part, &file))
        return 0;
    close_if_open(file);
    return 1;
}

// The new file gets the name while `old`, the one before, is locked; without one, only a free name is taken.
int take_name(const Replacement& output, FileHandle old, bool is_new) {
    if (!file_adopt_mode(output.file, NO_FILE) || !file_lock(output.file))
        return 0;
    if (old == NO_FILE && is_new)
        return rename_to_new(output.output, output.target);
    return rename_file(output.output, output.target);
}

}  // namespace

int name_part(const char* target, char* part) {
    if (format_text(part, PATH_SIZE, "%s%s", target, PART_ENDING))
        return 1;
    set_last_file_error(FileError::NAME_TOO_LONG);
    return 0;
}

int lock_name(const char* path, FileHandle* file) {
    *file = file_open(path, FileAccess::READ);
    if (*file == NO_FILE)
        return 1;
    FileStamp locked;
    FileStamp named;
    // Whoever had the lock a moment ago may have given the name to another file since.
    if (file_lock(*file) && file_stamp(*file, &locked) && path_stamp(path, &named) &&
        locked.device == named.device && locked.inode == named.inode)
        return 1;
    file_close(*file);
    *file = NO_FILE;
    return refuse_in_use();
}

FileHandle make_received_file(const char* path) {
    Replacement output;
    if (!begin_replacement(&output, path))
        return NO_FILE;
    FileHandle old = NO_FILE;
    const bool is_new = path_kind(output.target) == PathKind::NONE;
    const int made =
        part_is_free(output.target) && lock_name(output.target, &old) && take_name(output, old, is_new);
    const FileError reason = last_file_error();
    close_if_open(old);
    set_last_file_error(reason);
    if (made)
        return output.file;
    abandon_replacement(&output);
    return NO_FILE;
}

}  // namespace hexlane
