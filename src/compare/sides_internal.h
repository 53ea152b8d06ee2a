// sides_internal.h: the windows that the engine and the screens read the two files through.
#pragma once

#include "compare/byte_window.h"

namespace hexlane {

extern ByteWindow left_window;
extern ByteWindow right_window;

}  // namespace hexlane
