// views.h: the program's layer in front of the view toolkit. Main thread only.
#pragma once

#include "platform/views.h"

namespace hexlane {

// Runs a modal view and gives its result. A view that cannot be made or shown gives 0 after the message
// "Unable to display view".
int show_view(const platform::ViewSpec* spec, platform::WindowProcedure procedure);

}  // namespace hexlane
