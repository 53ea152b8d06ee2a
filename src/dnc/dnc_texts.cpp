// dnc_texts.cpp: the table behind show_dnc_box, in the order of DncBox.

#include "dnc/dnc_texts.h"

#include "frame/boxes.h"
#include "platform/serial.h"
#include "platform/text.h"

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO;

namespace {

constexpr BoxText DNC_BOXES[] = {
    {"Port communications are active.\n Do you want to disconnect?", "Communications", BoxIcon::QUESTION,
     BUTTONS_YES_NO},
    {"File Transmission Complete.", "Communications", BoxIcon::INFORMATION, BUTTONS_OK},
    {"File Transmission Terminated.", "Communications", BoxIcon::INFORMATION, BUTTONS_OK},
    {" Connection failed.\n Check Communication Settings \n or Port confict.%s", "Communications Error",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Failed to create event for thread!", "TTY Error!", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"File Transmission Terminated.\n\n%s has gone: the adapter was unplugged or the line was hung up.",
     "Communications", BoxIcon::STOP, BUTTONS_OK},
    {"File Transmission Terminated.\n\n%s was changed or removed by another program while it was being sent. "
     "What the "
     "machine has is not the whole program.",
     "Communications", BoxIcon::STOP, BUTTONS_OK},
    {"File Transmission Terminated.\n\n%s could not be read. What the machine has is not the whole program.",
     "Communications", BoxIcon::STOP, BUTTONS_OK},
    {"File Transmission Terminated.\n\nReceived data could not be written to %s: %s. What came before is in "
     "the file.",
     "Communications", BoxIcon::STOP, BUTTONS_OK},
};

}  // namespace

int show_dnc_box(DncBox box, const char* first, const char* second) {
    return show_box(DNC_BOXES[static_cast<int>(box)], first, second);
}

void show_connection_failed() {
    char reason[400] = "";
    const char* text = platform::line_problem_text();
    if (text[0] != '\0')
        platform::format_text(reason, sizeof reason, "\n\n%s", text);
    show_dnc_box(DncBox::CONNECTION_FAILED, reason);
}

}  // namespace hexlane
