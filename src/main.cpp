// main.cpp: the desktop program: its command line, and the back ends that it runs on.

#include <cstdio>
#include <cstring>

#include "frame/program.h"
#include "platform/qt/application.h"

namespace {

constexpr int START_FAILED = 1;
constexpr int BAD_USAGE = 2;

constexpr char USAGE[] = "usage: hexlane [FILE]\n";
constexpr char HELP[] = "\n"
                        "Opens the NC program FILE in the editor, or an empty window.\n"
                        "\n"
                        "  --help     show this text\n"
                        "  --version  show the version\n"
                        "  --         what follows is a file name, even if it begins with '-'\n";

bool is_word(const char* argument, const char* word) {
    return std::strcmp(argument, word) == 0;
}

int refuse(const char* what, const char* argument) {
    std::fprintf(stderr, "hexlane: %s '%s'\n%s", what, argument, USAGE);
    return BAD_USAGE;
}

}  // namespace

int main(int argc, char** argv) {
    const char* file = nullptr;
    bool only_files = false;
    for (int i = 1; i < argc; i++) {
        const char* argument = argv[i];
        if (!only_files && is_word(argument, "--help")) {
            std::printf("%s%s", USAGE, HELP);
            return 0;
        }
        if (!only_files && is_word(argument, "--version")) {
            std::printf("hexlane %s\n", HEXLANE_VERSION);
            return 0;
        }
        if (!only_files && is_word(argument, "--")) {
            only_files = true;
        } else if (!only_files && argument[0] == '-' && argument[1] != '\0') {
            return refuse("unknown option", argument);
        } else if (file != nullptr) {
            return refuse("only one file can be opened; the second one is", argument);
        } else {
            file = argument;
        }
    }
    if (!hexlane::platform::start_desktop(argv[0])) {
        return START_FAILED;
    }
    const int code = hexlane::program_main(file);
    hexlane::platform::end_desktop();
    return code;
}
