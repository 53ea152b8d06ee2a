// matching.cpp: when a text in a row matches.

#include "search/matching.h"

#include "platform/text.h"
#include "shell/child.h"
#include "store/row_bytes.h"
#include "store/row_table.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

using namespace platform;

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

// A character that no row can hold makes the text one that no row holds.
void prepare_pattern(const char* text, SearchPattern* pattern) {
    const bool possible = text_to_bytes(pattern->bytes, sizeof pattern->bytes, text);
    for (char& c : pattern->bytes)
        c = fold_letter(c);
    pattern->length = possible ? static_cast<int32_t>(std::strlen(pattern->bytes)) : 0;
    pattern->rarest = rarest_of(pattern->bytes);
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

int replace_match(const SearchPattern& pattern, int32_t index, const char* replacement, int32_t length) {
    char* text = child[0].row_text;
    const auto before = static_cast<int32_t>(std::strlen(text));
    if (before - pattern.length + length >= ROW_BUFFER_SIZE)
        return 0;
    const int32_t behind = index + pattern.length;
    std::memmove(text + index + length, text + behind, static_cast<std::size_t>(before - behind) + 1);
    std::memcpy(text + index, replacement, static_cast<std::size_t>(length));
    return 1;
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

}  // namespace hexlane
