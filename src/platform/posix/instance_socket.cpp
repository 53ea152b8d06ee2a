// instance_socket.cpp: the local socket by which a second start finds the running program.
// Its name is a hash of the home's path in a folder that only this user can enter, so whoever can reach it is
// this user or root; the peer's user is checked all the same.

#include "platform/posix/instance_socket.h"

#include "platform/posix/instance_server.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int RETRY_MS = 20;
constexpr int WAITING_PEERS = 8;
constexpr std::size_t WORD_SIZE = 16;  // longest word, LF and NUL included
constexpr const char* ACCEPTED = "accepted\n";
constexpr const char* DONE = "done\n";

struct RequestWord {
    const char* word;
    InstanceRequest request;
};
constexpr RequestWord REQUEST_WORDS[] = {
    {"open\n", InstanceRequest::OPEN},
    {"raise\n", InstanceRequest::RAISE},
};

sockaddr_un address;  // of the home claimed last; its path is empty before
char lock_path[sizeof address.sun_path + 8];
int listening = -1;      // the owner's socket
ino_t socket_inode = 0;  // so that only a socket of our own is taken away
void (*handler)(InstanceRequest) = nullptr;
bool handling = false;  // a request is being served

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

// Connects before `deadline`, waiting while the owner's queue of peers is full. Gives 1, 0 when there is no
// owner, -1 when it is too busy.
int reach_owner(int peer, Clock::time_point deadline) {
    while (!connect_to_owner(peer)) {
        if (errno != EAGAIN && errno != EINTR) {
            return 0;
        }
        if (Clock::now() >= deadline) {
            return -1;
        }
        poll(nullptr, 0, RETRY_MS);
    }
    return 1;
}

Handover talk_to_owner(int peer, const char* word) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(INSTANCE_WAIT_MS);
    const int reached = reach_owner(peer, deadline);
    if (reached != 1) {
        return reached == 0 ? Handover::REFUSED : Handover::HUNG;
    }
    char answer[WORD_SIZE];
    if (!is_same_user(peer) || !say(peer, word)) {
        return Handover::REFUSED;
    }
    const Hearing heard = hear(peer, answer, &deadline);
    if (heard == Hearing::TIMEOUT) {
        return Handover::HUNG;
    }
    if (heard != Hearing::WORD || std::strcmp(answer, ACCEPTED) != 0) {
        return Handover::REFUSED;
    }
    // Now questions are put to the person over there; the owner's end closes the socket and so ends this
    // wait.
    return hear(peer, answer, nullptr) == Hearing::WORD && std::strcmp(answer, DONE) == 0 ? Handover::DONE
                                                                                          : Handover::REFUSED;
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
}

Handover ask_instance_owner(const char* word) {
    const int peer = address.sun_path[0] != '\0' ? new_socket() : -1;
    if (peer < 0) {
        return Handover::REFUSED;
    }
    const Handover result = talk_to_owner(peer, word);
    close(peer);
    return result;
}

// ---- The owner's side ----------------------------------------------------------------------------------

void set_instance_handler(void (*new_handler)(InstanceRequest request)) {
    handler = new_handler;
}

int instance_socket() {
    return listening;
}

namespace {

// The request that a peer makes, nullptr when it makes none in time.
const RequestWord* hear_request(int peer) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(INSTANCE_WAIT_MS);
    char word[WORD_SIZE];
    if (!is_same_user(peer) || hear(peer, word, &deadline) != Hearing::WORD) {
        return nullptr;
    }
    for (const RequestWord& entry : REQUEST_WORDS) {
        if (std::strcmp(entry.word, word) == 0) {
            return &entry;
        }
    }
    return nullptr;
}

// While the questions of one request are on the screen another file can't be taken in: that peer is sent
// away. Raising the window works at any time.
void serve_peer(int peer) {
    const RequestWord* entry = hear_request(peer);
    if (entry == nullptr || handler == nullptr || (handling && entry->request == InstanceRequest::OPEN)) {
        return;
    }
    if (!say(peer, ACCEPTED)) {
        return;
    }
    const bool outer = handling;
    handling = true;
    handler(entry->request);
    handling = outer;
    say(peer, DONE);
}

}  // namespace

void serve_instance() {
    const int peer = listening >= 0 ? accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK) : -1;
    if (peer >= 0) {
        serve_peer(peer);
        close(peer);
    }
}

}  // namespace hexlane::platform
