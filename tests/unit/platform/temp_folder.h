// temp_folder.h: a folder of its own for each test, and whole files in one call, by the standard library
// alone, so that what is under test does not check itself.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace hexlane::platform {

class TempFolder : public testing::Test {
protected:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "hexlane-test-XXXXXX").string();
        folder = mkdtemp(name.data()) != nullptr ? name : "";
    }
    ~TempFolder() override { std::filesystem::remove_all(folder); }

    std::string path(const std::string& name) const { return folder + "/" + name; }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::string folder;
};

}  // namespace hexlane::platform
