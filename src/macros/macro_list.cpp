#include "macros/macro_list.h"

#include "macros/macro_texts.h"
#include "platform/desktop.h"
#include "platform/text.h"

#include <algorithm>

namespace hexlane {

using namespace platform;

void fill_macro_list(ViewHandle view, int32_t picked) {
    view_clear_list(view, MACRO_LIST);
    for (int32_t i = 0; i < macros.count; ++i) {
        char text[MACRO_TEXT_SIZE];
        bytes_to_text(text, sizeof text, macros.table[i].name);
        view_add_to_list(view, MACRO_LIST, text);
    }
    view_select(view, MACRO_LIST, picked);
}

// The list is filled afresh: the scan may have put the macros into another order, and a file that could not
// be deleted is still there.
bool ask_to_delete_macro(ViewHandle view) {
    const int32_t picked = view_selection(view, MACRO_LIST);
    if (picked < 0 || picked >= macros.count) {
        message_beep(BoxIcon::EXCLAMATION);
        return false;
    }
    char text[MACRO_TEXT_SIZE];
    bytes_to_text(text, sizeof text, macros.table[picked].name);
    if (show_macro_box(MacroBox::ASK_DELETE, text) != YES_BUTTON)
        return false;
    delete_macro(picked);
    fill_macro_list(view, std::min(picked, macros.count - 1));
    return true;
}

}  // namespace hexlane
