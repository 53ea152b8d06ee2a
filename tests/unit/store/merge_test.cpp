// Merge: where the text lands, the backup, and taking it back at the program's end.

#include "store/merge.h"

#include <cerrno>
#include <functional>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "store/load.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace platform;

class MergeTest : public ProgramTest {
protected:
    void merge_at(int32_t row) {
        child[0].current_row = row;
        answer_box("Yes");
        answer_file_dialog(path("other.nc").c_str());
        command(1004);
    }

    // Leaves the program with the answer No to the question about changes.
    void leave_without_saving() {
        answer_box("No");
        command(1007);
    }
};

TEST_F(MergeTest, TheTextLandsInFrontOfTheCaretsRow) {
    struct Case {
        const char* label;
        const char* file;
        int row;
        std::string other;
        std::string merged;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"first row", "A\r\nB\r\n", 0, "X\r\nY\r\n", "X\r\nY\r\nA\r\nB\r\n"},
        {"in the middle", "A\r\nB\r\n", 1, "X\r\nY\r\n", "A\r\nX\r\nY\r\nB\r\n"},
        {"end row", "A\r\nB\r\n", 2, "X\r\nY\r\n", "A\r\nB\r\nX\r\nY\r\n"},
        {"end row of a file without line end", "A\r\nB", 2, "X\r\nY\r\n", "A\r\nB\r\nX\r\nY\r\n"},
        {"no line end comes in", "A\r\nB\r\n", 1, "X\r\nY", "A\r\nX\r\nY\r\nB\r\n"},
        {"the same at the end", "A\r\nB\r\n", 2, "X", "A\r\nB\r\nX"},
        {"the same behind no line end", "A\r\nB", 2, "X", "A\r\nB\r\nX"},
        {"a byte 0x1A would hide the caret's row", "A\r\nB\r\n", 1, "X\r\n\x1A", "A\r\nX\r\n\x1A\r\nB\r\n"},
        {"a NUL ends a row", "A\r\nB\r\n", 1, "X\0"s, "A\r\nX\0B\r\n"s},
        {"an empty file adds nothing", "A\r\nB", 2, "", "A\r\nB"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        write("other.nc", c.other);
        start_with(c.file);
        merge_at(c.row);
        EXPECT_EQ(bytes(), c.merged);
        EXPECT_EQ(bytes("DX1"), c.file);
        EXPECT_EQ(child[0].modified, 1);
        EXPECT_TRUE(child[0].file_open);
        command(1002);
        EXPECT_EQ(work_names(), (std::vector<std::string>{"other.nc", "part.nc"}));
        EXPECT_EQ(bytes(), c.merged + (c.merged.back() == '\n' ? "" : "\r\n"));
        EXPECT_EQ(unused_answers(), 0);
    }
}

TEST_F(MergeTest, EditsAreSavedFirstAndNoAtTheEndRestoresTheFirstState) {
    write("other.nc", "X\r\n");
    start_with("A\r\nB\r\n");
    set_row(0, "edited");
    merge_at(1);
    EXPECT_EQ(bytes(), "edited\r\nX\r\nB\r\n");
    merge_at(0);
    EXPECT_EQ(bytes(), "X\r\nedited\r\nX\r\nB\r\n");
    EXPECT_EQ(work_names(), (std::vector<std::string>{"DX1", "DX2", "other.nc", "part.nc"}));
    leave_without_saving();
    EXPECT_EQ(bytes(), "edited\r\nB\r\n");
    EXPECT_EQ(work_names(), (std::vector<std::string>{"DX2", "other.nc", "part.nc"}));
}

TEST_F(MergeTest, TheBackupBelongsToItsFileAlone) {
    write("other.nc", "X\r\n");
    write("third.nc", "T\r\n");
    start_with("A\r\n");
    merge_at(0);
    answer_box("No");
    answer_file_dialog(path("third.nc").c_str());
    command(1001);
    set_row(0, "changed");
    command(1002);
    EXPECT_TRUE(exists("DX1"));
    set_row(0, "again");
    leave_without_saving();
    EXPECT_EQ(bytes("third.nc"), "changed\r\n");
    EXPECT_EQ(bytes(), "X\r\nA\r\n");
    EXPECT_EQ(bytes("DX1"), "A\r\n");
}

// The backup of a link's target lies beside the target: the link may be on another file system, where no file
// can be put back in one step.
TEST_F(MergeTest, TheBackupLiesBesideTheTargetOfALink) {
    std::filesystem::create_directory(path("disk"));
    write("disk/real.nc", "A\r\n");
    std::filesystem::create_symlink("disk/real.nc", path("part.nc"));
    write("other.nc", "X\r\n");
    start("part.nc");
    merge_at(0);
    EXPECT_EQ(bytes("disk/real.nc"), "X\r\nA\r\n");
    EXPECT_EQ(bytes("disk/DX1"), "A\r\n");
    leave_without_saving();
    EXPECT_EQ(bytes("disk/real.nc"), "A\r\n");
    EXPECT_FALSE(exists("disk/DX1"));
    EXPECT_TRUE(std::filesystem::is_symlink(path("part.nc")));
}

TEST_F(MergeTest, EachReasonForNotUndoingIsTold) {
    const struct {
        const char* label;
        std::function<void()> happens;
        const char* told;
        std::string file, backup;
    } cases[] = {
        {"changed", [&] { write("part.nc", "other"); }, "no longer the one that the merge made", "other",
         "A\r\n"},
        {"replaced", [&] { std::filesystem::remove(path("part.nc")), write("part.nc", "new"); },
         "no longer the one that the merge made", "new", "A\r\n"},
        {"deleted", [&] { std::filesystem::remove(path("part.nc")); }, "moved or deleted", "", "A\r\n"},
        {"no backup", [&] { std::filesystem::remove(path("DX1")); }, "is no longer there", "X\r\nA\r\n", ""},
        {"folder refuses", [] { fail_file_call(FileCall::RENAME, 1, EACCES, "", -1); },
         file_error_text(FileError::ACCESS_DENIED), "X\r\nA\r\n", "A\r\n"},
        {"merged file stays", [] { fail_file_call(FileCall::DELETE, 1, EACCES, "DX1"); },
         "was undone. What the merge had made could not be deleted", "A\r\n", "X\r\nA\r\n"},
        {"folder can't be flushed", [] { fail_file_call(FileCall::FOLDER_FLUSH, 1, EIO, "", -1); }, "",
         "A\r\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        write("other.nc", "X\r\n");
        start_with("A\r\n");
        merge_at(0);
        forget_shown_boxes();
        c.happens();
        answer_other_boxes("OK");
        leave_without_saving();
        reset_file_faults();
        ASSERT_EQ(shown_boxes().size(), *c.told == '\0' ? 1U : 2U);
        EXPECT_NE(shown_boxes().back().text.find(c.told), std::string::npos) << shown_boxes().back().text;
        EXPECT_EQ(bytes(), c.file);
        EXPECT_EQ(bytes("DX1"), c.backup);
    }
}

TEST_F(MergeTest, EveryFailingCallLeavesFileAndDocument) {
    write("other.nc", "X\r\nY\r\n");
    start_with("A\r\nB\r\n");
    answer_other_boxes("OK");
    child[0].current_row = 1;
    copy_text(child[0].merge_path, PATH_SIZE, path("other.nc").c_str());
    int failures = 0;
    for (int n = 1; n < 200; n++) {
        SCOPED_TRACE(n);
        reset_file_faults();
        forget_shown_boxes();
        fail_file_call(FileCall::ANY, n, ENOSPC);
        const int merged = merge_file();
        const bool fired = file_fault_fired();
        reset_file_faults();
        if (merged && fired) {  // a fault that does not matter: set the stage anew
            std::filesystem::remove(path("DX1"));
            write("part.nc", "A\r\nB\r\n");
            ASSERT_TRUE(load_file());
            child[0].modified = 0;
            merge_backup.merge_backup_active = 0;
            continue;
        }
        if (merged)
            break;
        failures++;
        EXPECT_EQ(shown_boxes().size(), 1U);
        EXPECT_EQ(bytes(), "A\r\nB\r\n");
        EXPECT_EQ(rows(), (std::vector<std::string>{"A", "B", ""}));
        EXPECT_EQ(child[0].modified, 0);
        EXPECT_EQ(work_names(), (std::vector<std::string>{"other.nc", "part.nc"}));
    }
    EXPECT_GT(failures, 8);
    EXPECT_EQ(bytes(), "A\r\nX\r\nY\r\nB\r\n");
}

TEST_F(MergeTest, TheBackupIsOnTheDiskBeforeTheMergedFileTakesItsPlace) {
    record_file_calls();
    write("other.nc", "X\r\n");
    start_with("A\r\nB\r\n");
    copy_text(child[0].merge_path, PATH_SIZE, path("other.nc").c_str());
    ASSERT_TRUE(merge_file());
    std::string order;
    for (const FileCallRecord& call : file_call_log()) {
        if (call.path.find(work) == std::string::npos)
            continue;
        if (call.kind == FileCall::FLUSH)
            order += call.path == path("DX1") ? "flush-backup " : "flush ";
        else if (call.kind == FileCall::RENAME)
            order += "rename ";
    }
    EXPECT_EQ(order, "flush-backup flush rename ");
}

TEST_F(MergeTest, ADocumentSavedOverTheMergedFileEndsTheMerge) {
    write("other.nc", "X\r\n");
    write("third.nc", "T\r\n");
    start_with("A\r\n");
    merge_at(0);
    answer_box("No");
    answer_file_dialog(path("third.nc").c_str());
    command(1001);
    answer_file_dialog(path("part.nc").c_str());
    answer_box("Yes");
    command(1003);
    EXPECT_EQ(bytes(), "T\r\n");
    set_row(0, "changed");
    leave_without_saving();
    EXPECT_EQ(bytes(), "T\r\n");
    EXPECT_EQ(bytes("DX1"), "A\r\n");
    EXPECT_NE(shown_boxes().back().buttons, "OK");  // nothing is left to be undone, or told about
    EXPECT_EQ(unused_answers(), 0);
}

// The merged document goes on under another name, and a Save of it is one of the merge too.
TEST_F(MergeTest, ASaveUnderAnotherNameMakesTheMergeFinal) {
    const auto save_as = [this](const char* name) {
        answer_file_dialog(path(name).c_str());
        if (exists(name))
            answer_box("Yes");
        command(1003);
    };
    const auto merge = [&] {
        begin_anew();
        write("other.nc", "X\r\n");
        start_with("A\r\n");
        merge_at(0);
        save_as("new.nc");
        EXPECT_EQ(bytes("DX1"), "A\r\n");
    };
    merge();
    set_row(0, "edited");
    command(1002);
    EXPECT_FALSE(exists("DX1"));
    EXPECT_EQ(bytes(), "X\r\nA\r\n");
    EXPECT_EQ(bytes("new.nc"), "edited\r\nA\r\n");

    merge();
    save_as("part.nc");
    EXPECT_FALSE(exists("DX1"));

    merge();  // another document under the new name is not the merged one
    answer_file_dialog(path("other.nc").c_str());
    command(1001);
    save_as("new.nc");
    set_row(0, "edited");
    command(1002);
    EXPECT_EQ(bytes("DX1"), "A\r\n");
    EXPECT_EQ(unused_answers(), 0);
}

TEST_F(MergeTest, AMergedFileThatIsNotLoadedLeavesNothingToSave) {
    write("other.nc", std::string(NULL_TEST_LIMIT + 1, '\0'));
    start_with("A\r\n");
    child[0].current_row = 0;
    answer_box("Yes");
    answer_file_dialog(path("other.nc").c_str());
    answer_box("Cancel");  // the question about NULs
    command(1004);
    EXPECT_FALSE(child[0].file_open);
    EXPECT_EQ(child[0].modified, 0);
    EXPECT_EQ(bytes("DX1"), "A\r\n");
    EXPECT_EQ(unused_answers(), 0);
}

TEST_F(MergeTest, AFileIsNotMergedWithItself) {
    start_with("A\r\n");
    std::filesystem::create_symlink("part.nc", path("other.nc"));
    answer_box("Yes");
    answer_file_dialog(path("other.nc").c_str());
    answer_box("OK");
    command(1004);
    EXPECT_EQ(shown_boxes().back().text, "Cannot merge file with itself.");
    EXPECT_EQ(bytes(), "A\r\n");
    EXPECT_EQ(unused_answers(), 0);
}

}  // namespace
}  // namespace hexlane
