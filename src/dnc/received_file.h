// received_file.h: the files that a receive writes, and the locks by which two programs that want one name
// find out. The window writes NAME itself and has its lock until the end; hexlane-cli writes NAME.part and
// has that one's lock, and NAME's when there is one. Each looks at both before it begins. Main thread only.
#pragma once

#include "platform/files.h"

namespace hexlane {

constexpr const char* PART_ENDING = ".part";

// The name beside `target` into part[PATH_SIZE]. 1, or 0 with the reason in platform::last_file_error().
int name_part(const char* target, char* part);

// Opens the file of that name and takes its lock. Gives 1 with the handle in *file, NO_FILE when there is
// none or it can't be opened; 0 with IN_USE when another program has the lock or takes the name.
[[nodiscard]] int lock_name(const char* path, platform::FileHandle* file);

// Makes an empty file in the place of `path`, open and locked. The one before stays when that can't be done:
// NO_FILE, with the reason in platform::last_file_error().
platform::FileHandle make_received_file(const char* path);

}  // namespace hexlane
