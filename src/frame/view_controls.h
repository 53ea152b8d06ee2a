// view_controls.h: what the views share: the ids of their buttons, groups of radio buttons, and texts and
// numbers in controls. Main thread only.
#pragma once

#include "platform/views.h"

#include <cstddef>

namespace hexlane {

constexpr int16_t OK_BUTTON = 1;
constexpr int16_t CANCEL_BUTTON = 2;

constexpr const char* DIGITS = "0123456789";

// Writes the text of a control.
void put_text(platform::ViewHandle view, int id, const char* text);

// Ticks the `index`-th of the radio buttons that begin at `first_id`; gives which one is ticked, 0 when none
// is.
void tick_radio(platform::ViewHandle view, int first_id, int index);
int ticked_radio(platform::ViewHandle view, int first_id, int count);

// Enables or disables controls with neighbouring ids.
void enable_controls(platform::ViewHandle view, int first_id, int count, bool enabled);

// A number in a field; `blank` is the number of an empty or all-blank field, which shows it too.
void put_number(platform::ViewHandle view, int id, int number, int blank);
int take_number(platform::ViewHandle view, int id, int blank);

// A path with up to `whole` characters as it stands, a longer one as ".." and its last `end` characters.
void shorten_path(char* shown, std::size_t size, const char* path, std::size_t whole, std::size_t end);

}  // namespace hexlane
