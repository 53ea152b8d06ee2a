// transfer_end.h: how the slot's transfer ended, in words, for a box and for a console alike. Main thread
// only.
#pragma once

#include "platform/text.h"

#include <cstddef>

namespace hexlane {

constexpr std::size_t END_TEXT_SIZE = 4 * platform::PATH_SIZE;

// The text of its end; a fault's reason is a second paragraph. Gives whether there was a fault.
bool transfer_end_text(int slot, char text[END_TEXT_SIZE]);

}  // namespace hexlane
