// replace_file.h: a new version of a file of the user's, written beside it and put in its place in one step.
// The output lies in the folder of the file it will replace (of a link's target), is flushed, gets the old
// file's mode and owner, and replaces it by rename; then the folder is flushed. A kill at any moment leaves
// the old file or the new one, whole. Main thread only.
#pragma once

#include "platform/files.h"

namespace hexlane {

struct Replacement {
    platform::FileHandle file;         // open for writing between begin and finish
    int64_t length;                    // bytes written so far
    char target[platform::PATH_SIZE];  // what will be replaced, links followed
    char output[platform::PATH_SIZE];  // the new version until then
};

// All give 1, or 0 on failure, when the reason is in platform::last_file_error() and no output is left.
[[nodiscard]] int begin_replacement(Replacement* replacement, const char* path);
[[nodiscard]] int replacement_write(Replacement* replacement, const void* data, std::size_t size);
[[nodiscard]] int replacement_copy(Replacement* replacement, platform::FileHandle from, int64_t position,
                                   int64_t count);

// Puts it in place. `like` gives mode and owner; NO_FILE for a file that was not there before.
[[nodiscard]] int finish_replacement(Replacement* replacement, platform::FileHandle like);

// Deletes the unfinished output, and leaves platform::last_file_error() as it is. Harmless when there is
// none.
void abandon_replacement(Replacement* replacement);

// A small file of the program's own, replaced as a whole. One that is there and may not be read and written
// is left alone: renaming would get round its mode. Gives 1; 0 on failure, when the old file stays and the
// reason is in platform::last_file_error().
[[nodiscard]] int replace_whole_file(const char* path, const void* data, std::size_t size);

}  // namespace hexlane
