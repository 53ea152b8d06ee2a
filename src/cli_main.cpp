// cli_main.cpp: hexlane-cli, the serial station without a desktop: machine sets, sending, receiving, ports.

#include "cli/cli.h"
#include "shell/directories.h"

#include <algorithm>
#include <cstdio>

namespace hexlane {
namespace {

struct Command {
    const char* name;
    const char* summary;
    const char* const* help;
    int (*run)(const Words& words);
};

constexpr Command COMMANDS[] = {
    {"send", "sends an NC program to a machine", &SEND_HELP, run_send},
    {"receive", "receives an NC program from a machine", &RECEIVE_HELP, run_receive},
    {"machines", "lists, shows, sets, exports and imports machine sets", &MACHINES_HELP, run_machines},
    {"ports", "shows the serial devices and who holds them", &PORTS_HELP, run_ports},
    {"compare", "compares two NC programs row by row", &COMPARE_HELP, run_compare_command},
    {"print", "prints an NC program into a PDF file", &PRINT_HELP, run_print_command},
};

void print_help() {
    std::printf("hexlane-cli: the serial station of the Hexlane NC editor without a desktop.\n\nUse\n"
                "    hexlane-cli COMMAND [ARGUMENT]...\n    hexlane-cli COMMAND --help\n"
                "    hexlane-cli --version\n\nCommands\n");
    for (const Command& command : COMMANDS)
        std::printf("    %-10s%s\n", command.name, command.summary);
    std::printf(
        "\nIt works with the machine sets of the desktop program (COMMPARM.INI in the program's folder:\n"
        "$HEXLANE_HOME, or the current folder when it holds ZOLT and only you may write there, or hexlane in "
        "the\n"
        "XDG data folder).\n"
        "COM1 to COM4 mean what HEXLANE_COM1 to HEXLANE_COM4 say, or the file `ports` in that folder,\n"
        "or /dev/ttyS0 to /dev/ttyS3.\n");
}

// The output may be a full disk or a pipe that nobody reads any more.
int flushed(int code) {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        return code == EXIT_COMPLETE ? refuse(EXIT_CANNOT, "cannot write to standard output") : code;
    return code;
}

int run_words(const Words& words) {
    if (words.empty() || words[0] == "--help") {
        print_help();
        return words.empty() ? EXIT_BAD_USE : EXIT_COMPLETE;
    }
    if (words[0] == "--version") {
        std::printf("hexlane-cli %s\n", HEXLANE_VERSION);
        return EXIT_COMPLETE;
    }
    for (const Command& command : COMMANDS) {
        if (words[0] != command.name)
            continue;
        const auto options_end = std::find(words.begin() + 1, words.end(), "--");  // only files follow it
        if (std::find(words.begin() + 1, options_end, "--help") != options_end) {
            std::fputs(*command.help, stdout);
            return EXIT_COMPLETE;
        }
        const int code = command.run({words.begin() + 1, words.end()});
        if (directories.temp_prefix[0] != '\0')
            cleanup_temp_files();
        return code;
    }
    return refuse_use("what is '" + words[0] + "'?");
}

}  // namespace
}  // namespace hexlane

int main(int count, char** arguments) {
    return hexlane::flushed(hexlane::run_words({arguments + 1, arguments + count}));
}
