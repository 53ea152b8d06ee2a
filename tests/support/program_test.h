// program_test.h: the whole program on the desktop in memory, with a home and a work folder of its own for
// each test.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace hexlane {

class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // As in front of another test.
    void begin_anew() {
        TearDown();
        SetUp();
    }

    // Starts the program, with a file of the work folder on its command line if `name` is not empty.
    void start(const std::string& name = "");

    // Writes a file into the work folder and starts the program with it.
    void start_with(const std::string& bytes, const std::string& name = "part.nc");

    std::string path(const std::string& name) const { return work + "/" + name; }
    void write(const std::string& name, const std::string& bytes) const;
    std::string bytes(const std::string& name = "part.nc") const;
    bool exists(const std::string& name) const;

    // Names in the work folder and in the folder of the temporary files.
    std::vector<std::string> work_names() const;
    std::vector<std::string> temp_names() const;

    // The texts of all rows as fetched. A pending row is committed first.
    static std::vector<std::string> rows();

    // Origin letters of all rows.
    static std::string origins();

    static void command(int id);

    // Sets the text of a row and commits it, as a command of the program would.
    static void set_row(int32_t row, const std::string& text);

    std::string home;  // the launch directory, with a folder ZOLT
    std::string work;

private:
    int files_before = 0;
};

// Makes row_text this text, as a key that types would.
void put_row_text(const std::string& text);

// Whole content of a file, "" when it cannot be read; and a file made anew.
std::string read_bytes(const std::string& path);
void write_bytes(const std::string& path, const std::string& bytes);

// A new empty folder for a test, without a dot in its path.
std::string make_test_folder();

}  // namespace hexlane
