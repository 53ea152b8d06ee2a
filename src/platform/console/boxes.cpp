// boxes.cpp: message boxes as text on standard error, in the form of the program's other messages: its name,
// then the reason. A box's title stands on no console. Nobody is asked: the answer is always the default
// button, and it is printed behind the question.

#include "platform/console/console.h"
#include "platform/desktop.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <unistd.h>

namespace hexlane::platform {

namespace {

constexpr const char* PROGRAM = "hexlane-cli: ";
constexpr std::string_view OPENING = "Error: ";  // some boxes begin with it; the name has said as much
constexpr std::string_view BLANKS = " \n";

// Boxes break their lines for the eye; a console gets one line for each paragraph.
void print_paragraphs(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    if (text.starts_with(OPENING)) {
        text.remove_prefix(OPENING.size());
    }
    const char* between = "";  // owed ahead of the next word
    while (!text.empty()) {
        const std::size_t word = std::min(text.find_first_of(BLANKS), text.size());
        if (word > 0) {
            std::fprintf(stderr, "%s%.*s", between, static_cast<int>(word), text.data());
            text.remove_prefix(word);
        }
        const std::size_t gap = std::min(text.find_first_not_of(BLANKS), text.size());
        between = text.substr(0, gap).find("\n\n") != std::string_view::npos ? "\n  " : " ";
        text.remove_prefix(gap);
    }
}

}  // namespace

bool console_is_terminal() {
    return isatty(STDERR_FILENO) != 0;
}

int message_box(const char* text, const char*, BoxIcon icon, const char* buttons) {
    if (before_box != nullptr)
        before_box();
    std::fputs(PROGRAM, stderr);
    print_paragraphs(text);
    const std::string_view labels = buttons;
    if (icon == BoxIcon::QUESTION)
        std::fprintf(stderr, " %.*s.", static_cast<int>(labels.find('|')), buttons);
    std::fputc('\n', stderr);
    return 0;
}

}  // namespace hexlane::platform
