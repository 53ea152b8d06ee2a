// instance_socket.cpp: the local socket by which a second start finds the running program.
// Its name is a hash of the home's path in a folder that only this user can enter, so whoever can reach it is
// this user or root; the peer's user is checked all the same.

#include "platform/posix/instance_socket.h"

#include "platform/posix/instance_server.h"
#include "platform/process.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace hexlane::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int RETRY_MS = 20;
constexpr int WAITING_PEERS = 8;
constexpr std::size_t WORD_SIZE = 16;  // longest word, LF and NUL included
constexpr const char* ACCEPTED = "accepted\n";
constexpr const char* DONE = "done\n";

constexpr const char* RAISE = "raise\n";
constexpr const char* OPEN = "open ";  // the length of the path follows, LF, and the path

// A file that a second start has handed over. That start waits at `peer` until the file has been taken in.
struct WaitingFile {
    std::string path;
    int peer;
};

sockaddr_un address;  // of the home claimed last; its path is empty before
char lock_path[sizeof address.sun_path + 8];
int listening = -1;      // the owner's socket
ino_t socket_inode = 0;  // so that only a socket of our own is taken away
void (*handler)(InstanceRequest) = nullptr;
std::deque<WaitingFile> waiting_files;
int peer_in_service = -1;  // of the file that was taken last

// ---- The place of the socket ---------------------------------------------------------------------------

// A folder of this user that nobody else can enter.
bool is_private_folder(const char* path) {
    struct stat entry;
    return lstat(path, &entry) == 0 && S_ISDIR(entry.st_mode) && entry.st_uid == geteuid() &&
           (entry.st_mode & 077) == 0;
}

// FNV-1a, 64 bits: a published hash that needs no library.
uint64_t hash_of(const char* text) {
    uint64_t hash = 0xCBF29CE484222325;
    for (; *text != '\0'; text++) {
        hash = (hash ^ static_cast<unsigned char>(*text)) * 0x100000001B3;
    }
    return hash;
}

bool place_in(const char* folder, uint64_t hash) {
    address = {};
    address.sun_family = AF_UNIX;
    return is_private_folder(folder) &&
           format_text(address.sun_path, sizeof address.sun_path, "%s/hexlane-%016llx", folder,
                       static_cast<unsigned long long>(hash)) &&
           format_text(lock_path, sizeof lock_path, "%s.lock", address.sun_path);
}

// Fills address and lock_path for `home`. The same folder under another name is the same home.
bool choose_place(const char* home) {
    char* real_home = realpath(home, nullptr);
    const uint64_t hash = hash_of(real_home != nullptr ? real_home : home);
    std::free(real_home);

    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime != nullptr && runtime[0] == '/' && place_in(runtime, hash)) {
        return true;
    }
    char folder[64];
    format_text(folder, sizeof folder, "/tmp/hexlane-%u", static_cast<unsigned>(geteuid()));
    mkdir(folder, 0700);  // it may be there already; what it is shows in place_in
    return place_in(folder, hash);
}

// ---- Words ---------------------------------------------------------------------------------------------

bool is_same_user(int peer) {
    ucred user;
    socklen_t size = sizeof user;
    return getsockopt(peer, SOL_SOCKET, SO_PEERCRED, &user, &size) == 0 && user.uid == geteuid();
}

int milliseconds_until(Clock::time_point moment) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(moment - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

bool say(int peer, const char* word) {
    const std::size_t length = std::strlen(word);
    return send(peer, word, length, MSG_NOSIGNAL) == static_cast<ssize_t>(length);
}

enum class Hearing { WORD, TIMEOUT, CLOSED };

// Takes one word, LF included, into word[WORD_SIZE], until `deadline` (nullptr: without limit). CLOSED also
// when more comes than a word can have. Byte by byte, since the next word may stand right behind it.
Hearing hear(int peer, char* word, const Clock::time_point* deadline) {
    std::size_t length = 0;
    while (length + 1 < WORD_SIZE) {
        pollfd waiting = {peer, POLLIN, 0};
        const int ready = poll(&waiting, 1, deadline != nullptr ? milliseconds_until(*deadline) : -1);
        if (ready == 0) {
            return Hearing::TIMEOUT;
        }
        const ssize_t got = ready > 0 ? recv(peer, word + length, 1, 0) : -1;
        if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN)) {
            return Hearing::CLOSED;
        }
        if (got == 1 && word[length++] == '\n') {
            word[length] = '\0';
            return Hearing::WORD;
        }
    }
    return Hearing::CLOSED;
}

int new_socket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

bool connect_to_owner(int peer) {
    return connect(peer, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// ---- Claiming ------------------------------------------------------------------------------------------

// Keeps other starts out while the socket is looked at and taken. Gives the lock's file, -1 when it is not to
// be had in time.
int take_lock() {
    const int file = open(lock_path, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    const auto deadline = Clock::now() + std::chrono::milliseconds(INSTANCE_WAIT_MS);
    while (file >= 0 && flock(file, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline) {
            close(file);
            return -1;
        }
        poll(nullptr, 0, RETRY_MS);
    }
    return file;
}

bool bind_socket(int file) {
    return bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

// Whether somebody listens behind the socket's name. A full queue of peers tells of one too.
bool owner_listens() {
    const int peer = new_socket();
    const bool listens = peer >= 0 && (connect_to_owner(peer) || errno == EAGAIN);
    if (peer >= 0) {
        close(peer);
    }
    return listens;
}

// Under the lock: 1, 0 or -1 as claim_instance.
int take_name() {
    const int file = new_socket();
    if (file < 0) {
        return -1;
    }
    bool bound = bind_socket(file);
    if (!bound && errno == EADDRINUSE) {
        if (owner_listens()) {
            close(file);
            return 0;
        }
        unlink(address.sun_path);  // left behind by a run that did not end by itself
        bound = bind_socket(file);
    }
    struct stat entry;
    if (!bound || listen(file, WAITING_PEERS) != 0 || lstat(address.sun_path, &entry) != 0) {
        close(file);
        return -1;
    }
    listening = file;
    socket_inode = entry.st_ino;
    return 1;
}

// ---- The peer's side -----------------------------------------------------------------------------------

// Connects, waiting while the owner's queue of peers is full, until `deadline` (nullptr: without limit).
// Gives 1, 0 when there is no owner, -1 when it is too busy.
int reach_owner(int peer, const Clock::time_point* deadline) {
    while (!connect_to_owner(peer)) {
        if (errno != EAGAIN && errno != EINTR) {
            return 0;
        }
        if (deadline != nullptr && Clock::now() >= *deadline) {
            return -1;
        }
        poll(nullptr, 0, RETRY_MS);
    }
    return 1;
}

Handover answer_of(Hearing heard, const char* answer, const char* wanted) {
    if (heard == Hearing::TIMEOUT) {
        return Handover::HUNG;
    }
    return heard == Hearing::WORD && std::strcmp(answer, wanted) == 0 ? Handover::DONE : Handover::REFUSED;
}

// Says `request` and waits until the owner accepts it. Patient: it waits for as long as the owner lives, and
// tells the user once that it does.
Handover put_request(int peer, const std::string& request, bool patient) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(INSTANCE_WAIT_MS);
    int reached = reach_owner(peer, &deadline);
    bool told = false;
    const auto tell = [&] {
        if (!std::exchange(told, true)) {
            warn_on_terminal("the running program is busy; it opens the file when it is free");
        }
    };
    if (reached < 0 && patient) {
        tell();
        reached = reach_owner(peer, nullptr);
    }
    if (reached != 1) {
        return reached == 0 ? Handover::REFUSED : Handover::HUNG;
    }
    char answer[WORD_SIZE];
    if (!is_same_user(peer) || !say(peer, request.c_str())) {
        return Handover::REFUSED;
    }
    Hearing heard = hear(peer, answer, &deadline);
    if (heard == Hearing::TIMEOUT && patient) {
        tell();
        heard = hear(peer, answer, nullptr);
    }
    return answer_of(heard, answer, ACCEPTED);
}

Handover ask_owner(const std::string& request, bool patient) {
    const int peer = address.sun_path[0] != '\0' ? new_socket() : -1;
    if (peer < 0) {
        return Handover::REFUSED;
    }
    Handover result = put_request(peer, request, patient);
    if (result == Handover::DONE) {
        // Now questions are put to the person over there; the owner's end closes the socket and so ends this
        // wait.
        char answer[WORD_SIZE];
        const Hearing heard = hear(peer, answer, nullptr);
        result = answer_of(heard, answer, DONE);
    }
    close(peer);
    return result;
}

// Who still waits looks for another owner, or becomes it.
void dismiss_waiting_peers() {
    for (const WaitingFile& file : waiting_files) {
        close(file.peer);
    }
    waiting_files.clear();
    if (peer_in_service >= 0) {
        close(std::exchange(peer_in_service, -1));
    }
}

}  // namespace

int claim_instance_socket(const char* home) {
    release_instance_socket();
    if (!choose_place(home)) {
        address.sun_path[0] = '\0';
        return -1;
    }
    const int lock = take_lock();
    if (lock < 0) {
        return -1;
    }
    const int claimed = take_name();
    close(lock);
    return claimed;
}

void release_instance_socket() {
    if (listening < 0) {
        return;
    }
    close(listening);
    listening = -1;
    const int lock = take_lock();
    struct stat entry;
    if (lstat(address.sun_path, &entry) == 0 && entry.st_ino == socket_inode) {
        unlink(address.sun_path);
    }
    if (lock >= 0) {
        close(lock);
    }
    dismiss_waiting_peers();
}

Handover hand_file_to_owner(const char* path) {
    return ask_owner(OPEN + std::to_string(std::strlen(path)) + "\n" + path, true);
}

Handover raise_owner() {
    return ask_owner(RAISE, false);
}

// ---- The owner's side ----------------------------------------------------------------------------------

void set_instance_handler(void (*new_handler)(InstanceRequest request)) {
    handler = new_handler;
}

int instance_socket() {
    return listening;
}

namespace {

// Takes `length` bytes before `deadline`. A path has no NUL.
bool hear_path(int peer, std::size_t length, const Clock::time_point& deadline, std::string* path) {
    while (path->size() < length) {
        char bytes[PATH_SIZE];
        pollfd waiting = {peer, POLLIN, 0};
        const int ready = poll(&waiting, 1, milliseconds_until(deadline));
        const ssize_t got = ready > 0 ? recv(peer, bytes, length - path->size(), 0) : 0;
        if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN)) {
            return false;
        }
        path->append(bytes, got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    return path->find('\0') == std::string::npos;
}

// The length behind OPEN, 0 when the word is not that or the path would not fit.
std::size_t length_in(const char* word) {
    const std::size_t front = std::strlen(OPEN);
    std::size_t length = 0;
    if (std::strncmp(word, OPEN, front) != 0) {
        return 0;
    }
    const char* at = word + front;
    for (; *at >= '0' && *at <= '9'; at++) {
        length = length * 10 + static_cast<std::size_t>(*at - '0');
    }
    return *at == '\n' && length < PATH_SIZE ? length : 0;
}

// What a peer wants, in time. Gives 1; an empty path asks for the window to be raised.
bool hear_request(int peer, std::string* path) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(INSTANCE_WAIT_MS);
    char word[WORD_SIZE];
    if (!is_same_user(peer) || hear(peer, word, &deadline) != Hearing::WORD) {
        return false;
    }
    const std::size_t length = length_in(word);
    return length > 0 ? hear_path(peer, length, deadline, path) : std::strcmp(word, RAISE) == 0;
}

// A peer that asks for nothing more than the window may have left by now.
void serve_raise(int peer) {
    say(peer, ACCEPTED);
    handler(InstanceRequest::RAISE);
    say(peer, DONE);
    close(peer);
}

// A file waits in the queue until the program is free to take it. The window comes to the front for that,
// since it may be a question there that keeps it from being so.
void serve_open(int peer, std::string path) {
    if (!say(peer, ACCEPTED)) {
        close(peer);
        return;
    }
    waiting_files.push_back({std::move(path), peer});
    handler(InstanceRequest::OPEN);
    if (!waiting_files.empty()) {
        handler(InstanceRequest::RAISE);
    }
}

}  // namespace

int take_waiting_file(char* path, std::size_t size) {
    if (peer_in_service >= 0) {
        say(peer_in_service, DONE);
        close(std::exchange(peer_in_service, -1));
    }
    if (waiting_files.empty()) {
        return 0;
    }
    const WaitingFile file = waiting_files.front();
    waiting_files.pop_front();
    peer_in_service = file.peer;
    return copy_text(path, size, file.path.c_str());
}

void serve_instance() {
    const int peer = listening >= 0 ? accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK) : -1;
    if (peer < 0) {
        return;
    }
    std::string path;
    if (handler == nullptr || !hear_request(peer, &path)) {
        close(peer);
    } else if (path.empty()) {
        serve_raise(peer);
    } else {
        serve_open(peer, std::move(path));
    }
}

}  // namespace hexlane::platform
