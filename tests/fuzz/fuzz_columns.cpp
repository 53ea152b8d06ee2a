// fuzz_columns.cpp: NC Mode's columns and the colours of a row, for any text that a row can hold.

#include "fuzz_program.h"
#include "shell/child.h"
#include "view/color_runs_internal.h"
#include "view/nc_columns.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using namespace hexlane;

void set_row_text(const std::string& text) {
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
    text.copy(child[0].row_text, sizeof child[0].row_text - 1);
}

void check_columns(const std::string& text) {
    set_row_text(text);
    build_nc_columns();
    const int32_t length = static_cast<int32_t>(text.size());
    bool in_comment = false;
    for (int32_t i = 0; i < length; i++) {
        const char c = text[static_cast<std::size_t>(i)];
        const int32_t column = child[0].nc_columns[i];
        fuzz::require(i == 0 || column > child[0].nc_columns[i - 1], "two characters share a column");
        in_comment = in_comment || c == '(';
        if (!in_comment && is_letter(c) && column < NC_MAX_LENGTH)
            fuzz::require(column % NC_FIELD_WIDTH == 0, "a letter stands beside its field");
        in_comment = in_comment && c != ')';
    }
    for (child[0].caret_col = 0; child[0].caret_col < 300; child[0].caret_col++) {
        const int32_t index = caret_text_index();
        fuzz::require(index >= 0 && index <= length, "the caret's index lies outside the text");
        fuzz::require(index == length || child[0].nc_columns[index] >= child[0].caret_col,
                      "the caret's index lies in front of it");
        fuzz::require(index == 0 || child[0].nc_columns[index - 1] < child[0].caret_col,
                      "the caret's index is not the first");
    }
    child[0].caret_col = 0;
}

void check_format(const std::string& text) {
    set_row_text(text);
    format_nc_row();
    const std::string formatted = child[0].row_text;
    fuzz::require(formatted.size() <= NC_MAX_LENGTH, "a formatted row is too long");
    const int32_t wanted = std::min<int32_t>(nc_display_length(text.c_str()), NC_MAX_LENGTH);
    fuzz::require(static_cast<int32_t>(formatted.size()) == wanted,
                  "a formatted row has another length than measured");
    for (std::size_t i = 0; i < text.size() && child[0].nc_columns[i] < NC_MAX_LENGTH; i++)
        fuzz::require(formatted[static_cast<std::size_t>(child[0].nc_columns[i])] == text[i],
                      "a character has moved");
}

// Both ways to colour a row agree, but for numbers behind a comment.
void check_colors(const std::string& text, const ColorEntry* table) {
    platform::Color inks[ROW_BUFFER_SIZE];
    const int32_t length = static_cast<int32_t>(text.size());
    ink_row(text.c_str(), length, table, inks);
    int32_t from = 0;
    ColorStretch stretch;
    while (next_color_stretch(text.c_str(), from, table, &stretch)) {
        fuzz::require(stretch.first >= from && stretch.length > 0 && stretch.first + stretch.length <= length,
                      "a coloured stretch lies outside the text");
        for (int32_t i = stretch.first; i < stretch.first + stretch.length; i++)
            fuzz::require(inks[i] == stretch.ink, "two ways to colour a row differ");
        from = stretch.first + stretch.length;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ColorEntry table[COLOR_SLOTS];
    for (std::size_t i = 0; i < COLOR_SLOTS; i++)
        table[i] = {static_cast<uint32_t>(0x010203 * (i + 1)), static_cast<int16_t>(size > i && data[i] % 2),
                    0};
    std::string text(data, data + size);
    std::replace(text.begin(), text.end(), '\0', '(');
    text.resize(std::min<std::size_t>(text.size(), ROW_FETCH_MAX));
    check_columns(text);
    check_format(text);
    check_colors(text, table);
    return 0;
}
