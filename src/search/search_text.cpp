// search_text.cpp: when a text in a row matches, and showing a match.

#include "platform/text.h"
#include "search/search.h"
#include "search/search_internal.h"
#include "shell/child.h"
#include "shell/status_line.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_bytes.h"
#include "store/row_table.h"
#include "view/nc_columns.h"
#include "view/text_view.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

using namespace platform;

SearchTexts search_texts;

const InputRule SEARCH_TEXT_RULE = {.limit = SEARCH_TEXT_SIZE - 1, .characters = true};

namespace {

// What NC programs are made of, the most frequent first. What is not here is rarer still.
constexpr char FREQUENT[] = "0123456789 .-XYGZNFMIJRSTH()";

std::size_t rarity(char c) {
    const char* place = std::strchr(FREQUENT, c);
    return place != nullptr ? static_cast<std::size_t>(place - FREQUENT) : sizeof FREQUENT;
}

int32_t rarest_of(const char* text) {
    int32_t rarest = 0;
    for (int32_t i = 0; text[i] != '\0'; ++i)
        if (rarity(text[i]) > rarity(text[rarest]))
            rarest = i;
    return rarest;
}

}  // namespace

void reset_search() {
    search_texts = {};
}

// A character that no row can hold makes the text one that no row holds.
void prepare_pattern(const char* text, SearchPattern* pattern) {
    const bool possible = text_to_bytes(pattern->bytes, sizeof pattern->bytes, text);
    for (char& c : pattern->bytes)
        c = fold_letter(c);
    pattern->length = possible ? static_cast<int32_t>(std::strlen(pattern->bytes)) : 0;
    pattern->rarest = rarest_of(pattern->bytes);
    pattern->cells = child[0].nc_mode ? nc_display_length(pattern->bytes) : pattern->length;
}

LetterPlaces begin_places(const char* from, const char* end, char c) {
    const char capital = fold_letter(c);
    const bool has_small = capital >= 'A' && capital <= 'Z';
    const char small = static_cast<char>(has_small ? capital - 'A' + 'a' : capital);
    return {capital, small, find_byte(from, end, capital), has_small ? find_byte(from, end, small) : end,
            end};
}

int32_t find_char_positions(char c, uint8_t positions[ROW_BUFFER_SIZE]) {
    const char* text = child[0].row_text;
    LetterPlaces places = begin_places(text, text + std::strlen(text), c);
    int32_t count = 0;
    while (const char* place = next_place(&places))
        positions[count++] = static_cast<uint8_t>(place - text);
    return count;
}

bool stands_at(const char* place, const SearchPattern& pattern) {
    for (int32_t i = 0; i < pattern.length; ++i)
        if (fold_letter(place[i]) != pattern.bytes[i])
            return false;
    return true;
}

bool matches_at(const SearchPattern& pattern, int32_t index) {
    const auto length = static_cast<int32_t>(std::strlen(child[0].row_text));
    return index >= 0 && pattern.length <= length - index && stands_at(child[0].row_text + index, pattern);
}

int32_t find_candidates(const SearchPattern& pattern, uint8_t positions[ROW_BUFFER_SIZE]) {
    return pattern.length > 0 ? find_char_positions(pattern.bytes[0], positions) : 0;
}

// The unseen bytes in pieces, each with what stands in front of it, where a match may begin.
int matches_unseen(const SearchPattern& pattern, int32_t row) {
    RowSpan rest;
    if (!fetched_rest(row, &rest))
        return -1;
    if (pattern.length == 0)
        return 0;
    char piece[4 * SEARCH_TEXT_SIZE];
    const auto shown = static_cast<int32_t>(std::strlen(child[0].row_text));
    int32_t kept = std::min(shown, pattern.length - 1);
    std::memcpy(piece, child[0].row_text + shown - kept, static_cast<std::size_t>(kept));
    while (rest.length > 0) {
        const int32_t taken =
            take_row_bytes(&rest, piece + kept, sizeof piece - static_cast<std::size_t>(kept));
        if (taken < 0)
            return -1;
        const int32_t length = kept + taken;
        for (int32_t i = 0; i + pattern.length <= length; ++i)
            if (stands_at(piece + i, pattern))
                return 1;
        kept = std::min(length, pattern.length - 1);
        std::memmove(piece, piece + length - kept, static_cast<std::size_t>(kept));
    }
    return 0;
}

// ---- Showing a match ---------------------------------------------------------------------------------

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
    show_match(row, index, pattern.cells);
    show_position();
    const int reply = show_view(dialog, step_proc);
    set_caret_visible(false);
    if (reply != REPLY_NONE)
        child[0].replace_reply = static_cast<int16_t>(reply);
    return fetch_row(row) ? reply : -1;
}

}  // namespace hexlane
