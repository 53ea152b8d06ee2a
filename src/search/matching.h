// matching.h: the rules of a search, without a view: when a row matches, which rows may hold a match, which
// begins with a line number. They work on row_text and the store. Main thread only.
#pragma once

#include "shell/store_limits.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace hexlane {

constexpr int SEARCH_TEXT_SIZE = 256;  // characters of a text, the NUL included

// A text as rows are compared with it.
struct SearchPattern {
    char bytes[SEARCH_TEXT_SIZE];  // a to z as capitals
    int32_t length;                // 0: no row holds it
    int32_t rarest;                // index of the character that NC programs hold least of
};
void prepare_pattern(const char* text, SearchPattern* pattern);

// A to Z in either case as capitals, whatever the locale.
constexpr char fold_letter(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// The places of a character in bytes, in either case and in rising order. Each case is looked for by itself,
// at the speed of memory.
struct LetterPlaces {
    char capital;
    char small;
    const char* next_capital;  // `end` when there is none
    const char* next_small;
    const char* end;
};
LetterPlaces begin_places(const char* from, const char* end, char c);

inline const char* find_byte(const char* from, const char* end, char c) {
    const void* found = from < end ? std::memchr(from, c, static_cast<std::size_t>(end - from)) : nullptr;
    return found != nullptr ? static_cast<const char*>(found) : end;
}

// The next place, nullptr behind the last one.
inline const char* next_place(LetterPlaces* places) {
    const bool is_capital = places->next_capital <= places->next_small;
    const char*& next = is_capital ? places->next_capital : places->next_small;
    const char* place = next;
    if (place == places->end)
        return nullptr;
    next = find_byte(place + 1, places->end, is_capital ? places->capital : places->small);
    return place;
}

// Fills `positions` with the indexes in row_text where `c` stands, in either case. Gives their number.
int32_t find_char_positions(char c, uint8_t positions[ROW_BUFFER_SIZE]);

// Whether the bytes at `place`, of which there are enough, are the pattern's.
bool stands_at(const char* place, const SearchPattern& pattern);

// Whether row_text has the pattern at `index`; any index may be asked.
bool matches_at(const SearchPattern& pattern, int32_t index);

// The indexes in row_text at which a match may begin: where the pattern's first character stands.
int32_t find_candidates(const SearchPattern& pattern, uint8_t positions[ROW_BUFFER_SIZE]);

// Puts `replacement` in the place of the match at `index` of row_text. 0 when the row would outgrow row_text:
// it is as it was.
int replace_match(const SearchPattern& pattern, int32_t index, const char* replacement, int32_t length);

// Whether `row`, which row_text holds, has a match that goes into text that it does not show: behind the
// longest text of a fetch, or behind a 0x1A. -1 when that can't be read, which the message loop tells.
int matches_unseen(const SearchPattern& pattern, int32_t row);

// The first row, from the top of the document, that begins with the line number `number` (below 10^9):
// LINE_MISSING when there is none, LINE_UNREAD when a row could not be read. The empty end row is not
// looked at.
constexpr int32_t LINE_MISSING = -1;
constexpr int32_t LINE_UNREAD = -2;
int32_t find_line_number(int64_t number);

// The raw bytes of unchanged rows are searched in long stretches, so that a walk fetches only rows that may
// hold a match. One walk; wiped by begin_scan.
struct RawScan {
    int64_t clean_from;  // from here up to clean_to the active file holds no match
    int64_t clean_to;
    int64_t start;     // raw position of the bytes in memory
    int64_t length;    // of them
    int64_t searched;  // no match that begins in front of it is looked for any more
    LetterPlaces places;
};
void begin_scan(RawScan* scan);

// The first row from `row` on, up to and including `last`, that may hold the pattern; last + 1 when there is
// none. A row that the store can't read counts as one. Row numbers show in the status line on the way, every
// ROW_COUNT_STEP rows.
int32_t next_row_to_search(RawScan* scan, const SearchPattern& pattern, int32_t row, int32_t last);

}  // namespace hexlane
