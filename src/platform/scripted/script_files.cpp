// script_files.cpp: a script's own reading and writing, over the standard library.

#include "platform/scripted/script_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace hexlane::platform {

namespace fs = std::filesystem;

// The new file is complete before the old one goes, so that the two can't be one inode.
std::string write_new_file(const std::string& path, const std::string& bytes) {
    const std::string fresh = path + ".new~";
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    std::error_code error;
    if (file.good()) {
        fs::rename(fresh, path, error);
        if (!error) {
            return "";
        }
    }
    fs::remove(fresh, error);
    return "cannot write " + path;
}

std::string read_whole_file(const std::string& path, std::string* bytes) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return "there is no file " + path;
    }
    std::ifstream file(path, std::ios::binary);
    std::ostringstream all;
    all << file.rdbuf();
    *bytes = all.str();
    return file.bad() || !file.is_open() ? "cannot read " + path : "";
}

std::string read_folder(const std::string& path, std::vector<FolderEntry>* entries) {
    std::error_code error;
    fs::directory_iterator next(path, error);
    for (; !error && next != fs::directory_iterator(); next.increment(error)) {
        std::error_code ignored;  // a link to nothing has size 0
        const bool is_folder = next->is_directory(ignored);
        const uintmax_t size = is_folder ? 0 : next->file_size(ignored);
        entries->push_back({next->path().filename().string(), is_folder, ignored ? 0 : size});
    }
    if (error) {
        return "cannot read the folder " + path;
    }
    std::sort(entries->begin(), entries->end(),
              [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    return "";
}

bool path_exists(const std::string& path) {
    std::error_code error;
    return fs::exists(path, error);
}

bool folder_exists(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

}  // namespace hexlane::platform
