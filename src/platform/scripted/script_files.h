// script_files.h: the files of a script: fixtures that it makes and results that it prints. They go past
// platform/files.h, so that faults laid for the program do not hit them. Main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hexlane::platform {

// Makes a file with these bytes. A file of that name is replaced by a new one, never written into: a program
// that has it open still sees the old bytes. Gives an empty text, or the reason why it could not be made.
std::string write_new_file(const std::string& path, const std::string& bytes);

// Reads all of a file. The same answer.
std::string read_whole_file(const std::string& path, std::string* bytes);

struct FolderEntry {
    std::string name;
    bool is_folder;
    uintmax_t size;  // bytes, 0 for a folder
};

// What is in a folder, in byte order of the names. The same answer.
std::string read_folder(const std::string& path, std::vector<FolderEntry>* entries);

bool path_exists(const std::string& path);
bool folder_exists(const std::string& path);

}  // namespace hexlane::platform
