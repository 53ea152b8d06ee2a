// view_controls.h: what the views share: the ids of their buttons, pieces of their control tables, groups of
// radio buttons, and texts and numbers in controls. Main thread only.
#pragma once

#include "platform/views.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace hexlane {

constexpr int16_t OK_BUTTON = 1;
constexpr int16_t CANCEL_BUTTON = 2;

constexpr const char* DIGITS = "0123456789";

// Control tables one behind the other, for a view that computes a part of its controls.
template <std::size_t... COUNTS>
constexpr auto join_controls(const std::array<platform::ControlSpec, COUNTS>&... parts) {
    std::array<platform::ControlSpec, (COUNTS + ...)> all = {};
    auto next = all.begin();
    ((next = std::copy(parts.begin(), parts.end(), next)), ...);
    return all;
}

// `frame` and in it, from its first row down, a group of radio buttons with ids from `first_id`.
template <std::size_t COUNT>
constexpr auto radio_frame(const platform::ControlSpec& frame, int16_t first_id,
                           const char* const (&labels)[COUNT]) {
    std::array<platform::ControlSpec, COUNT + 1> controls = {frame};
    for (std::size_t i = 0; i < COUNT; i++) {
        controls[i + 1] = frame;
        controls[i + 1].id = static_cast<int16_t>(first_id + static_cast<int>(i));
        controls[i + 1].kind = platform::ControlKind::RADIO;
        controls[i + 1].label = labels[i];
        controls[i + 1].row = static_cast<uint8_t>(frame.row + i);
        controls[i + 1].rows = 1;
        controls[i + 1].flags = i == 0 ? platform::CONTROL_GROUP : 0;
    }
    return controls;
}

// The procedure of a view that `fill` makes ready when it opens; its OK lets `take` read it, and ends it
// with 1.
int64_t serve_answers(platform::WindowHandle view, uint32_t message, int64_t first, int64_t second,
                      void (*fill)(platform::ViewHandle), void (*take)(platform::ViewHandle));

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
