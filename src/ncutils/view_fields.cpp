#include "ncutils/view_fields.h"

#include <charconv>
#include <cstring>

namespace hexlane {

void fill_field(platform::ViewHandle view, int id, const char* text) {
    platform::view_choose_field(view, id);
    platform::view_set_text(view, text);
}

int32_t field_number(platform::ViewHandle view, int id) {
    char text[12];
    platform::view_get_text(view, id, text, sizeof text);
    int32_t number = 0;
    std::from_chars(text, text + std::strlen(text), number);
    return number;
}

}  // namespace hexlane
