// One running program for each home, with real second processes: who owns the socket, what passes on it, and
// peers that are dead, silent, strange or somebody else's.

#include "platform/posix/instance_server.h"
#include "platform/posix/instance_socket.h"
#include "temp_folder.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Only root can start a process of another user; what stands in for it holds for everybody: while users_apart
// is not 0, this process takes itself for another user than the one it runs as.
static uid_t users_apart = 0;
extern "C" uid_t geteuid() noexcept {
    return static_cast<uid_t>(syscall(SYS_geteuid)) + users_apart;
}

namespace hexlane::platform {
namespace {

// A process of its own that runs `act` when it is let go, reports the result, and lives on until it is
// killed. It must be made before the test claims anything itself, since it inherits what is claimed.
class OtherProcess {
public:
    explicit OtherProcess(const std::function<int()>& act) {
        int go_pipe[2];
        int result_pipe[2];
        if (pipe(go_pipe) != 0 || pipe(result_pipe) != 0 || (pid = fork()) < 0) {
            std::abort();
        }
        if (pid == 0) {
            close(go_pipe[1]);
            close(result_pipe[0]);
            char byte = 0;
            if (::read(go_pipe[0], &byte, 1) == 1) {
                const int result = act();
                if (::write(result_pipe[1], &result, sizeof result) == sizeof result) {
                    static_cast<void>(!::read(go_pipe[0], &byte, 1));  // until the test kills us
                }
            }
            _exit(0);
        }
        close(go_pipe[0]);
        close(result_pipe[1]);
        go = go_pipe[1];
        result_file = result_pipe[0];
    }
    OtherProcess(const OtherProcess&) = delete;
    ~OtherProcess() { end(); }

    void let_go() { EXPECT_EQ(::write(go, "x", 1), 1); }

    // What `act` gave, -9 when the process died instead; until then the test serves peers if it is the owner.
    int result() {
        int value = -9;
        for (;;) {
            pollfd files[] = {{result_file, POLLIN, 0}, {instance_socket(), POLLIN, 0}};
            if (poll(files, 2, 20'000) <= 0) {
                ADD_FAILURE() << "nothing happens";
                return value;
            }
            if (files[1].revents != 0) {
                serve_instance();
            }
            if (files[0].revents != 0) {
                static_cast<void>(!::read(result_file, &value, sizeof value));
                return value;
            }
        }
    }
    bool has_result(int wait_ms) {
        pollfd file = {result_file, POLLIN, 0};
        return poll(&file, 1, wait_ms) > 0;
    }
    int run() {
        let_go();
        return result();
    }
    void end() {
        if (pid > 0) {
            kill(pid, SIGKILL);
            close(go);
            close(result_file);
            waitpid(pid, nullptr, 0);
            pid = 0;
        }
    }

private:
    pid_t pid = 0;
    int go = -1;
    int result_file = -1;
};

// What has reached the owner: paths, and "raise".
std::vector<std::string> requests;

void take_files() {
    char path[PATH_SIZE];
    while (take_waiting_file(path, sizeof path)) {
        requests.emplace_back(path);
    }
}

void serve(InstanceRequest request) {
    if (request == InstanceRequest::OPEN) {
        take_files();
    } else {
        requests.emplace_back("raise");
    }
}

void serve_until(std::size_t count) {
    while (requests.size() < count) {
        pollfd waiting = {instance_socket(), POLLIN, 0};
        ASSERT_EQ(poll(&waiting, 1, 20'000), 1);
        serve_instance();
    }
}

class Instance : public TempFolder {
protected:
    Instance() {
        const char* value = std::getenv("XDG_RUNTIME_DIR");
        old_runtime = value != nullptr ? value : "";
        std::filesystem::create_directory(path("run"));
        std::filesystem::permissions(path("run"), std::filesystem::perms::owner_all);
        std::filesystem::create_directory(path("home"));
        setenv("XDG_RUNTIME_DIR", path("run").c_str(), 1);
        requests.clear();
        set_instance_handler(serve);
    }
    ~Instance() override {
        release_instance_socket();
        old_runtime.empty() ? unsetenv("XDG_RUNTIME_DIR") : setenv("XDG_RUNTIME_DIR", old_runtime.c_str(), 1);
    }
    int claim() { return claim_instance_socket(path("home").c_str()); }

    std::string socket_path() {
        for (const auto& entry : std::filesystem::directory_iterator(path("run"))) {
            if (entry.is_socket()) {
                return entry.path();
            }
        }
        return "";
    }
    // Connects by hand, says `words` and gives what the owner answers until it closes.
    std::string talk(const std::string& words, bool hang_up) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        socket_path().copy(address.sun_path, sizeof address.sun_path - 1);
        const int peer = socket(AF_UNIX, SOCK_STREAM, 0);
        if (connect(peer, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            close(peer);
            return "no connection";
        }
        send(peer, words.data(), words.size(), MSG_NOSIGNAL);
        if (hang_up) {
            shutdown(peer, SHUT_WR);
        }
        std::string answer;
        char byte = 0;
        while (recv(peer, &byte, 1, 0) == 1) {
            answer += byte;
        }
        close(peer);
        return answer;
    }

    std::string old_runtime;
};

TEST_F(Instance, SecondStartHandsOverAndWaitsUntilItIsDone) {
    std::filesystem::create_directory_symlink("home", path("link"));  // the same home
    OtherProcess second([&] {
        return claim_instance_socket(path("link").c_str()) == 0 &&
               hand_file_to_owner("/a\n b") == Handover::DONE && raise_owner() == Handover::DONE;
    });
    OtherProcess elsewhere([&] { return claim_instance_socket(folder.c_str()); });
    ASSERT_EQ(claim(), 1);
    EXPECT_EQ(second.run(), 1);
    EXPECT_EQ(requests, (std::vector<std::string>{"/a\n b", "raise"}));
    EXPECT_EQ(elsewhere.run(), 1) << "another home is another program";
}

TEST_F(Instance, ReleaseAndCrashBothMakeWay) {
    OtherProcess crashed([&] { return claim(); });
    OtherProcess third([&] { return claim(); });
    EXPECT_EQ(crashed.run(), 1);
    EXPECT_EQ(claim(), 0);
    crashed.end();
    EXPECT_NE(socket_path(), "") << "the crash leaves its socket behind";
    EXPECT_EQ(raise_owner(), Handover::REFUSED);
    EXPECT_EQ(claim(), 1);
    release_instance_socket();
    EXPECT_EQ(socket_path(), "");
    EXPECT_EQ(third.run(), 1);
}

// Whoever looks at the socket and takes it keeps others out meanwhile.
TEST_F(Instance, StartsWaitForEachOther) {
    OtherProcess first([&] { return claim(); });
    OtherProcess second([&] { return claim(); });
    EXPECT_EQ(first.run(), 1);
    const std::string lock = socket_path() + ".lock";
    first.end();
    const int file = open(lock.c_str(), O_RDWR);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    second.let_go();
    EXPECT_FALSE(second.has_result(50));
    close(file);
    EXPECT_EQ(second.result(), 1);
}

// All find the same stale socket at once.
TEST_F(Instance, OneOfManyStartsWins) {
    OtherProcess crashed([&] { return claim(); });
    std::vector<std::unique_ptr<OtherProcess>> starts;
    for (int i = 0; i < 8; i++) {
        starts.push_back(std::make_unique<OtherProcess>([&] { return claim(); }));
    }
    EXPECT_EQ(crashed.run(), 1);
    crashed.end();
    for (const auto& start : starts) {
        start->let_go();
    }
    int owners = 0;
    for (const auto& start : starts) {
        const int claimed = start->result();
        EXPECT_TRUE(claimed == 0 || claimed == 1) << claimed;
        owners += claimed;
    }
    EXPECT_EQ(owners, 1);
}

TEST_F(Instance, NonsenseIsAnsweredByClosing) {
    struct Case {
        std::string words;
        bool hang_up;
        std::string answer;
    };
    const Case cases[] = {{"", true, ""},
                          {"open", true, ""},
                          {"\n", false, ""},
                          {"OPEN\n", false, ""},
                          {"openly\n", false, ""},
                          {std::string("open\0\n", 6), false, ""},
                          {std::string(500, 'x'), false, ""},
                          {"open\n", true, ""},
                          {"open \n", false, ""},
                          {"open 0\n", false, ""},
                          {"open 260\n" + std::string(260, 'x'), false, ""},
                          {"open 99999999\n", false, ""},
                          {"open 3\n/a", true, ""},
                          {std::string("open 3\n/\0a", 10), false, ""},
                          {"open 2\n/a", true, "accepted\ndone\n"}};
    for (const Case& c : cases) {
        OtherProcess peer([&] { return talk(c.words, c.hang_up) == c.answer; });
        ASSERT_EQ(claim(), 1);
        EXPECT_EQ(peer.run(), 1) << c.words;
        release_instance_socket();
    }
    EXPECT_EQ(requests, std::vector<std::string>{"/a"});
}

TEST_F(Instance, SilentPeersDelayNeitherSideLong) {
    using Clock = std::chrono::steady_clock;
    const auto limit = std::chrono::milliseconds(INSTANCE_WAIT_MS + 1500);
    OtherProcess silent([&] { return talk("ope", false).empty(); });  // never says the rest, never hangs up
    OtherProcess deaf([&] { return claim(); });                       // owns the socket and never serves it

    EXPECT_EQ(deaf.run(), 1);
    EXPECT_EQ(claim(), 0);
    auto start = Clock::now();
    EXPECT_EQ(raise_owner(), Handover::HUNG);
    EXPECT_LT(Clock::now() - start, limit);
    deaf.end();

    ASSERT_EQ(claim(), 1);
    start = Clock::now();
    EXPECT_EQ(silent.run(), 1);
    EXPECT_LT(Clock::now() - start, limit);
    EXPECT_TRUE(requests.empty());
}

// A long run of the program serves nobody for longer than any peer needs to answer. Whoever wants the window
// alone has left then, and gets it all the same.
TEST_F(Instance, AFileWaitsForABusyProgramAndIsLostOnlyWithADeadOne) {
    OtherProcess dead([&] { return claim(); });
    OtherProcess passing([&] { return claim() == 0 && hand_file_to_owner("/lost") == Handover::REFUSED; });
    EXPECT_EQ(dead.run(), 1);
    passing.let_go();
    OtherProcess window([&] { return claim() == 0 ? static_cast<int>(raise_owner()) : -5; });
    EXPECT_FALSE(passing.has_result(INSTANCE_WAIT_MS + 500));
    dead.end();
    EXPECT_EQ(passing.result(), 1);

    OtherProcess file([&] { return claim() == 0 ? static_cast<int>(hand_file_to_owner("/kept")) : -5; });
    ASSERT_EQ(claim(), 1);
    window.let_go();
    file.let_go();
    EXPECT_FALSE(file.has_result(INSTANCE_WAIT_MS + 500));
    EXPECT_TRUE(window.has_result(INSTANCE_WAIT_MS));
    EXPECT_EQ(window.result(), static_cast<int>(Handover::HUNG));
    serve_until(2);
    EXPECT_EQ(file.result(), static_cast<int>(Handover::DONE));
    std::sort(requests.begin(), requests.end());
    EXPECT_EQ(requests, (std::vector<std::string>{"/kept", "raise"}));
}

// While a question is up files wait, in their order, and the window is shown for each. Those that the program
// has not taken when it ends go to the next one.
TEST_F(Instance, FilesWaitForAnOpenQuestion) {
    const auto hand = [&](const char* path) {
        return [this, path] { return claim() == 0 ? static_cast<int>(hand_file_to_owner(path)) : -5; };
    };
    OtherProcess first(hand("/1"));
    OtherProcess second(hand("/2"));
    OtherProcess third(hand("/3"));
    set_instance_handler([](InstanceRequest request) {
        if (request == InstanceRequest::RAISE) {
            requests.emplace_back("raise");
        }
    });
    ASSERT_EQ(claim(), 1);
    const auto wait_for_requests = [](OtherProcess& peer, std::size_t count) {
        peer.let_go();
        serve_until(count);
    };
    wait_for_requests(first, 1);
    wait_for_requests(second, 2);
    char path[PATH_SIZE];
    ASSERT_EQ(take_waiting_file(path, sizeof path), 1);
    EXPECT_STREQ(path, "/1");
    EXPECT_FALSE(first.has_result(0)) << "questions about it may be up";
    wait_for_requests(third, 3);
    ASSERT_EQ(take_waiting_file(path, sizeof path), 1);
    EXPECT_STREQ(path, "/2");
    EXPECT_EQ(first.result(), static_cast<int>(Handover::DONE));
    ASSERT_EQ(take_waiting_file(path, sizeof path), 1);
    EXPECT_STREQ(path, "/3");
    EXPECT_EQ(second.result(), static_cast<int>(Handover::DONE));
    release_instance_socket();
    EXPECT_EQ(third.result(), static_cast<int>(Handover::REFUSED));
    EXPECT_EQ(requests, (std::vector<std::string>{"raise", "raise", "raise"}));
}

TEST_F(Instance, AnOwnerThatDiesAfterAcceptingIsNoticed) {
    OtherProcess owner([&] {
        set_instance_handler([](InstanceRequest) { _exit(1); });
        EXPECT_EQ(claim(), 1);
        write("ready", "");
        for (;;) {
            pollfd waiting = {instance_socket(), POLLIN, 0};
            poll(&waiting, 1, -1);
            serve_instance();
        }
        return 0;
    });
    owner.let_go();
    while (!std::filesystem::exists(path("ready"))) {
        poll(nullptr, 0, 1);
    }
    EXPECT_EQ(claim(), 0);
    EXPECT_EQ(hand_file_to_owner("/a"), Handover::REFUSED);
    EXPECT_EQ(owner.result(), -9);
}

// Another user who got as far as the socket is sent away unheard.
TEST_F(Instance, PeersOfAnotherUserAreRefused) {
    OtherProcess stranger([&] { return socket_path().empty() || talk("open 2\n/a", false) != "" ? 0 : 1; });
    ASSERT_EQ(claim(), 1);
    users_apart = 1;
    EXPECT_EQ(stranger.run(), 1);
    users_apart = 0;
    EXPECT_TRUE(requests.empty());
}

TEST_F(Instance, AFolderOpenToOthersIsNotUsed) {
    const std::string own_folder = "/tmp/hexlane-" + std::to_string(geteuid());
    const auto names = [&] {
        std::vector<std::filesystem::path> all;
        if (std::filesystem::exists(own_folder)) {
            for (const auto& entry : std::filesystem::directory_iterator(own_folder)) {
                all.push_back(entry.path());
            }
        }
        return all;
    };
    const auto before = names();
    std::filesystem::permissions(path("run"),
                                 std::filesystem::perms::owner_all | std::filesystem::perms::group_read);
    EXPECT_EQ(claim(), 1);
    EXPECT_TRUE(std::filesystem::is_empty(path("run")));
    release_instance_socket();
    for (const auto& name : names()) {
        if (std::find(before.begin(), before.end(), name) == before.end()) {
            std::filesystem::remove(name);
        }
    }
}

}  // namespace
}  // namespace hexlane::platform
