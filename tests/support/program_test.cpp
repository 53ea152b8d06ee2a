#include "support/program_test.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "edit/keyboard.h"
#include "frame/program.h"
#include "platform/desktop.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "store/row_records.h"
#include "store/row_table.h"

namespace hexlane {

namespace fs = std::filesystem;

namespace {

std::vector<std::string> names_in(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::string read_bytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void write_bytes(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << bytes;
    if (!file.flush())
        throw std::runtime_error("cannot write " + path);
}

void put_row_text(const std::string& text) {
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
    std::memcpy(child[0].row_text, text.data(), std::min(text.size(), sizeof child[0].row_text - 1));
}

std::string make_test_folder() {
    char name[] = "/tmp/hexlane-test-XXXXXX";
    if (mkdtemp(name) == nullptr)
        throw std::runtime_error("cannot make a test folder");
    return name;
}

void ProgramTest::SetUp() {
    files_before = platform::open_file_count();
    platform::reset_file_faults();
    platform::reset_desktop();
    home = make_test_folder();
    work = home + "/work";
    fs::create_directories(home + "/ZOLT");
    fs::create_directories(work);
    setenv("HEXLANE_HOME", home.c_str(), 1);
    unsetenv("TMP");
    child[0].overwrite_mode = 0;
}

void ProgramTest::TearDown() {
    platform::reset_file_faults();
    close_document();
    // Also a step that was given up or has failed lets go of its files.
    EXPECT_EQ(platform::open_file_count(), files_before);
    fs::remove_all(home);
}

void ProgramTest::start(const std::string& name) {
    program_main(name.empty() ? nullptr : path(name).c_str());
}

void ProgramTest::start_with(const std::string& text, const std::string& name) {
    write(name, text);
    start(name);
    ASSERT_TRUE(child[0].file_open);
}

void ProgramTest::write(const std::string& name, const std::string& text) const {
    write_bytes(path(name), text);
}
std::string ProgramTest::bytes(const std::string& name) const {
    return read_bytes(path(name));
}
bool ProgramTest::exists(const std::string& name) const {
    return fs::exists(path(name));
}
std::vector<std::string> ProgramTest::work_names() const {
    return names_in(work);
}
std::vector<std::string> ProgramTest::temp_names() const {
    return names_in(directories.temp_dir);
}

std::vector<std::string> ProgramTest::rows() {
    std::vector<std::string> texts;
    commit_pending();
    for (int32_t row = 0; row <= child[0].last_file_row; row++) {
        EXPECT_TRUE(fetch_row(row)) << "row " << row;
        texts.emplace_back(child[0].row_text);
    }
    return texts;
}

std::string ProgramTest::origins() {
    std::string letters;
    for (int32_t row = 0; row <= child[0].last_file_row; row++) {
        RowRecord record = {0, '?'};
        EXPECT_TRUE(read_record(row, &record)) << "row " << row;
        letters += record.origin;
    }
    return letters;
}

void ProgramTest::command(int id) {
    platform::send_message(child[0].main_window, platform::WM_COMMAND, id, 0);
    platform::pump_messages();
}

void ProgramTest::set_row(int32_t row, const std::string& text) {
    ASSERT_TRUE(fetch_row(row));
    put_row_text(text);
    ASSERT_TRUE(commit_row(row));
    child[0].modified = 1;
}

}  // namespace hexlane
