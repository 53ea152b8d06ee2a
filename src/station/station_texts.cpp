// station_texts.cpp: the table behind show_dnc_box, in the order of DncBox.

#include "station/station_texts.h"

#include "platform/serial.h"
#include "platform/text.h"
#include "shell/boxes.h"

#include <cstddef>
#include <iterator>

namespace hexlane {

using platform::BoxIcon;
using platform::BUTTONS_OK;
using platform::BUTTONS_YES_NO;

namespace {

constexpr BoxText DNC_BOXES[] = {
    {"Port communications are active.\n Do you want to disconnect?", "Communications", BoxIcon::QUESTION,
     BUTTONS_YES_NO},
    // "confict": so spelled by the system itself.
    {" Connection failed.\n Check Communication Settings \n or Port confict.%s", "Communications Error",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Failed to create event for thread!", "TTY Error!", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"End of Block Delay is not allowed if \nEnd of Block is set to No Conversion.\n\nEOB Delay was set back to 0.",
     "Communications", BoxIcon::INFORMATION, BUTTONS_OK},
    {"File is open in the editor.\nDo you want to close File?", "File Conflict", BoxIcon::STOP,
     BUTTONS_YES_NO},
    {"You cannot send an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"You cannot receive an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"You cannot communicate with an active file", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"Current file may have no data or may not exist .\n Select another file.", "Communications Error",
     BoxIcon::STOP, BUTTONS_OK},
    {"Current file has data.\n Do you want to overwrite?", "Communications Error", BoxIcon::QUESTION,
     BUTTONS_YES_NO},
    {"Do you want to close\ncommunications on this port?", "File Conflict", BoxIcon::STOP, BUTTONS_YES_NO},
    {"Port is active.  Terminate activity?", "Communications", BoxIcon::QUESTION, BUTTONS_YES_NO},
    {"Unable to execute Terminal Mode", "Parlock Error", BoxIcon::STOP, BUTTONS_OK},
    // "confict": so spelled by the system itself.
    {"Connection failed.\n Check Communication Settings \n or Port confict.%s", "Communications Error",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s has a character that the name of a machine cannot hold.", "Communications Parameter Settings",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The machines could not be saved: %s.\n\nThe file is as it was.", "Communications", BoxIcon::STOP,
     BUTTONS_OK},
    {"The file is too large to be sent: 2,147,483,647 bytes are the most.", "Communications Error",
     BoxIcon::STOP, BUTTONS_OK},
    {"The file has been changed by another program: the chosen row is no longer in it.", "Communications",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"%s could not be made: %s.", "Communications Error", BoxIcon::STOP, BUTTONS_OK},
    {"The rows of %s could not be shown to the end: %s.", "Communications", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The receipt could not be written to transfers.log: %s.\n\nTransfers go on without it.",
     "Communications", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The file of the machine settings could not be read: %s.\n\nIt is left as it is. What the machines have here does not come from it: look at them before a transfer.",
     "Communications", BoxIcon::STOP, BUTTONS_OK},
    {"The file of the machine settings was gone. It has been made anew, and all machines have their default settings.",
     "Communications", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The file of the machine settings could not be made: %s.\n\nWhat is set here is lost at the end of the program, unless a Save succeeds.",
     "Communications", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"The file of the machine settings is incomplete.\n\nWhat it has counts; what it lacks has the default: look at the machines before a transfer. Save makes the file complete.",
     "Communications", BoxIcon::EXCLAMATION, BUTTONS_OK},
    {"Another program has changed the machine settings since they were read here.\n\nKeep Mine writes the settings of this program over them. Take Theirs reads them, and drops what was changed here.",
     "Communications", BoxIcon::EXCLAMATION, "Keep Mine|Take Theirs|Cancel"},
    {"%s was being received when the program ended: it may not be complete.", "Communications",
     BoxIcon::EXCLAMATION, BUTTONS_OK},
};
static_assert(std::size(DNC_BOXES) == static_cast<std::size_t>(DncBox::COUNT));

}  // namespace

int show_dnc_box(DncBox box, const char* first, const char* second) {
    return show_box(DNC_BOXES[static_cast<int>(box)], first, second);
}

namespace {

void show_failed_port(DncBox box) {
    char reason[400] = "";
    const char* text = platform::line_problem_text();
    if (text[0] != '\0')
        platform::format_text(reason, sizeof reason, "\n\n%s", text);
    show_dnc_box(box, reason);
}

}  // namespace

void show_connection_failed() {
    show_failed_port(DncBox::CONNECTION_FAILED);
}

void show_receive_connection_failed() {
    show_failed_port(DncBox::RECEIVE_CONNECTION_FAILED);
}

}  // namespace hexlane
