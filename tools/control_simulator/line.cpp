#include "line.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace simulator {

namespace {

constexpr int FLAGS = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;

std::string failed(const std::string& what) {
    return what + ": " + std::strerror(errno);
}

// A link of ours or of an earlier run may be replaced, nothing else.
bool may_replace(const std::string& path) {
    struct stat entry;
    if (lstat(path.c_str(), &entry) != 0)
        return errno == ENOENT;
    char target[64];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length > 9 && std::memcmp(target, "/dev/pts/", 9) == 0;
}

std::string make_link(const std::string& path, Line* line) {
    if (!may_replace(path))
        return path + " is there already and is no link to a pty";
    const std::string passing = path + "." + std::to_string(getpid());
    if (symlink(line->name.c_str(), passing.c_str()) != 0)
        return failed("cannot make the link " + path);
    if (rename(passing.c_str(), path.c_str()) != 0) {
        const std::string reason = failed("cannot make the link " + path);
        unlink(passing.c_str());
        return reason;
    }
    line->link = path;
    return "";
}

std::string open_pty(const Options& options, Line* line) {
    line->fd = posix_openpt(FLAGS);
    if (line->fd < 0)
        return failed("cannot make a pty");
    char name[64];
    if (grantpt(line->fd) != 0 || unlockpt(line->fd) != 0 || ptsname_r(line->fd, name, sizeof name) != 0)
        return failed("cannot make a pty");
    line->name = name;
    line->other_side = open(name, FLAGS);
    if (line->other_side < 0)
        return failed(std::string("cannot open ") + name);
    const std::string reason = set_raw(line->other_side, options);
    if (!reason.empty())
        return line->name + " " + reason;
    line->watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (line->watch < 0 ||
        inotify_add_watch(line->watch, name, IN_OPEN | IN_CLOSE_WRITE | IN_CLOSE_NOWRITE) < 0)
        return failed(std::string("cannot watch ") + name);
    return options.link.empty() ? "" : make_link(options.link, line);
}

std::string open_device(const Options& options, Line* line) {
    line->name = options.device;
    line->fd = open(options.device.c_str(), FLAGS);
    if (line->fd < 0)
        return failed("cannot open " + options.device);
    if (ioctl(line->fd, TIOCEXCL) != 0)
        return failed("cannot have " + options.device + " for itself");
    const std::string reason = set_raw(line->fd, options);
    if (!reason.empty())
        return options.device + " " + reason;
    tcflush(line->fd, TCIOFLUSH);
    return "";
}

void close_one(int* fd) {
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

}  // namespace

std::string open_line(const Options& options, Line* line) {
    return options.device.empty() ? open_pty(options, line) : open_device(options, line);
}

void close_line(Line* line) {
    if (line->fd >= 0) {
        restore_settings(line->fd);
        ioctl(line->fd, TIOCNXCL);  // a pty lives on, and would be nobody's any more but root's
    }
    char target[64];
    const ssize_t length = line->link.empty() ? -1 : readlink(line->link.c_str(), target, sizeof target);
    if (length >= 0 && line->name == std::string_view(target, static_cast<std::size_t>(length)))
        unlink(line->link.c_str());
    line->link.clear();
    close_one(&line->watch);
    close_one(&line->other_side);
    close_one(&line->fd);
}

bool read_watch(Line* line) {
    alignas(inotify_event) char events[4096];
    bool opened = false;
    ssize_t length = 0;
    while ((length = read(line->watch, events, sizeof events)) > 0) {
        for (ssize_t at = 0; at < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(events + at);
            if ((event->mask & IN_OPEN) != 0) {
                line->openings++;
                opened = true;
            } else if (line->openings > 0) {
                line->openings--;
            }
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
    }
    return opened;
}

}  // namespace simulator
