// sides_internal.h: the windows that the engine and the screens read the two files through.
#pragma once

#include "platform/byte_window.h"

namespace hexlane {

extern platform::ByteWindow left_window;
extern platform::ByteWindow right_window;

}  // namespace hexlane
