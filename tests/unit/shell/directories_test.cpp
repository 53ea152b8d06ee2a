// The run's folders and temporary names.

#include "shell/directories.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

namespace fs = std::filesystem;
using namespace platform;

TEST(RandomNameChar, EachOfTheCharactersIsEquallyLikely) {
    std::string all;
    for (int value = 0; value < 32768; value += 529)
        all += random_name_char(value);
    EXPECT_EQ(all, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    struct Case {
        int value;
        char character;
    };
    for (const Case& c : {Case{528, '0'}, Case{529, '1'}, Case{10 * 529, 'A'}, Case{36 * 529 - 1, 'Z'},
                          Case{36 * 529, 'a'}, Case{32767, 'z'}, Case{65535, 'z'}, Case{-1, 'z'}})
        EXPECT_EQ(random_name_char(c.value), c.character) << c.value;
}

class DirectoriesTest : public ProgramTest {
protected:
    void TearDown() override {
        unsetenv("TMP");
        ProgramTest::TearDown();
    }

    static std::string prefixed(const char* rest) {
        return std::string(directories.temp_dir) + "/" + directories.temp_prefix + rest;
    }
};

TEST_F(DirectoriesTest, WithoutAFolderZoltTheLaunchFolderIsTheHome) {
    fs::remove_all(home + "/ZOLT");
    start();
    EXPECT_EQ(directories.start_dir, home);
    EXPECT_EQ(directories.temp_dir, home + "/ZOLTTMP");
    EXPECT_EQ(directories.macro_dir, home + "/MACROS/");
    EXPECT_EQ(directories.init_dir, home + "/INIT/");
    EXPECT_EQ(directories.parameter_file_path, home + "/INIT/COMMPARM.INI");
    EXPECT_EQ(directories.help_path, home + "/ZOLT/zolt.hlp");
    for (const char* folder : {"/ZOLTTMP", "/MACROS", "/INIT", "/TEMP"})
        EXPECT_TRUE(fs::is_directory(home + folder)) << folder;
}

TEST_F(DirectoriesTest, TheSweepTakesOnlyNamesThatTheRunMakes) {
    start_with("G0\r\n");
    for (const char* ours : {"777", "DX778", "CUT.INX"})
        write_bytes(prefixed(ours), "x");
    const std::vector<std::string> others = {
        prefixed(".nc"), prefixed(""),          prefixed("7a"),
        prefixed("DX"),  prefixed("chng.txt2"), std::string(directories.temp_dir) + "/12"};
    for (const std::string& other : others)
        write_bytes(other, "x");
    command(1007);
    EXPECT_EQ(temp_names().size(), others.size());
    for (const std::string& other : others)
        EXPECT_TRUE(fs::exists(other)) << other;
}

TEST_F(DirectoriesTest, APrefixIsDrawnForEachRun) {
    start();
    const std::string first = directories.temp_prefix;
    command(1007);
    reset_desktop();
    start();
    EXPECT_NE(directories.temp_prefix, first);
    EXPECT_EQ(std::string(directories.temp_prefix).size(), 4U);
}

// A folder whose temporary names would not fit a path is as good as none.
TEST_F(DirectoriesTest, TemporaryNamesAreNeverCut) {
    std::string folder = work + "/" + std::string(100, 't') + "/";
    folder += std::string(250 - folder.size(), 'u');
    fs::create_directories(folder);
    setenv("TMP", folder.c_str(), 1);
    start_with("G0\r\n");
    const std::string change_path = child[0].change_path;
    EXPECT_TRUE(change_path.size() > 8 && change_path.substr(change_path.size() - 8) == "chng.txt")
        << change_path;
    command(1007);
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_TRUE(temp_names().empty());
}

}  // namespace
}  // namespace hexlane
