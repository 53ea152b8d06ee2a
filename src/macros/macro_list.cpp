#include "macros/macro_list.h"

#include "macros/macro_texts.h"
#include "platform/desktop.h"
#include "platform/files.h"
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
    char path[PATH_SIZE];
    macro_file_path(picked, path);
    const int deleted = delete_macro(picked);
    const FileError reason = last_file_error();
    fill_macro_list(view, std::min(picked, macros.count - 1));
    if (!deleted)
        show_macro_box(MacroBox::NOT_DELETED, path, file_error_text(reason));
    return deleted != 0;
}

}  // namespace hexlane
