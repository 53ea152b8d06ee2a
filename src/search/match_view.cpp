// match_view.cpp: showing a match, and asking what to do with it.

#include "search/match_view.h"
#include "search/search.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

namespace hexlane {

using namespace platform;

SearchTexts search_texts;

const InputRule SEARCH_TEXT_RULE = {.limit = SEARCH_TEXT_SIZE - 1, .characters = true};

void reset_search() {
    search_texts = {};
}

namespace {

// The stepping dialogs: each button's id is its answer. Closing one in another way is a Done.
int64_t step_proc(WindowHandle window, uint32_t message, int64_t first, int64_t second) {
    view_attach(window);
    if (message == WM_INITDIALOG)
        return 1;
    if (message == WM_COMMAND || message == WM_CLOSE) {
        view_end(window, message == WM_CLOSE ? REPLY_DONE : low_word(first));
        return 0;
    }
    return view_default(window, message, first, second);
}

}  // namespace

int ask_about_match(const ViewSpec* dialog, int32_t row, int32_t index, const SearchPattern& pattern) {
    show_match(row, index, child[0].nc_mode ? nc_display_length(pattern.bytes) : pattern.length);
    show_position();
    const int reply = show_view(dialog, step_proc);
    set_caret_visible(false);
    if (reply != REPLY_NONE)
        child[0].replace_reply = static_cast<int16_t>(reply);
    return fetch_row(row) ? reply : -1;
}

}  // namespace hexlane
