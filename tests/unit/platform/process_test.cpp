// Where the program lives, absolute paths, and programs that are started.

#include "platform/clock.h"
#include "platform/posix/detached.h"
#include "platform/process.h"
#include "temp_folder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace hexlane::platform {
namespace {

class Process : public TempFolder {
protected:
    Process() : old_folder(std::filesystem::current_path()) {
        for (const char* name : NAMES) {
            const char* value = std::getenv(name);
            old_values.emplace_back(value != nullptr ? value : "");
            unsetenv(name);
        }
        std::filesystem::current_path(folder);
    }
    ~Process() override {
        std::filesystem::current_path(old_folder);
        for (std::size_t i = 0; i < old_values.size(); i++) {
            old_values[i].empty() ? unsetenv(NAMES[i]) : setenv(NAMES[i], old_values[i].c_str(), 1);
        }
    }
    std::string launch() {
        char found[PATH_SIZE];
        return launch_folder(found, sizeof found) ? found : "none";
    }

    static constexpr const char* NAMES[] = {"HEXLANE_HOME", "XDG_DATA_HOME", "HOME"};
    std::filesystem::path old_folder;
    std::vector<std::string> old_values;
};

TEST_F(Process, LaunchFolderIsFoundInTheToldOrder) {
    setenv("HOME", folder.c_str(), 1);
    EXPECT_EQ(launch(), path(".local/share/hexlane"));
    EXPECT_TRUE(std::filesystem::is_directory(path(".local/share/hexlane/ZOLT")));
    setenv("XDG_DATA_HOME", "not/absolute", 1);
    EXPECT_EQ(launch(), path(".local/share/hexlane"));
    setenv("XDG_DATA_HOME", path("data/").c_str(), 1);
    EXPECT_EQ(launch(), path("data/hexlane"));
    EXPECT_EQ(launch(), path("data/hexlane"));  // again, now that it is there

    std::filesystem::create_directory(path("ZOLT"));  // a portable installation
    EXPECT_EQ(launch(), folder);

    setenv("HEXLANE_HOME", path("none").c_str(), 1);
    EXPECT_EQ(launch(), "none");
    std::filesystem::create_directory(path("home"));
    setenv("HEXLANE_HOME", "./home/", 1);
    EXPECT_EQ(launch(), path("home"));
}

// Whoever may write in a portable folder decides what the program of another user does there.
TEST_F(Process, AFolderInWhichOthersMayWriteIsNotTheProgramsOwn) {
    setenv("XDG_DATA_HOME", path("data").c_str(), 1);
    std::filesystem::create_directories(path("shop/ZOLT"));
    std::filesystem::create_directories(path("elsewhere"));
    std::filesystem::create_directories(path("linked"));
    std::filesystem::create_directory_symlink(path("elsewhere"), path("linked/ZOLT"));
    const bool root = geteuid() == 0;
    const struct {
        const char* current;
        const char* changed;
        mode_t mode;
        uid_t owner;  // 0 for ourselves
        gid_t group;
        const char* doubt;  // empty: the current folder is taken
    } CASES[] = {
        {"shop", "shop", 0755, 0, 0, ""},
        {"shop", "shop", 0777, 0, 0, "shop: everybody may write there"},
        {"shop", "shop", 01777, 0, 0, "shop: everybody may write there"},
        {"shop", "shop/ZOLT", 0757, 0, 0, "shop/ZOLT: everybody may write there"},
        {"shop", "shop", 0775, 0, 65534, "shop: others of its group may write there"},
        {"shop", "shop", 0755, 0, 65534, ""},
        {"shop", "shop/ZOLT", 0755, 65534, 0, "shop/ZOLT: it belongs to another user"},
        {"linked", "elsewhere", 0777, 0, 0, "linked/ZOLT: everybody may write there"},
        {"linked", "elsewhere", 0755, 0, 0, ""},
    };
    for (const auto& c : CASES) {
        if (!root && (c.owner != 0 || c.group != 0)) {
            continue;  // only root can give a file away
        }
        const std::string changed = path(c.changed);
        if (root) {
            ASSERT_EQ(chown(changed.c_str(), c.owner, c.group), 0);
        }
        ASSERT_EQ(chmod(changed.c_str(), c.mode), 0);
        std::filesystem::current_path(path(c.current));
        char doubt[2 * PATH_SIZE];
        const bool doubted = launch_doubt(doubt, sizeof doubt) == 1;
        EXPECT_EQ(launch(), *c.doubt == '\0' ? path(c.current) : path("data/hexlane")) << c.changed << c.mode;
        EXPECT_EQ(doubted, *c.doubt != '\0') << doubt;
        EXPECT_TRUE(std::string(doubt).ends_with(c.doubt)) << doubt;
        if (doubted) {  // named by the user it is taken all the same, and told
            setenv("HEXLANE_HOME", ".", 1);
            EXPECT_EQ(launch(), path(c.current));
            EXPECT_EQ(launch_doubt(doubt, sizeof doubt), 1) << c.changed << c.mode;
            unsetenv("HEXLANE_HOME");
        }
        if (root) {
            ASSERT_EQ(chown(changed.c_str(), 0, 0), 0);
        }
        ASSERT_EQ(chmod(changed.c_str(), 0755), 0);
    }
}

TEST_F(Process, PathsBecomeAbsoluteAsTheSystemReadsThem) {
    std::filesystem::create_directories(path("far/shelf/deep"));
    std::filesystem::create_directory_symlink("far/shelf", path("link"));
    std::filesystem::create_directory_symlink(path("link/deep"), path("far/second"));
    std::filesystem::create_directory_symlink("missing", path("dangling"));
    struct Case {
        const char* given;
        std::string absolute;
    };
    const Case cases[] = {{"a.nc", path("a.nc")},
                          {"./a/../b//c/", path("b/c")},
                          {"", folder},
                          {"/", "/"},
                          {"/..", "/"},
                          {"/a/./b/../c", "/a/c"},
                          {"..a", path("..a")},
                          {"/a/...", "/a/..."},
                          {"/../../x", "/x"},
                          {"link/a.nc", path("link/a.nc")},
                          {"link/../a.nc", path("far/a.nc")},
                          {"link/deep/../a.nc", path("link/a.nc")},
                          {"far/second/../../a.nc", path("far/a.nc")},
                          {"dangling/../a.nc", path("a.nc")}};
    char absolute[PATH_SIZE];
    for (const Case& c : cases) {
        EXPECT_EQ(absolute_path(c.given, absolute, sizeof absolute), 1) << c.given;
        EXPECT_EQ(absolute, c.absolute) << c.given;
    }
    const std::string longest = "/" + std::string(PATH_SIZE - 2, 'x');
    EXPECT_EQ(absolute_path(longest.c_str(), absolute, sizeof absolute), 1);
    EXPECT_EQ(absolute_path((longest + "x").c_str(), absolute, sizeof absolute), 0);
    EXPECT_EQ(absolute_path(longest.c_str(), absolute, sizeof absolute - 1), 0);
}

TEST_F(Process, EnvironmentValuesFitOrAreEmpty) {
    char value[4];
    setenv("HEXLANE_HOME", "abc", 1);
    EXPECT_EQ(environment_value("HEXLANE_HOME", value, sizeof value), 1);
    EXPECT_STREQ(value, "abc");
    setenv("HEXLANE_HOME", "abcd", 1);
    EXPECT_EQ(environment_value("HEXLANE_HOME", value, sizeof value), 0);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(environment_value("HOME", value, sizeof value), 0);
}

TEST_F(Process, StartedProgramRunsOnItsOwn) {
    setenv("HEXLANE_HOME", "/somewhere/else", 1);
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(path("go").c_str(), 0600), 0);
    const int pipe_end = open(path("fifo").c_str(), O_RDWR);
    const int go = open(path("go").c_str(), O_RDWR);
    const std::string script =
        "read line < " + path("go") + "; echo \"$HEXLANE_HOME $1 $$ $(cat)\" > " + path("fifo");
    const char* arguments[] = {"sh", "-c", script.c_str(), "name", "one two", nullptr};
    ASSERT_EQ(start_detached(arguments, "/the/home"), 1);
    ASSERT_EQ(::write(go, "\n", 1), 1);  // it has not ended, and we are back already
    char answer[200] = {};
    pollfd waiting = {pipe_end, POLLIN, 0};
    ASSERT_EQ(poll(&waiting, 1, 10'000), 1);
    ASSERT_GT(::read(pipe_end, answer, sizeof answer - 1), 0);
    EXPECT_EQ(std::string(answer).rfind("/the/home one two ", 0), 0U) << answer;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child of ours is left";
    close(pipe_end);
    close(go);

    const char* missing[] = {"/no/such/program", nullptr};
    EXPECT_EQ(start_detached(missing, "/the/home"), 0);
}

TEST(Chance, RandomBytesDiffer) {
    unsigned char first[16] = {};
    unsigned char second[16] = {};
    random_bytes(first, sizeof first);
    random_bytes(second, sizeof second);
    EXPECT_FALSE(std::equal(first, first + 16, second));
}

}  // namespace
}  // namespace hexlane::platform
