// view_fields.h: what the views of the NC utilities share: their buttons, and numbers in fields.
#pragma once

#include "platform/views.h"

#include <cstdint>

namespace hexlane {

constexpr int16_t OK_BUTTON = 1;
constexpr int16_t CANCEL_BUTTON = 2;

constexpr const char* DIGITS = "0123456789";

// Writes the text that a field begins with.
void fill_field(platform::ViewHandle view, int id, const char* text);

// The number in a field that takes digits alone; 0 when it is empty.
int32_t field_number(platform::ViewHandle view, int id);

}  // namespace hexlane
