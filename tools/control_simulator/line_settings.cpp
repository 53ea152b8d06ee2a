// line_settings.cpp: form and speed of a serial line. By itself, since the kernel's terminal structure with
// free rates and that of the C library cannot stand in one file.

#include "line.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <cerrno>
#include <cstring>
#include <sys/ioctl.h>

namespace simulator {

namespace {

termios2 before;  // of the device that set_raw has changed first
int changed_fd = -1;

tcflag_t form_bits(const Options& options) {
    tcflag_t bits = CREAD | CLOCAL | (options.data_bits == 7 ? CS7 : CS8);
    bits |= options.stop_bits == 2 ? CSTOPB : 0;
    bits |= options.parity != Parity::NONE ? PARENB : 0;
    bits |= options.parity == Parity::ODD ? PARODD : 0;
    bits |= options.handshake == Handshake::HARDWARE ? CRTSCTS : 0;
    return bits;
}

}  // namespace

std::string set_raw(int fd, const Options& options) {
    termios2 settings;
    if (ioctl(fd, TCGETS2, &settings) != 0)
        return std::string("is no serial line: ") + std::strerror(errno);
    if (changed_fd < 0) {
        before = settings;
        changed_fd = fd;
    }
    settings.c_iflag = options.parity != Parity::NONE ? INPCK : 0;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    settings.c_cflag = form_bits(options);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    const auto rate = static_cast<speed_t>(options.rate == NOT_GIVEN ? 9600 : options.rate);
    settings.c_cflag |= BOTHER | BOTHER << IBSHIFT;
    settings.c_ispeed = settings.c_ospeed = rate;
    if (ioctl(fd, TCSETS2, &settings) != 0)
        return std::string("does not take the settings: ") + std::strerror(errno);
    if (options.device.empty())
        return "";
    termios2 now;
    if (ioctl(fd, TCGETS2, &now) != 0 || (now.c_cflag & (CSIZE | PARENB | PARODD | CSTOPB)) !=
                                             (settings.c_cflag & (CSIZE | PARENB | PARODD | CSTOPB)))
        return "does not take the data bits, parity or stop bits";
    if (now.c_ospeed < rate - rate / 33 || now.c_ospeed > rate + rate / 33)
        return "does not take the rate: it runs at " + std::to_string(now.c_ospeed);
    return "";
}

void restore_settings(int fd) {
    if (fd == changed_fd)
        ioctl(fd, TCSETSF2, &before);
    changed_fd = -1;
}

}  // namespace simulator
