#include "shell/view_controls.h"

#include "platform/text.h"

#include <charconv>
#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

// Of a UTF-8 text.
bool begins_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

}  // namespace

int64_t serve_answers(WindowHandle view, uint32_t message, int64_t first, int64_t second,
                      void (*fill)(ViewHandle), void (*take)(ViewHandle)) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        fill(view);
        return 1;
    }
    if (message == WM_COMMAND && low_word(first) == OK_BUTTON) {
        take(view);
        view_end(view, 1);
        return 1;
    }
    return view_default(view, message, first, second);
}

void put_text(ViewHandle view, int id, const char* text) {
    view_choose_field(view, id);
    view_set_text(view, text);
}

void tick_radio(ViewHandle view, int first_id, int index) {
    view_check(view, first_id + index, true);
}

int ticked_radio(ViewHandle view, int first_id, int count) {
    for (int index = 0; index < count; index++) {
        if (view_checked(view, first_id + index))
            return index;
    }
    return 0;
}

void enable_controls(ViewHandle view, int first_id, int count, bool enabled) {
    for (int index = 0; index < count; index++)
        view_enable_control(view, first_id + index, enabled);
}

void put_number(ViewHandle view, int id, int number, int blank) {
    char text[16] = "";
    if (number != blank)
        format_text(text, sizeof text, "%d", number);
    put_text(view, id, text);
}

int take_number(ViewHandle view, int id, int blank) {
    char text[16];
    view_get_text(view, id, text, sizeof text);
    const char* first = text + std::strspn(text, " ");
    int number = blank;
    std::from_chars(first, text + std::strlen(text), number);
    return number;
}

void shorten_path(char* shown, std::size_t size, const char* path, std::size_t whole, std::size_t end) {
    std::size_t characters = 0;
    for (const char* at = path; *at != '\0'; at++)
        characters += begins_character(*at) ? 1 : 0;
    if (characters <= whole) {
        copy_text(shown, size, path);
        return;
    }
    for (std::size_t skipped = characters - end; *path != '\0'; path++) {
        if (begins_character(*path) && skipped-- == 0)
            break;
    }
    format_text(shown, size, "..%s", path);
}

}  // namespace hexlane
