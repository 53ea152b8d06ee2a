// match_view.h: what the screens of Find and of Find and Replace share: the texts, the stepping dialogs.
#pragma once

#include "platform/views.h"
#include "search/matching.h"

#include <cstdint>

namespace hexlane {

constexpr int SEARCH_FIELD_SIZE = 3 * SEARCH_TEXT_SIZE;  // bytes of it as UTF-8, as its field holds it

// The run; wiped by reset_search.
struct SearchTexts {
    char find_text[SEARCH_FIELD_SIZE];  // shared by both commands
    char replace_text[SEARCH_FIELD_SIZE];
    bool find_opened;  // the dialog has been opened: it keeps its text from then on
    bool replace_opened;
};
extern SearchTexts search_texts;

// Values of replace_reply (child): what the person answered last. They are the ids of the buttons too.
constexpr int REPLY_NONE = 0;
constexpr int REPLY_FIND_NEXT = 1;
constexpr int REPLY_REPLACE = 2;
constexpr int REPLY_REPLACE_ALL = 3;
constexpr int REPLY_DONE = 4;

constexpr int16_t FIND_FIELD = 101;
constexpr int16_t REPLACE_FIELD = 102;
extern const platform::InputRule SEARCH_TEXT_RULE;

// Highlights the match at `index` of `row`, which row_text holds, shows a stepping dialog, and fetches the
// row again: whatever served messages may have used row_text. Gives the answer, which replace_reply takes, or
// REPLY_NONE when the dialog could not be shown; -1 when the row could not be fetched.
int ask_about_match(const platform::ViewSpec* dialog, int32_t row, int32_t index,
                    const SearchPattern& pattern);

}  // namespace hexlane
