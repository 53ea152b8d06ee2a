#include "shell/status_line.h"

#include <cstring>

#include "platform/text.h"
#include "platform/views.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t MESSAGE_FIELD = 101;
constexpr int16_t FILE_FIELD = 102;
constexpr int16_t MARK_FIELD = 103;
constexpr int16_t COLUMN_FIELD = 104;
constexpr int16_t ROW_FIELD = 105;
constexpr int16_t ACTIVITY_ICON = 106;

constexpr ControlSpec STATUS_CONTROLS[] = {
    {MESSAGE_FIELD, ControlKind::TEXT, "", 0, 0, 1, 1, 196, CONTROL_SUNKEN, nullptr},
    {FILE_FIELD, ControlKind::TEXT, "", 0, 1, 1, 1, 141, CONTROL_SUNKEN, nullptr},
    {MARK_FIELD, ControlKind::TEXT, "", 0, 2, 1, 1, 24, CONTROL_SUNKEN, nullptr},
    {ROW_FIELD, ControlKind::TEXT, "", 0, 3, 1, 1, 43, CONTROL_SUNKEN, nullptr},
    {COLUMN_FIELD, ControlKind::TEXT, "", 0, 4, 1, 1, 27, CONTROL_SUNKEN, nullptr},
    {ACTIVITY_ICON, ControlKind::ICON, "COL9", 0, 5, 1, 1, 9, CONTROL_HIDDEN, nullptr},
};

constexpr ViewSpec STATUS_VIEW = {"StatusLine", "", 100, STATUS_CONTROLS, 6};

// By number. A number that nothing shows any more has no text.
constexpr const char* STATUS_TEXTS[] = {
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    "Macro Record On...",
    nullptr,
    "                              ",
    "Loading file...",
    "Renumbering file...",
    "Saving file...",
    "Stripping line numbers...",
    "SCALE function active...",
    "SHIFT function active...",
    "Absolute to Incremental...",
    "Incremental to Absolute...",
    nullptr,
    "Edit Mode...",
    "Searching...",
    "NO FURTHER DIFFERENCES",
};
constexpr int STATUS_COUNT = sizeof STATUS_TEXTS / sizeof STATUS_TEXTS[0];

constexpr const char* BLANK_FILE_NAME = "                                             ";
constexpr std::size_t LONGEST_TITLE = 39;  // characters shown whole
constexpr std::size_t CUT_TITLE = 37;

ViewHandle status_view = NO_WINDOW;

void write_field(int id, const char* text) {
    view_choose_field(status_view, id);
    view_set_text(status_view, text);
}

// A field that moves during a long run, when no message is served.
void write_field_now(int id, const char* text) {
    write_field(id, text);
    view_repaint_control(status_view, id);
}

int64_t status_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG)
        return 1;
    return view_default(window, message, first, second);
}

// Bytes of the first `count` characters of a UTF-8 text.
std::size_t bytes_of_characters(const char* text, std::size_t count) {
    std::size_t at = 0;
    while (text[at] != '\0') {
        const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
        if (begins && count-- == 0)
            break;
        at++;
    }
    return at;
}

}  // namespace

int create_status_line() {
    status_view = view_create_child(child[0].main_window, &STATUS_VIEW, status_proc);
    view_choose_field(status_view, MESSAGE_FIELD);
    return status_view != NO_WINDOW;
}

void show_status(int number) {
    if (number < 0 || number >= STATUS_COUNT || STATUS_TEXTS[number] == nullptr)
        return;
    write_field_now(MESSAGE_FIELD, STATUS_TEXTS[number]);
}

void show_position() {
    if (child[0].current_row < 0)
        child[0].current_row = 0;
    char row[12];
    char column[12];
    format_text(row, sizeof row, "%d", child[0].current_row + 1);
    format_text(column, sizeof column, "%d", child[0].caret_col + 1);
    write_field(MARK_FIELD, child[0].overwrite_mode ? " OVR" : "    ");
    write_field(ROW_FIELD, row);
    write_field(COLUMN_FIELD, column);
    view_choose_field(status_view, MESSAGE_FIELD);
}

void show_row_count(int32_t row) {
    char text[12];
    format_text(text, sizeof text, "%d", row + 1);
    write_field_now(ROW_FIELD, text);
    view_choose_field(status_view, MESSAGE_FIELD);
}

void show_file_name() {
    const char* title = child[0].file_title;
    char text[PATH_SIZE + 2];
    if (title[bytes_of_characters(title, LONGEST_TITLE)] != '\0') {
        copy_text(text, bytes_of_characters(title, CUT_TITLE) + 1, title);
        append_text(text, sizeof text, "..");
        title = text;
    }
    write_field(FILE_FIELD, title[0] == '\0' ? BLANK_FILE_NAME : title);
    view_choose_field(status_view, MESSAGE_FIELD);
}

void show_activity_icon(bool visible) {
    if (visible)
        view_show_control(status_view, ACTIVITY_ICON);
    else
        view_hide_control(status_view, ACTIVITY_ICON);
    view_repaint_control(status_view, ACTIVITY_ICON);
}

}  // namespace hexlane
