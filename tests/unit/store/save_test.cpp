// Saving: which bytes reach the file, and what stands behind the last row. Random documents are in
// model_test.cpp.

#include "store/row_table.h"
#include "store/save.h"

#include <sys/stat.h>
#include <unistd.h>

#include "edit/keyboard.h"
#include "platform/scripted/test_hooks.h"
#include "store/row_edits.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;
using namespace std::string_literals;

class SaveTest : public ProgramTest {
protected:
    void pend(int32_t row, const std::string& text) {
        fetch_row(row);
        std::memset(child[0].row_text, 0, sizeof child[0].row_text);
        std::memcpy(child[0].row_text, text.data(), text.size());
        child[0].pending_row = row;
        child[0].modified = 1;
    }
};

// The new version has a longer name than the file, and no room for it.
TEST_F(SaveTest, AFileWithTheLongestPathIsSaved) {
    const std::string folder(PATH_SIZE - 1 - path("").size() - 2, 'f');
    const std::string name = folder + "/a";
    ASSERT_EQ(path(name).size(), PATH_SIZE - 1U);
    std::filesystem::create_directory(path(folder));
    write(folder + "/0", "another file");
    answer_other_boxes("OK");
    start_with("A\r\nB\r\n", name);
    pend(0, "a");
    command(1002);
    EXPECT_TRUE(shown_boxes().empty());
    EXPECT_EQ(bytes(name), "a\r\nB\r\n");
    EXPECT_EQ(bytes(folder + "/0"), "another file");
    EXPECT_FALSE(exists(folder + "/1"));
}

TEST_F(SaveTest, OnlyTouchedRowsGetNewLineEnds) {
    struct Case {
        const char* label;
        std::string file;
        int row;
        std::string text;
        std::string saved;
    };
    const Case cases[] = {
        {"LF stays in untouched rows", "A\nB\nC\n", 1, "b", "A\nb\r\nC\n"},
        {"a row without line end gets one", "A\r\nB", 0, "a", "a\r\nB\r\n"},
        {"text typed into the end row", "A\r\n", 1, "x", "A\r\nx\r\n\r\n"},
        {"the same behind a row without line end", "A\r\nB", 2, "x", "A\r\nB\r\nx\r\n\r\n"},
        {"a row made empty", "A\r\nB\r\n", 0, "", "\r\nB\r\n"},
        {"a NUL in front of a touched row", "A\0B\nC\n"s, 1, "b", "A\0b\r\nC\n"s},
        {"a touched NUL row", "A\0B\nC\n"s, 0, "a", "a\r\nB\nC\n"},
        {"255 characters", "A\nB\n", 0, repeated('z', 255), repeated('z', 255) + "\r\nB\n"},
        {"0x1A behind the last line end", "A\n\x1A", 0, "a", "a\r\n\x1A"},
    };
    int number = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        const std::string name = "case" + std::to_string(number++);
        start_with(c.file, name);
        pend(c.row, c.text);
        command(1002);
        EXPECT_EQ(bytes(name), c.saved);
        EXPECT_EQ(child[0].modified, 0);
        EXPECT_EQ(origins().find_first_not_of('O'), std::string::npos);
        EXPECT_EQ(work_names(), std::vector<std::string>{name});
    }
}

TEST_F(SaveTest, ALastRowWithoutLineEndIsParted) {
    // Rows put in behind a last row that has no line end, or behind the old end row.
    start_with("A\r\nB");
    insert_blank_rows(2, 1);
    set_row(2, "x");
    command(1002);
    EXPECT_EQ(bytes(), "A\r\nB\r\nx\r\n\r\n");
    begin_anew();
    start_with("A\r\n");
    split_row(1, 0);  // Enter on the empty end row
    command(1002);
    EXPECT_EQ(bytes(), "A\r\n\r\n");
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

TEST_F(SaveTest, TheSnapshotHoldsTheEditsAndTheDocumentStaysAsItIs) {
    start_with("A\r\nB\r\n");
    pend(1, "edited");
    ASSERT_TRUE(write_compare_snapshot());
    EXPECT_EQ(read_bytes(child[0].compare_path), "A\r\nedited\r\n");
    EXPECT_EQ(bytes(), "A\r\nB\r\n");
    EXPECT_EQ(child[0].modified, 1);
    EXPECT_EQ(origins(), "OCO");
}

}  // namespace
}  // namespace hexlane
