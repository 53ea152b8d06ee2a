#include "store/replace_file.h"

#include <cstring>

#include "platform/text.h"
#include "shell/directories.h"
#include "shell/temp_names.h"

namespace hexlane {

using namespace platform;

namespace {

// `path` up to and including its last '/', or empty.
void folder_of(const char* path, char folder[PATH_SIZE]) {
    copy_text(folder, PATH_SIZE, path);
    char* slash = std::strrchr(folder, '/');
    folder[slash == nullptr ? 0 : slash - folder + 1] = '\0';
}

int fail_replacement(Replacement* replacement) {
    abandon_replacement(replacement);
    return 0;
}

}  // namespace

int begin_replacement(Replacement* replacement, const char* path) {
    replacement->file = NO_FILE;
    replacement->length = 0;
    replacement->output[0] = '\0';
    if (!follow_links(path, replacement->target, sizeof replacement->target))
        return 0;
    char folder[PATH_SIZE];
    folder_of(replacement->target, folder);
    replacement->file = create_output_file(folder, replacement->output);
    if (replacement->file == NO_FILE) {
        replacement->output[0] = '\0';
        return 0;
    }
    return 1;
}

int replacement_write(Replacement* replacement, const void* data, std::size_t size) {
    if (!file_write_at(replacement->file, replacement->length, data, size))
        return 0;
    replacement->length += static_cast<int64_t>(size);
    return 1;
}

int replacement_copy(Replacement* replacement, FileHandle from, int64_t position, int64_t count) {
    if (file_copy_range(from, position, replacement->file, replacement->length, count) != count)
        return 0;
    replacement->length += count;
    return 1;
}

int finish_replacement(Replacement* replacement, FileHandle like) {
    if (!file_adopt_mode(replacement->file, like) || !file_flush(replacement->file))
        return fail_replacement(replacement);
    const int closed = file_close(replacement->file);
    replacement->file = NO_FILE;
    if (!closed || !rename_file(replacement->output, replacement->target))
        return fail_replacement(replacement);
    replacement->output[0] = '\0';
    // The new version is in place and whole. A folder that cannot be flushed (some file systems have no such
    // operation) leaves the old name or the new one after a power cut, each with a whole file.
    (void)flush_folder_of(replacement->target);
    return 1;
}

void abandon_replacement(Replacement* replacement) {
    const FileError reason = last_file_error();
    if (replacement->file != NO_FILE)
        file_close(replacement->file);
    replacement->file = NO_FILE;
    if (replacement->output[0] != '\0')
        delete_file(replacement->output);
    replacement->output[0] = '\0';
    set_last_file_error(reason);
}

int replace_whole_file(const char* path, const void* data, std::size_t size) {
    const FileHandle old = file_open(path, FileAccess::READ_WRITE);
    if (old == NO_FILE && last_file_error() != FileError::NOT_FOUND)
        return 0;
    Replacement output;
    const int written = begin_replacement(&output, path) && replacement_write(&output, data, size) &&
                        finish_replacement(&output, old);
    abandon_replacement(&output);
    if (old != NO_FILE) {
        const FileError reason = last_file_error();
        file_close(old);
        set_last_file_error(reason);
    }
    return written;
}

}  // namespace hexlane
