// boxes.cpp: message boxes as text on standard error. Nobody is asked: the answer is always the default
// button, and it is printed behind the question.

#include "platform/console/console.h"
#include "platform/desktop.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>

namespace hexlane::platform {

namespace {

// Boxes break their lines for the eye; a console gets one line for each paragraph.
void print_paragraphs(std::string_view text) {
    bool blank = true;  // nothing of this line is printed yet, or a blank stands there
    for (std::size_t i = 0; i < text.size(); i++) {
        const bool paragraph = text[i] == '\n' && i + 1 < text.size() && text[i + 1] == '\n';
        if (paragraph) {
            std::fputs("\n  ", stderr);
            blank = true;
            i++;
        } else if (text[i] != '\n' && text[i] != ' ') {
            std::fputc(text[i], stderr);
            blank = false;
        } else if (!blank) {
            std::fputc(' ', stderr);
            blank = true;
        }
    }
}

}  // namespace

bool console_is_terminal() {
    return isatty(STDERR_FILENO) != 0;
}

int message_box(const char* text, const char* title, BoxIcon icon, const char* buttons) {
    if (before_box != nullptr)
        before_box();
    std::fprintf(stderr, "%s: ", title);
    print_paragraphs(text);
    const std::string_view labels = buttons;
    if (icon == BoxIcon::QUESTION)
        std::fprintf(stderr, " %.*s.", static_cast<int>(labels.find('|')), buttons);
    std::fputc('\n', stderr);
    return 0;
}

}  // namespace hexlane::platform
