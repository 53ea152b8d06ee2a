// terminal_main.cpp: hexlane-terminal, a window on the serial port of the current machine.

#include "dnc/machine_table.h"
#include "platform/desktop.h"
#include "platform/files.h"
#include "platform/qt/application.h"
#include "shell/directories.h"
#include "terminal/terminal_window.h"

#include <QApplication>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace {

constexpr int START_FAILED = 1;
constexpr int BAD_USAGE = 2;

constexpr char USAGE[] = "usage: hexlane-terminal [--machine N]\n";
constexpr char HELP[] =
    "\n"
    "Shows what a machine sends and sends what is typed, with the line settings and the code of a machine\n"
    "of the program's machine sets: the current one, or number N (1 to 16).\n"
    "\n"
    "  --machine N  the machine\n"
    "  --help       show this text\n"
    "  --version    show the version\n";

bool is_word(const char* argument, const char* word) {
    return std::strcmp(argument, word) == 0;
}

// The machine's index, -1 for a number that is none.
int machine_number(const char* text) {
    int number = 0;
    const char* end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, number);
    return error == std::errc() && stop == end && number >= 1 && number <= hexlane::MACHINE_COUNT ? number - 1
                                                                                                  : -1;
}

// Without the machines nobody knows the line's settings.
void tell_unread() {
    using namespace hexlane::platform;
    char text[2 * PATH_SIZE];
    format_text(text, sizeof text, "%s cannot be read: %s.", hexlane::directories.parameter_file_path,
                file_error_text(last_file_error()));
    std::fprintf(stderr, "hexlane-terminal: %s\n", text);
    message_box(text, "Terminal", BoxIcon::STOP, BUTTONS_OK);
}

int show_terminal(char* program, int machine) {
    if (!hexlane::platform::start_desktop(program))
        return START_FAILED;
    if (!hexlane::find_home()) {
        std::fprintf(stderr, "hexlane-terminal: there is no folder for the program's files\n");
        return START_FAILED;
    }
    hexlane::create_directories();
    hexlane::set_machine_defaults();
    if (hexlane::load_machine_table() == hexlane::TableState::NOT_READ) {
        tell_unread();
        return START_FAILED;
    }
    int code = 0;
    {
        hexlane::TerminalWindow window(machine >= 0 ? machine : hexlane::slot_machine[0]);
        QApplication::setQuitOnLastWindowClosed(true);
        window.show();
        code = QApplication::exec();
    }
    hexlane::platform::end_desktop();
    return code;
}

}  // namespace

int main(int count, char** arguments) {
    int machine = -1;
    for (int i = 1; i < count; i++) {
        if (is_word(arguments[i], "--help")) {
            std::printf("%s%s", USAGE, HELP);
            return 0;
        }
        if (is_word(arguments[i], "--version")) {
            std::printf("hexlane-terminal %s\n", HEXLANE_VERSION);
            return 0;
        }
        if (is_word(arguments[i], "--machine") && i + 1 < count) {
            machine = machine_number(arguments[++i]);
            if (machine >= 0)
                continue;
        }
        std::fprintf(stderr, "hexlane-terminal: what is '%s'?\n%s", arguments[i], USAGE);
        return BAD_USAGE;
    }
    return show_terminal(arguments[0], machine);
}
