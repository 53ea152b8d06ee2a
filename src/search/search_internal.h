// search_internal.h: what Find and Find and Replace share: the texts, the match rule, the stepping dialogs.
#pragma once

#include "platform/views.h"
#include "store/store_limits.h"

#include <cstdint>

namespace hexlane {

constexpr int SEARCH_TEXT_SIZE = 256;  // bytes of a text as it is typed, the NUL included

// The run; wiped by reset_search.
struct SearchTexts {
    char find_text[SEARCH_TEXT_SIZE];     // shared by both commands; UTF-8, as its field holds it
    char replace_text[SEARCH_TEXT_SIZE];  // UTF-8
    bool find_opened;                     // the dialog has been opened: it keeps its text from then on
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

// A text as rows are compared with it.
struct SearchPattern {
    char bytes[SEARCH_TEXT_SIZE];  // a to z as capitals
    int32_t length;                // 0: no row holds it
    int32_t cells;                 // that a match takes on the screen
};
void prepare_pattern(const char* text, SearchPattern* pattern);

// Fills `positions` with the indexes in row_text where `c` stands, in either case. Gives their number.
int32_t find_char_positions(char c, uint8_t positions[ROW_BUFFER_SIZE]);

// Whether row_text has the pattern at `index`; any index may be asked.
bool matches_at(const SearchPattern& pattern, int32_t index);

// The indexes in row_text at which a match may begin: where the pattern's first character stands.
int32_t find_candidates(const SearchPattern& pattern, uint8_t positions[ROW_BUFFER_SIZE]);

// Highlights the match at `index` of `row`, which row_text holds, shows a stepping dialog, and fetches the
// row again: whatever served messages may have used row_text. Gives the answer, which replace_reply takes, or
// REPLY_NONE when the dialog could not be shown; -1 when the row could not be fetched.
int ask_about_match(const platform::ViewSpec* dialog, int32_t row, int32_t index,
                    const SearchPattern& pattern);

// The first row, from the top of the document, that begins with the line number `number` (below 10^9):
// LINE_MISSING when there is none, LINE_UNREAD when a row could not be read. The end row is not looked
// at.
constexpr int32_t LINE_MISSING = -1;
constexpr int32_t LINE_UNREAD = -2;
int32_t find_line_number(int64_t number);

// Fetches a row of a walk; every ROW_COUNT_STEP rows its number shows in the status line.
[[nodiscard]] int fetch_walked_row(int32_t row);

}  // namespace hexlane
