// temp_names.h: names for temporary files that no existing file has. Main thread only.
#pragma once

#include "platform/files.h"

#include <cstddef>

namespace hexlane {

// Builds `folder`/`prefix``n` in path[PATH_SIZE] with the first free number of a counter that goes on through
// the run, and makes the file, PRIVATE, open. Gives its handle, or NO_FILE on failure.
// A folder may end in '/' or not.
platform::FileHandle create_unique_file(const char* folder, const char* prefix, char* path);

// create_unique_file for a file that is being worked on: its prefix is temp_prefix and "DX".
platform::FileHandle create_work_file(const char* folder, char* path);

// create_work_file for the new version of a file in `folder`. Where that name would make too long a path, the
// file gets a name of one character, which fits wherever the file itself does.
platform::FileHandle create_output_file(const char* folder, char* path);

// Where temporary files go: the folder that TMP names if it exists, else `wanted`, else "/", else ".".
void choose_temp_folder(const char* wanted, char* folder);

// Builds a name of temp_prefix and the first free number in name[size], free in temp_dir, for a file that is
// made later.
void choose_free_name(char* name, std::size_t size);

}  // namespace hexlane
