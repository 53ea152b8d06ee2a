#include "shell/views.h"

#include "shell/boxes.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr BoxText VIEW_FAILED = {"Unable to display view", "System Error", BoxIcon::STOP, BUTTONS_OK};

}  // namespace

int show_view(const ViewSpec* spec, WindowProcedure procedure) {
    const ViewHandle view = view_create(spec, child[0].main_window, procedure);
    const int result = view == NO_WINDOW ? -1 : view_run(view);
    if (result == -1) {
        show_box(VIEW_FAILED);
        return 0;
    }
    return result;
}

}  // namespace hexlane
