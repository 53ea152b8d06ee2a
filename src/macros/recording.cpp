// recording.cpp: the dialog that starts a recording, the recording itself, and its end.

#include "macros/recording.h"

#include "macros/macro_list.h"
#include "macros/macro_table.h"
#include "macros/macro_texts.h"
#include "platform/files.h"
#include "platform/text.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t NAME_FIELD = 101;
constexpr int16_t RECORD_BUTTON = 1;
constexpr int16_t DELETE_BUTTON = 3;

constexpr InputRule NAME_RULE = {.limit = MACRO_NAME_SIZE - 1, .capitals = true, .characters = true};

constexpr ControlSpec RECORD_CONTROLS[] = {
    {100, ControlKind::TEXT, "Macro &Name:", 0, 0, 1, 1, 0, 0, nullptr},
    {NAME_FIELD, ControlKind::FIELD, "", 0, 1, 1, 1, MACRO_NAME_SIZE, 0, &NAME_RULE},
    {MACRO_LIST, ControlKind::LIST, "", 1, 0, 3, 2, 0, 0, nullptr},
    {RECORD_BUTTON, ControlKind::BUTTON, "&Record", 0, 2, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 1, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
    {DELETE_BUTTON, ControlKind::BUTTON, "&Delete Macro", 2, 2, 1, 1, 0, 0, nullptr},
};
constexpr ViewSpec RECORD_VIEW = {"IDD_RECORD_MACRO", "Record Macro", 0, RECORD_CONTROLS, 6};

void copy_picked_name(ViewHandle view) {
    const int32_t picked = view_selection(view, MACRO_LIST);
    if (picked < 0 || picked >= macros.count)
        return;
    char text[MACRO_TEXT_SIZE];
    bytes_to_text(text, sizeof text, macros.table[picked].name);
    put_text(view, NAME_FIELD, text);
}

void start_recording(ViewHandle view, int32_t entry) {
    macros.active = entry;
    macros.event_count = 0;
    macros.recording = true;
    view_end(view, 1);
}

// A macro of a new name gets an entry and a file name now, and its file at the end of the recording.
void record_new_macro(ViewHandle view, const char* name) {
    const int32_t entry = macros.count;
    if (entry == MAX_MACROS || !new_macro_file(entry)) {
        show_macro_box(MacroBox::NO_ROOM);
        return;
    }
    std::memset(macros.table[entry].name, 0, MACRO_NAME_SIZE);
    copy_text(macros.table[entry].name, MACRO_NAME_SIZE, name);
    ++macros.count;
    start_recording(view, entry);
}

void press_record(ViewHandle view) {
    char text[MACRO_TEXT_SIZE];
    char name[MACRO_NAME_SIZE];
    view_get_text(view, NAME_FIELD, text, sizeof text);
    const int fits = text_to_bytes(name, sizeof name, text);
    const bool missing = name[std::strspn(name, " ")] == '\0';
    if (missing || !fits) {
        show_macro_box(missing ? MacroBox::NAME_MISSING : MacroBox::NAME_NOT_IN_TABLE, text);
        view_focus_control(view, NAME_FIELD);
        return;
    }
    const int32_t entry = find_macro(name);
    if (entry < 0) {
        record_new_macro(view, name);
    } else if (show_macro_box(MacroBox::ASK_OVERWRITE, text) == YES_BUTTON) {
        start_recording(view, entry);
        show_status(STATUS_MACRO_RECORD_ON);
    }
}

int64_t record_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG) {
        fill_macro_list(window, -1);
        return 1;
    }
    if (message == WM_COMMAND) {
        switch (low_word(first)) {
        case MACRO_LIST:
            copy_picked_name(window);
            return 0;
        case RECORD_BUTTON:
            press_record(window);
            return 0;
        case DELETE_BUTTON:
            if (ask_to_delete_macro(window) && macros.count == 0)
                view_end(window, 0);
            return 0;
        default:
            break;
        }
    }
    return view_default(window, message, first, second);
}

}  // namespace

void record_event(uint32_t message, int64_t first, int64_t second) {
    if (!macros.recording)
        return;
    put_macro_event(&macros.block, macros.event_count,
                    {message, static_cast<uint16_t>(first & 0xFFFF), static_cast<uint32_t>(second)});
    if (++macros.event_count > MACRO_MOST_EVENTS)
        macros.event_count = 0;
}

void command_record_macro() {
    show_view(&RECORD_VIEW, record_proc);
    update_menus();
}

void command_end_record() {
    if (!macros.recording || macros.count == 0)
        return;
    const int written = write_macro(macros.active);
    const FileError reason = last_file_error();
    char path[PATH_SIZE];
    macro_file_path(macros.active, path);
    macros.recording = false;
    if (!written)
        scan_macros();  // a new macro that has no file is none
    update_menus();
    if (!written)
        show_macro_box(MacroBox::NOT_STORED, path, file_error_text(reason));
}

}  // namespace hexlane
