// Files and paths: what is refused, what is never followed or replaced, and what a name means.

#include "platform/files.h"
#include "platform/posix/file_faults.h"
#include "temp_folder.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {
namespace {

class Files : public TempFolder {
protected:
    ~Files() override { reset_file_faults(); }

    FileError open_error(const std::string& name, FileAccess access) {
        set_last_file_error(FileError::NONE);
        const FileHandle file = file_open(name.c_str(), access);
        if (file != NO_FILE) {
            file_close(file);
        }
        EXPECT_EQ(file == NO_FILE, last_file_error() != FileError::NONE) << name;
        return last_file_error();
    }
    mode_t mode_of(const std::string& name) {
        struct stat entry = {};
        stat(path(name).c_str(), &entry);
        return entry.st_mode & 07777;
    }
};

// Would hang here if opening waited for the other end of the FIFO.
TEST_F(Files, OnlyRegularFilesAreOpened) {
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(symlink("fifo", path("link").c_str()), 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path("socket").c_str(), sizeof address.sun_path - 1);
    const int socket_file = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socket_file, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const std::string regular = write("file", "x");

    record_file_calls();
    for (FileAccess access : {FileAccess::READ, FileAccess::READ_WRITE}) {
        for (const std::string& name :
             {path("fifo"), path("link"), path("socket"), folder, std::string("/dev/null")}) {
            EXPECT_EQ(open_error(name, access), FileError::NOT_REGULAR) << name;
        }
        EXPECT_EQ(open_error(regular, access), FileError::NONE);
        EXPECT_EQ(open_error(path("missing"), access), FileError::NOT_FOUND);
        EXPECT_EQ(open_error(regular + "/below", access), FileError::NOT_FOUND);
    }
    EXPECT_EQ(file_call_count(FileCall::OPEN), 2)
        << "opening a device can act on it: only the file may be opened";
    close(socket_file);
    EXPECT_EQ(open_file_count(), 0);
}

TEST_F(Files, LongPathsAreRefusedEverywhere) {
    const std::string dots(PATH_SIZE, '.');
    std::string fits = folder + "/";
    while (fits.size() < PATH_SIZE - 2) {
        fits += "/";
    }
    write("x", "");
    const std::string longest = fits + "x";  // 259 bytes that name a file
    const std::string too_long = fits + "/x";
    EXPECT_EQ(open_error(longest, FileAccess::READ), FileError::NONE);
    EXPECT_EQ(open_error(too_long, FileAccess::READ), FileError::NAME_TOO_LONG);

    const char* name = too_long.c_str();
    char target[PATH_SIZE];
    FileStamp stamp;
    const std::vector<int> results = {file_create(name, FileCreate::NEW) != NO_FILE,
                                      delete_file(name),
                                      make_folder(name),
                                      rename_file(name, "/y"),
                                      rename_file("/y", name),
                                      rename_to_new(name, "/y"),
                                      flush_folder_of(name),
                                      path_stamp(name, &stamp),
                                      follow_links(name, target, sizeof target),
                                      path_kind(name) != PathKind::NONE};
    EXPECT_EQ(results, std::vector<int>(results.size(), 0));
    EXPECT_EQ(last_file_error(), FileError::NAME_TOO_LONG);
}

TEST_F(Files, NewFilesNeverReplaceAndNeverFollowALink) {
    write("victim", "precious");
    ASSERT_EQ(symlink("victim", path("to-victim").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", path("dangling").c_str()), 0);
    for (FileCreate how : {FileCreate::NEW, FileCreate::PRIVATE}) {
        for (const char* name : {"victim", "to-victim", "dangling"}) {
            EXPECT_EQ(file_create(path(name).c_str(), how), NO_FILE) << name;
            EXPECT_EQ(last_file_error(), FileError::EXISTS);
        }
    }
    EXPECT_EQ(read("victim"), "precious");
    EXPECT_FALSE(std::filesystem::exists(path("nowhere")));

    const mode_t mask = umask(0027);
    EXPECT_EQ(file_close(file_create(path("new").c_str(), FileCreate::NEW)), 1);
    umask(0);
    EXPECT_EQ(file_close(file_create(path("private").c_str(), FileCreate::PRIVATE)), 1);
    umask(mask);
    EXPECT_EQ(mode_of("new"), 0640U);
    EXPECT_EQ(mode_of("private"), 0600U);
}

TEST_F(Files, ReadsWritesAndCopiesByPosition) {
    const FileHandle from = file_open(write("from", "0123456789").c_str(), FileAccess::READ);
    char bytes[8] = {};
    EXPECT_EQ(file_read_at(from, 7, bytes, 8), 3);
    EXPECT_STREQ(bytes, "789");
    EXPECT_EQ(file_read_at(from, 10, bytes, 8), 0);
    EXPECT_EQ(file_write_at(from, 0, "x", 1), 0);  // opened for reading

    // In the system, and by hand when the system can't.
    for (int error : {0, EXDEV}) {
        const FileHandle to = file_create(path("to").c_str(), FileCreate::NEW);
        ASSERT_EQ(file_write_at(to, 0, "abcd", 4), 1);
        if (error != 0) {
            fail_file_call(FileCall::COPY, 1, error);
        }
        EXPECT_EQ(file_copy_range(from, 2, to, 3, 5), 5);
        EXPECT_EQ(file_copy_range(from, 8, to, 8, 100), 2);
        EXPECT_EQ(file_copy_range(from, 10, to, 10, 1), 0);
        EXPECT_EQ(file_size(to), 10);
        EXPECT_EQ(file_resize(to, 9), 1);
        EXPECT_EQ(file_close(to), 1);
        EXPECT_EQ(read("to"), "abc234568");
        ASSERT_EQ(delete_file(path("to").c_str()), 1);
    }
    EXPECT_EQ(file_close(from), 1);
    EXPECT_EQ(file_read_at(from, 0, bytes, 1), -1);
    EXPECT_EQ(open_file_count(), 0);
}

// The system takes so much only in several pieces.
TEST_F(Files, LongCopiesAreWhole) {
    constexpr int64_t SIZE = (1 << 26) + 5000;
    const FileHandle from = file_create(path("from").c_str(), FileCreate::NEW);
    const FileHandle to = file_create(path("to").c_str(), FileCreate::NEW);
    ASSERT_EQ(file_resize(from, SIZE), 1);
    ASSERT_EQ(file_write_at(from, SIZE - 4, "tail", 4), 1);
    EXPECT_EQ(file_copy_range(from, 0, to, 0, SIZE), SIZE);
    EXPECT_EQ(file_size(to), SIZE);
    char tail[5] = {};
    EXPECT_EQ(file_read_at(to, SIZE - 4, tail, 5), 4);
    EXPECT_STREQ(tail, "tail");
    file_close(from);
    file_close(to);
}

TEST_F(Files, AdoptedModeIsTheOldOne) {
    const FileHandle like = file_open(write("like", "").c_str(), FileAccess::READ);
    ASSERT_EQ(chmod(path("like").c_str(), 0754), 0);
    const FileHandle file = file_create(path("new").c_str(), FileCreate::PRIVATE);
    fail_file_call(FileCall::MODE, 1, EPERM);  // the owner can't be given
    EXPECT_EQ(file_adopt_mode(file, like), 1);
    EXPECT_EQ(mode_of("new"), 0754U);
    fail_file_call(FileCall::MODE, 2, EPERM);  // the mode can't
    EXPECT_EQ(file_adopt_mode(file, like), 0);
    EXPECT_EQ(last_file_error(), FileError::ACCESS_DENIED);
    file_close(file);
    file_close(like);
}

// The roads that a disk driver may leave: renaming in one step, by a second name, and by looking first.
TEST_F(Files, RenameToNewNeverReplaces) {
    for (int missing = 0; missing <= 2; missing++) {
        const auto arm = [&] {
            reset_file_faults();
            if (missing > 0) {
                fail_file_call(FileCall::RENAME, 1, EINVAL);
            }
            if (missing > 1) {
                fail_file_call(FileCall::RENAME, 2, EPERM);
            }
        };
        write("a", "A");
        write("b", "B");
        arm();
        EXPECT_EQ(rename_to_new(path("a").c_str(), path("b").c_str()), 0) << missing;
        EXPECT_EQ(last_file_error(), FileError::EXISTS);
        EXPECT_EQ(read("a") + read("b"), "AB");
        arm();
        EXPECT_EQ(rename_to_new(path("a").c_str(), path("c").c_str()), 1) << missing;
        EXPECT_EQ(read("c"), "A");
        EXPECT_EQ(path_kind(path("a").c_str()), PathKind::NONE);
        EXPECT_EQ(rename_file(path("c").c_str(), path("b").c_str()), 1);
        EXPECT_EQ(read("b"), "A");
    }
}

TEST_F(Files, SamePathLooksAtTheFileItself) {
    write("a", "");
    write("b", "");
    ASSERT_EQ(mkdir(path("sub").c_str(), 0700), 0);
    ASSERT_EQ(link(path("a").c_str(), path("hard").c_str()), 0);
    ASSERT_EQ(symlink("a", path("soft").c_str()), 0);
    ASSERT_EQ(symlink(".", path("here").c_str()), 0);
    struct Case {
        const char *left, *right;
        int same;
    };
    const Case cases[] = {{"a", "a", 1},        {"a", "hard", 1},       {"a", "soft", 1},
                          {"hard", "soft", 1},  {"a", "here/a", 1},     {"a", "sub/../a", 1},
                          {"a", "b", 0},        {"a", "A", 0},          {"a", "none", 0},
                          {"none", "none", 1},  {"none", "None", 0},    {"none", "here/none", 1},
                          {"none", "other", 0}, {"none", "sub/none", 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(same_path(path(c.left).c_str(), path(c.right).c_str()), c.same) << c.left << " " << c.right;
        EXPECT_EQ(same_path(path(c.right).c_str(), path(c.left).c_str()), c.same) << c.right << " " << c.left;
    }
}

TEST_F(Files, LinksAreFollowedToTheirEnd) {
    write("file", "");
    ASSERT_EQ(mkdir(path("sub").c_str(), 0700), 0);
    const auto make_link = [&](const std::string& text, const char* name) {
        ASSERT_EQ(symlink(text.c_str(), path(name).c_str()), 0);
    };
    make_link("file", "one");
    make_link("../one", "sub/two");
    make_link(path("sub/two"), "three");
    make_link("gone", "dangling");
    make_link("ring-b", "ring-a");
    make_link("ring-a", "ring-b");
    make_link(std::string(PATH_SIZE - 4, 'n'), "long");
    struct Case {
        const char* name;
        std::string target;  // empty: refused
    };
    const Case cases[] = {{"file", path("file")},
                          {"one", path("file")},
                          {"sub/two", path("sub/../file")},
                          {"three", path("sub/../file")},
                          {"dangling", path("gone")},
                          {"missing", path("missing")},
                          {"ring-a", ""},
                          {"long", ""}};
    for (const Case& c : cases) {
        char target[PATH_SIZE];
        EXPECT_EQ(follow_links(path(c.name).c_str(), target, sizeof target), c.target.empty() ? 0 : 1)
            << c.name;
        if (!c.target.empty()) {
            EXPECT_EQ(target, c.target);
        }
    }
    char small[8];
    EXPECT_EQ(follow_links(path("file").c_str(), small, sizeof small), 0);
}

TEST_F(Files, FoldersListInByteOrderAndMayShrinkMeanwhile) {
    for (const char* name : {"xb", "xA", "x\xC3\xA9", "y", "x10", "x9"}) {
        write(name, "");
    }
    struct Visit {
        std::string folder;
        std::vector<std::string> names;
    } seen = {folder, {}};
    const auto visit = [](void* context, const char* name) {
        auto* all = static_cast<Visit*>(context);
        all->names.emplace_back(name);
        EXPECT_EQ(delete_file((all->folder + "/" + name).c_str()), 1);
    };
    EXPECT_EQ(list_folder(folder.c_str(), "x", visit, &seen), 5);
    EXPECT_EQ(seen.names, (std::vector<std::string>{"x10", "x9", "xA", "xb", "x\xC3\xA9"}));
    seen.names.clear();
    EXPECT_EQ(list_folder(folder.c_str(), "", visit, &seen), 1);  // "." and ".." are no entries
    EXPECT_EQ(list_folder(path("none").c_str(), "", visit, &seen), -1);
    EXPECT_EQ(last_file_error(), FileError::NOT_FOUND);
}

TEST_F(Files, StampsTellAChangeAndAReplacement) {
    const std::string name = write("a", "1");
    const FileHandle file = file_open(name.c_str(), FileAccess::READ);
    FileStamp held;
    FileStamp named;
    const auto same = [&] {
        EXPECT_EQ(file_stamp(file, &held) + path_stamp(name.c_str(), &named), 2);
        return held.device == named.device && held.inode == named.inode && held.size == named.size &&
               held.modified_ns == named.modified_ns && held.changed_ns == named.changed_ns;
    };
    EXPECT_TRUE(same());
    const FileStamp before = held;
    write("a", "22");  // in place
    EXPECT_TRUE(same());
    EXPECT_NE(held.size, before.size);
    EXPECT_EQ(held.inode, before.inode);
    write("b", "22");
    ASSERT_EQ(rename_file(path("b").c_str(), name.c_str()), 1);
    EXPECT_FALSE(same());
    file_close(file);
    ASSERT_EQ(delete_file(name.c_str()), 1);
    EXPECT_EQ(path_stamp(name.c_str(), &named), 0);
}

TEST_F(Files, FoldersAreMadeOnceAndFlushed) {
    EXPECT_EQ(make_folder(path("new").c_str()), 1);
    EXPECT_EQ(make_folder(path("new").c_str()), 1);
    write("file", "");
    EXPECT_EQ(make_folder(path("file").c_str()), 0);
    EXPECT_EQ(make_folder(path("no/where").c_str()), 0);
    EXPECT_EQ(flush_folder_of(path("new/x").c_str()), 1);
    EXPECT_EQ(flush_folder_of(path("no/x").c_str()), 0);
    EXPECT_EQ(delete_file(path("new").c_str()), 0);
    EXPECT_EQ(last_file_error(), FileError::NOT_REGULAR);
}

}  // namespace
}  // namespace hexlane::platform
