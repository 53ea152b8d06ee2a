// file_error.h: from errno to FileError, and the calls that files.cpp and paths.cpp share. For the files of
// this folder only.
#pragma once

#include "platform/files.h"

#include <sys/stat.h>

namespace hexlane::platform {

// Note why a call of files.h failed, and give 0 so that they can stand in a return.
int note_errno();
int note_failure(FileError error);

// Whether a path fits PATH_SIZE; notes NAME_TOO_LONG if not.
bool path_fits(const char* path);

// stat and fstat; false with the reason noted.
bool stat_path(const char* path, struct stat* entry);
bool stat_handle(int file, struct stat* entry);

FileStamp stamp_of(const struct stat& entry);

}  // namespace hexlane::platform
