// macro_list.h: the list of macros, as the Record and the Play dialog show it. A list index is a table index.
// Main thread only.
#pragma once

#include "macros/macro_table.h"
#include "platform/views.h"

namespace hexlane {

constexpr int16_t MACRO_LIST = 110;  // the list's control id in both dialogs

constexpr int MACRO_TEXT_SIZE = 3 * MACRO_NAME_SIZE;  // bytes of a name as UTF-8, the NUL included

// Fills the list from the table and picks a line, or none with -1.
void fill_macro_list(platform::ViewHandle view, int32_t picked);

// Asks whether the picked macro is to be deleted, and deletes it. Gives whether it was; with none picked it
// only beeps.
bool ask_to_delete_macro(platform::ViewHandle view);

}  // namespace hexlane
