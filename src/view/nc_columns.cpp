// nc_columns.cpp: one step over a row's characters, and the walks that are made of it.

#include "view/nc_columns.h"

#include "shell/child.h"

#include <cstring>

namespace hexlane {
namespace {

// Where the walk over a row stands.
struct NcWalk {
    int32_t col = 0;  // the next free column
    bool in_comment = false;
};

// Gives the column of `c` and moves on behind it. A letter that follows on a multiple of the field width
// skips a whole field, so that two words never touch. The text of a comment is never spread out.
int32_t take_column(NcWalk* walk, char c) {
    if (walk->in_comment || c == '(') {
        walk->in_comment = c != ')';
    } else if (is_letter(c) && walk->col > 0 && walk->col < NC_MAX_LENGTH) {
        do {
            ++walk->col;
        } while (walk->col % NC_FIELD_WIDTH != 0);
    }
    return walk->col++;
}

}  // namespace

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

void build_nc_columns() {
    constexpr int32_t LAST_ENTRY = static_cast<int32_t>(sizeof(Child::nc_columns) / sizeof(int16_t)) - 1;
    NcWalk walk;
    int32_t index = 0;
    for (; index < LAST_ENTRY && child[0].row_text[index] != '\0'; ++index)
        child[0].nc_columns[index] = static_cast<int16_t>(take_column(&walk, child[0].row_text[index]));
    child[0].nc_columns[index] = static_cast<int16_t>(walk.col);
}

void format_nc_row() {
    char formatted[NC_MAX_LENGTH + 1];
    std::memset(formatted, ' ', NC_MAX_LENGTH);
    NcWalk walk;
    int32_t end = 0;
    for (const char* at = child[0].row_text; *at != '\0' && end < NC_MAX_LENGTH; ++at) {
        const int32_t col = take_column(&walk, *at);
        end = walk.col < NC_MAX_LENGTH ? walk.col : NC_MAX_LENGTH;
        if (col < NC_MAX_LENGTH)
            formatted[col] = *at;
    }
    formatted[end] = '\0';
    std::memcpy(child[0].row_text, formatted, static_cast<size_t>(end) + 1);
}

int32_t text_index_from(int32_t col) {
    int32_t index = 0;
    while (child[0].row_text[index] != '\0' && child[0].nc_columns[index] < col)
        ++index;
    return index;
}

int32_t caret_text_index() {
    return text_index_from(child[0].caret_col);
}

int32_t nc_display_length(const char* text) {
    NcWalk walk;
    for (; *text != '\0'; ++text)
        take_column(&walk, *text);
    return walk.col;
}

}  // namespace hexlane
