// Saving: what the file is besides its bytes, and runs of them. Random documents are in model_test.cpp.

#include "store/row_table.h"

#include <sys/stat.h>
#include <unistd.h>

#include "platform/scripted/test_hooks.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class SaveTest : public ProgramTest {};

// The new version has a longer name than the file, and no room for it.
TEST_F(SaveTest, AFileWithTheLongestPathIsSaved) {
    const std::string folder(PATH_SIZE - 1 - path("").size() - 2, 'f');
    const std::string name = folder + "/a";
    ASSERT_EQ(path(name).size(), PATH_SIZE - 1U);
    std::filesystem::create_directory(path(folder));
    write(folder + "/0", "another file");
    answer_other_boxes("OK");
    start_with("A\r\nB\r\n", name);
    set_row(0, "a");
    command(1002);
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_EQ(bytes(name), "a\r\nB\r\n");
    EXPECT_EQ(bytes(folder + "/0"), "another file");
    EXPECT_FALSE(exists(folder + "/1"));
}

TEST_F(SaveTest, RunsAroundTheFlushLengthAreCopiedWhole) {
    for (const int length :
         {RUN_FLUSH_LENGTH - 3, RUN_FLUSH_LENGTH - 2, RUN_FLUSH_LENGTH - 1, RUN_FLUSH_LENGTH + 5}) {
        SCOPED_TRACE(length);
        begin_anew();
        const std::string file = repeated('r', length - 1) + "\n" + repeated('s', 40) + "\nEND\n";
        start_with(file);
        set_row(2, "end");
        command(1002);
        EXPECT_EQ(bytes(), file.substr(0, file.size() - 4) + "end\r\n");
    }
}

TEST_F(SaveTest, ModeIsKeptAndALinkIsWrittenThrough) {
    start("");
    write("target.nc", "A\r\n");
    chmod(path("target.nc").c_str(), 0640);
    ASSERT_EQ(symlink("target.nc", path("link.nc").c_str()), 0);
    answer_file_dialog(path("link.nc").c_str());
    command(1001);
    set_row(0, "changed");
    command(1002);
    struct stat entry;
    ASSERT_EQ(lstat(path("link.nc").c_str(), &entry), 0);
    EXPECT_TRUE(S_ISLNK(entry.st_mode));
    EXPECT_EQ(bytes("target.nc"), "changed\r\n");
    ASSERT_EQ(stat(path("target.nc").c_str(), &entry), 0);
    EXPECT_EQ(entry.st_mode & 07777, 0640U);
    EXPECT_EQ(work_names(), (std::vector<std::string>{"link.nc", "target.nc"}));

    const mode_t mask = umask(022);
    answer_file_dialog(path("other.nc").c_str());
    command(1003);
    umask(mask);
    ASSERT_EQ(stat(path("other.nc").c_str(), &entry), 0);
    EXPECT_EQ(entry.st_mode & 07777, 0644U);
    EXPECT_EQ(child[0].file_path, path("other.nc"));
}

}  // namespace
}  // namespace hexlane
