// menus.h: what of the menus can be chosen now. Main thread only.
#pragma once

namespace hexlane {

// Answers MENUS_MESSAGE: works every entry's state out afresh.
void work_out_menus();

}  // namespace hexlane
