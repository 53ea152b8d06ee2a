// serial_tty.cpp: opening and setting tty devices by Linux' own calls (ioctl_tty(2), termios(3)).

#include "platform/posix/serial_tty.h"

#include "platform/posix/serial_drain.h"
#include "platform/posix/serial_driver.h"
#include "platform/posix/serial_holder.h"
#include "platform/posix/serial_problem.h"
#include "platform/text.h"

#include <asm/termbits.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr uint32_t RATE_TOLERANCE = 33;  // a 33rd, 3 per cent: beyond it a frame's last bits are misread

bool is_pty(int tty) {
    struct stat entry;
    return fstat(tty, &entry) == 0 && is_pty_device(entry.st_rdev);
}

// Bytes pass as they are. A read gives 0 bytes only when the line has hung up (VMIN 1), and modem status
// lines other than CTS mean nothing (CLOCAL).
void make_raw(termios2* form) {
    form->c_iflag = 0;
    form->c_oflag = 0;
    form->c_lflag = 0;
    form->c_cflag |= CREAD | CLOCAL;
    form->c_cc[VMIN] = 1;
    form->c_cc[VTIME] = 0;
}

void set_rate(termios2* form, uint32_t rate) {
    form->c_cflag &= ~static_cast<tcflag_t>(CBAUD | (CBAUD << IBSHIFT));
    form->c_cflag |= BOTHER | (BOTHER << IBSHIFT);
    form->c_ispeed = rate;
    form->c_ospeed = rate;
}

constexpr tcflag_t FORM_FLAGS = CSIZE | CSTOPB | PARENB | PARODD | CMSPAR;

tcflag_t form_flags(const LineSettings& settings) {
    return (settings.byte_size == 7 ? CS7 : CS8) | (settings.stop_bits == STOP_BITS_ONE ? 0u : CSTOPB) |
           (settings.parity == PARITY_NONE ? 0u : PARENB) | (settings.parity == PARITY_ODD ? PARODD : 0u);
}

// Parity is made and checked by the line, but a byte with a parity error passes like any other (no INPCK).
void set_handshake(termios2* form, const LineSettings& settings) {
    form->c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
    if (settings.software_handshake && settings.xon_char != 0) {
        form->c_iflag |= IXON | IXOFF;
        form->c_cc[VSTART] = settings.xon_char;
        form->c_cc[VSTOP] = settings.xoff_char;
    }
    form->c_cflag &= ~CRTSCTS;
    if (settings.hardware_handshake) {
        form->c_cflag |= CRTSCTS;
    }
}

bool rates_match(uint32_t wanted, uint32_t real) {
    return wanted != 0 && (wanted > real ? wanted - real : real - wanted) <= wanted / RATE_TOLERANCE;
}

int refuse_rate(const char* device, uint32_t wanted, uint32_t real) {
    char text[PATH_SIZE + 100];
    format_text(text, sizeof text, "%s can't run at %u bits a second (its nearest rate is %u).", device,
                wanted, real);
    return note_line_problem(text);
}

int refuse_form(const char* device) {
    char text[PATH_SIZE + 100];
    format_text(text, sizeof text, "%s can't run with these data bits, parity and stop bits.", device);
    return note_line_problem(text);
}

// Keeps others out from now on, and finds who has come before: a program that has the device open without a
// lock would take some of the machine's bytes and leave us the rest. Nothing of the line is changed. 0 with
// errno set.
int claim(int tty, const char* device) {
    int was_exclusive = 0;
    if (flock(tty, LOCK_EX | LOCK_NB) != 0 || ioctl(tty, TIOCGEXCL, &was_exclusive) != 0 ||
        ioctl(tty, TIOCEXCL) != 0) {
        return 0;
    }
    if (!device_has_user(device)) {
        return 1;
    }
    if (!was_exclusive) {
        ioctl(tty, TIOCNXCL);
    }
    errno = EBUSY;
    return 0;
}

// Makes the opened device ours alone, and raw. 0 with errno set.
int take_over(int tty, const char* device) {
    termios2 form;
    if (ioctl(tty, TCGETS2, &form) != 0 || !claim(tty, device)) {
        return 0;
    }
    make_raw(&form);
    if (ioctl(tty, TCSETS2, &form) != 0) {
        return 0;
    }
    flush_tty(tty, false);
    return 1;
}

int tty_queued(int tty) {
    int count = 0;
    return ioctl(tty, TIOCOUTQ, &count) == 0 ? count : 0;
}

int tty_transmitter_empty(int tty) {
    int state = 0;
    if (ioctl(tty, TIOCSERGETLSR, &state) != 0) {
        return drain_tty(tty);
    }
    return (state & TIOCSER_TEMT) != 0 ? 1 : 0;
}

int tty_clear_to_send(int tty) {
    int lines = 0;
    if (ioctl(tty, TIOCMGET, &lines) != 0) {
        return -1;
    }
    return (lines & TIOCM_CTS) != 0 ? 1 : 0;
}

int tty_error_counts(int tty, LineErrors* errors) {
    serial_icounter_struct counts{};
    if (ioctl(tty, TIOCGICOUNT, &counts) != 0) {
        return 0;
    }
    *errors = {static_cast<uint32_t>(counts.parity), static_cast<uint32_t>(counts.frame),
               static_cast<uint32_t>(counts.overrun) + static_cast<uint32_t>(counts.buf_overrun)};
    return 1;
}

}  // namespace

const LineDriver TTY_DRIVER = {write, tty_queued, tty_transmitter_empty, tty_clear_to_send, tty_error_counts};
LineDriver line_driver = TTY_DRIVER;

int open_tty(const char* device) {
    // The kind is looked at first: opening a FIFO or some other device could act on it.
    struct stat entry;
    if (stat(device, &entry) != 0) {
        note_device_error(device, errno);
        return -1;
    }
    if (!S_ISCHR(entry.st_mode)) {
        note_device_error(device, ENOTTY);
        return -1;
    }
    const int tty = open(device, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (tty < 0) {
        note_device_error(device, errno);
        return -1;
    }
    if (!take_over(tty, device)) {
        const int error = errno;
        close(tty);  // the search for the holder must not find our own lock
        note_device_error(device, error);
        return -1;
    }
    return tty;
}

void close_tty(int tty, bool output_too) {
    flush_tty(tty, output_too);
    // The mark stays with the device as long as anybody has it open, as the machine's side of a pty may.
    ioctl(tty, TIOCNXCL);
    close(tty);
}

int configure_tty(int tty, const char* device, LineSettings* settings) {
    termios2 form;
    if (ioctl(tty, TCGETS2, &form) != 0) {
        return note_device_error(device, errno);
    }
    const tcflag_t wanted = form_flags(*settings);
    make_raw(&form);
    set_rate(&form, settings->baud_rate);
    set_handshake(&form, *settings);
    form.c_cflag = (form.c_cflag & ~FORM_FLAGS) | wanted;
    termios2 real;
    if (ioctl(tty, TCSETS2, &form) != 0 || ioctl(tty, TCGETS2, &real) != 0) {
        return errno == EINVAL ? refuse_form(device) : note_device_error(device, errno);
    }
    if (!rates_match(settings->baud_rate, real.c_ospeed)) {
        return refuse_rate(device, settings->baud_rate, real.c_ospeed);
    }
    if ((real.c_cflag & FORM_FLAGS) != wanted && !is_pty(tty)) {
        return refuse_form(device);
    }
    settings->baud_rate = real.c_ospeed;
    return 1;
}

void flush_tty(int tty, bool output_too) {
    ioctl(tty, TCFLSH, output_too ? TCIOFLUSH : TCIFLUSH);
}

void set_tty_dtr(int tty, bool on) {
    const int lines = TIOCM_DTR;
    ioctl(tty, on ? TIOCMBIS : TIOCMBIC, &lines);
}

}  // namespace hexlane::platform
