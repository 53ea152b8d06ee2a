// The fault injector: what it lets through, cuts short and refuses, and that its log is true.

#include "platform/files.h"
#include "platform/posix/file_faults.h"
#include "temp_folder.h"

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {
namespace {

class FileFaults : public TempFolder {
protected:
    FileFaults() { reset_file_faults(); }
    ~FileFaults() override { reset_file_faults(); }

    // Writes "0123456789" beside `name` and puts it in its place. Gives 1 when all went well.
    int replace(const char* name) {
        const std::string work = path("work");
        const FileHandle file = file_create(work.c_str(), FileCreate::PRIVATE);
        if (file == NO_FILE) {
            return 0;
        }
        const int written = file_write_at(file, 0, "0123456789", 10) && file_flush(file);
        const int closed = file_close(file);
        return written && closed && rename_file(work.c_str(), path(name).c_str()) &&
               flush_folder_of(path(name).c_str());
    }
};

TEST_F(FileFaults, LogTellsCallsInOrder) {
    record_file_calls();
    ASSERT_EQ(replace("a"), 1);
    EXPECT_EQ(delete_file(path("none").c_str()), 0);
    std::vector<std::string> log;
    for (const FileCallRecord& record : file_call_log()) {
        log.push_back(std::string(file_call_name(record.kind)) + " " + record.path + " " +
                      std::to_string(record.result) + " " + std::to_string(record.error));
    }
    const std::vector<std::string> expected = {
        "create " + path("work") + " 0 0",
        "write " + path("work") + " 10 0",
        "flush " + path("work") + " 0 0",
        "close " + path("work") + " 0 0",
        "rename " + path("work") + " -> " + path("a") + " 0 0",
        "folder-flush " + folder + " 0 0",
        "delete " + path("none") + " -1 " + std::to_string(ENOENT),
    };
    EXPECT_EQ(log, expected);
    EXPECT_EQ(file_call_count(FileCall::WRITE), 1);
    EXPECT_EQ(file_call_count(FileCall::ANY), 7);
}

// Every call fails once; the operation notices each, and what the fault stood in for did not happen.
TEST_F(FileFaults, FaultLoopEndsAfterTheLastCall) {
    int n = 1;
    for (;; n++) {
        write("a", "old");
        std::filesystem::remove(path("work"));
        reset_file_faults();
        fail_file_call(FileCall::ANY, n, EIO);
        const int done = replace("a");
        if (!file_fault_fired()) {
            EXPECT_EQ(done, 1);
            break;
        }
        EXPECT_EQ(done, 0) << n;
        EXPECT_EQ(last_file_error(), FileError::IO);
        EXPECT_EQ(read("a"), n < 6 ? "old" : "0123456789");
        EXPECT_EQ(open_file_count(), 0);
    }
    EXPECT_EQ(n, 7);
}

TEST_F(FileFaults, RulesCountByKindAndPath) {
    const FileHandle a = file_create(path("aaa").c_str(), FileCreate::NEW);
    fail_file_call(FileCall::WRITE, 2, ENOSPC, "bbb", 2);
    const FileHandle b = file_create(path("bbb").c_str(), FileCreate::NEW);
    std::vector<int> results;
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(file_write_at(a, i, "x", 1), 1);
        results.push_back(file_write_at(b, i, "x", 1));
    }
    EXPECT_EQ(results, (std::vector<int>{1, 0, 0, 1}));
    file_close(a);
    file_close(b);
}

TEST_F(FileFaults, FullDiskTakesAPartFirst) {
    const FileHandle from = file_open(write("from", "abcdef").c_str(), FileAccess::READ);
    const FileHandle to = file_create(path("to").c_str(), FileCreate::NEW);
    fill_disk_after(8, 2);
    EXPECT_EQ(file_write_at(to, 0, "01234", 5), 1);
    EXPECT_EQ(file_copy_range(from, 0, to, 5, 6), -1);
    EXPECT_EQ(last_file_error(), FileError::DISK_FULL);
    EXPECT_EQ(read("to"), "01234abc");
    EXPECT_EQ(file_write_at(to, 8, "", 0), 1);   // nothing to write, nothing to fail
    EXPECT_EQ(file_write_at(to, 8, "x", 1), 0);  // the second failure; then there is space again
    EXPECT_EQ(file_write_at(to, 8, "x", 1), 1);
    fill_disk_after(0);
    EXPECT_EQ(file_write_at(to, 9, "y", 1), 0);
    fill_disk_after(-1);
    EXPECT_EQ(file_write_at(to, 9, "y", 1), 1);
    file_close(from);
    file_close(to);
}

TEST_F(FileFaults, PathsCanBeDenied) {
    const std::string name = write("a", "x");
    std::filesystem::create_directory(path("sub"));
    const auto can_open = [&](FileAccess access) {
        const FileHandle file = file_open(name.c_str(), access);
        return file != NO_FILE && file_close(file);
    };
    deny_path(name.c_str(), DENY_WRITE);
    EXPECT_TRUE(can_open(FileAccess::READ));
    EXPECT_FALSE(can_open(FileAccess::READ_WRITE));
    EXPECT_EQ(last_file_error(), FileError::ACCESS_DENIED);
    deny_path("a", DENY_READ);
    EXPECT_FALSE(can_open(FileAccess::READ));

    deny_path(path("sub").c_str(), DENY_ENTRIES);
    EXPECT_EQ(file_create(path("sub/x").c_str(), FileCreate::NEW), NO_FILE);
    EXPECT_EQ(make_folder(path("sub/x").c_str()), 0);
    EXPECT_EQ(rename_file(name.c_str(), path("sub/x").c_str()), 0);
    EXPECT_EQ(rename_file(name.c_str(), path("b").c_str()), 1);
}

// Runs `replace` in a child that a fault ends, and looks at what it leaves.
TEST_F(FileFaults, ProcessEndsBeforeHalfwayAndAfterACall) {
    struct Case {
        int n;
        ExitPoint point;
        const char* work;
        const char* a;
    };
    const Case cases[] = {
        {1, ExitPoint::BEFORE, "", "old"},
        {1, ExitPoint::AFTER, "", "old"},
        {2, ExitPoint::BEFORE, "", "old"},
        {2, ExitPoint::HALFWAY, "01234", "old"},
        {2, ExitPoint::AFTER, "0123456789", "old"},
        {5, ExitPoint::BEFORE, "0123456789", "old"},
        {5, ExitPoint::HALFWAY, "0123456789", "old"},
        {5, ExitPoint::AFTER, "", "0123456789"},
    };
    for (const Case& c : cases) {
        write("a", "old");
        std::filesystem::remove(path("work"));
        const pid_t child = fork();
        if (child == 0) {
            exit_at_file_call(c.n, c.point);
            replace("a");
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), FAULT_EXIT_CODE) << c.n;
        EXPECT_EQ(read("work"), c.work) << c.n;
        EXPECT_EQ(read("a"), c.a) << c.n;
    }
}

TEST_F(FileFaults, TextArmsOrIsRefused) {
    EXPECT_EQ(arm_file_faults_from_text("fail write 1 ENOSPC work"), 1);
    EXPECT_EQ(replace("a"), 0);
    EXPECT_EQ(last_file_error(), FileError::DISK_FULL);
    std::filesystem::remove(path("work"));
    reset_file_faults();
    EXPECT_EQ(arm_file_faults_from_text("full 4 1; deny entries sub"), 1);
    EXPECT_EQ(make_folder(path("sub/x").c_str()), 0);
    EXPECT_EQ(replace("a"), 0);
    std::filesystem::remove(path("work"));
    EXPECT_EQ(replace("a"), 1);

    for (const char* good : {"fail any 2 EIO", "fail folder-flush 1 EIO x 3", "full 0", "full 10 2",
                             "exit-before 7", "exit-halfway 1", " exit-after  2 "}) {
        EXPECT_EQ(arm_file_faults_from_text(good), 1) << good;
        reset_file_faults();
    }
    for (const char* bad :
         {"", "fail", "fail write 0 EIO", "fail write EIO", "fail wrote 1 EIO", "fail write 1 EBAD",
          "fail write 1 EIO x y", "full", "full -1", "full 1 0", "full 1 2 3", "deny", "deny see /x",
          "deny read", "exit-before", "exit-before 0", "exit-before 1 2", "stop 1", "full 0; nonsense"}) {
        EXPECT_EQ(arm_file_faults_from_text(bad), 0) << bad;
        EXPECT_EQ(replace("a"), 1) << bad << ": and nothing is armed";
    }
}

}  // namespace
}  // namespace hexlane::platform
