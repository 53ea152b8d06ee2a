// directories.h: the folders of the run and the names of its temporary files.
// All are fixed once at start-up and end in '/' only where said. Main thread only.
#pragma once

#include "platform/text.h"

namespace hexlane {

constexpr std::size_t DOUBT_SIZE = platform::PATH_SIZE + 160;

struct Directories {
    char launch_dir[platform::PATH_SIZE];
    char start_dir[platform::PATH_SIZE];  // the home of all that follows: launch_dir/ZOLT, or launch_dir
    char help_path[platform::PATH_SIZE];
    char terminal_path[platform::PATH_SIZE];
    char temp_dir[platform::PATH_SIZE];   // start_dir/ZOLTTMP, or what TMP names
    char temp_prefix[5];                  // 4 random characters: the first part of every temporary name
    char macro_dir[platform::PATH_SIZE];  // with '/' at the end
    char init_dir[platform::PATH_SIZE];   // with '/' at the end
    char parameter_file_path[platform::PATH_SIZE];
    char doubt[DOUBT_SIZE];  // why the launch directory is not the one that the user may expect; empty: it is
};

extern Directories directories;

// Maps a number from 0 to 32767 to a digit, a capital or a small letter; higher numbers are folded into that
// range.
char random_name_char(int value);

// Fills launch_dir, start_dir, help_path, terminal_path and doubt, which also goes to standard error. Gives
// 1, or 0 when there is no usable folder.
int find_home();

// Whether terminal_path may be run: nobody but the user and root can have put it there. Otherwise 0, with a
// line for the user in `doubt`, which is empty when there is no such file.
int terminal_may_run(char doubt[DOUBT_SIZE]);

// Makes the four folders if needed and fills the rest, change_path in child included.
void create_directories();

// Deletes the temporary files of this run: only names of the forms that the run itself makes.
void cleanup_temp_files();

}  // namespace hexlane
