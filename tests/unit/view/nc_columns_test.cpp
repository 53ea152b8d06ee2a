// NC Mode's columns, without a window.

#include "shell/child.h"
#include "support/program_test.h"
#include "view/nc_columns.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace hexlane {
namespace {

std::string formatted(const std::string& text) {
    put_row_text(text);
    format_nc_row();
    return child[0].row_text;
}

TEST(NcColumns, EveryWordStartsOnAMultipleOfTheFieldWidth) {
    const struct {
        const char* label;
        const char* text;
        const char* shown;
    } cases[] = {
        {"words", "N10G1X5", "N10  G1   X5"},
        {"a word that ends on a multiple is followed by a whole field", "N1000X1", "N1000     X1"},
        {"small letters start words too", "n1x2", "n1   x2"},
        {"a letter at the start stays there", "X", "X"},
        {"blanks of the text push what follows", "N1 G1", "N1   G1"},
        {"blanks up to a multiple count as text", "N1   G1", "N1        G1"},
        {"a row that begins with blanks", "  G1", "     G1"},
        {"letters side by side", "GX", "G    X"},
        {"a comment is not spread out", "(G1X5)", "(G1X5)"},
        {"words around a comment", "G1(DRILL A)X5", "G1(DRILL A)    X5"},
        {"an open comment runs to the end", "G1(X5 Y6", "G1(X5 Y6"},
        {"a closing parenthesis alone is text", "G1)X5", "G1)  X5"},
        {"a tab takes one cell", "G1\tX5", "G1\t  X5"},
        {"letters beyond ASCII are no letters", "\xC4X", "\xC4    X"},
        {"an empty row", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(formatted(c.text), c.shown);
        EXPECT_EQ(nc_display_length(c.text), static_cast<int32_t>(std::strlen(c.shown)));
        put_row_text(c.text);
        build_nc_columns();
        for (size_t i = 0; i <= std::strlen(c.text); ++i)
            EXPECT_EQ(c.shown[child[0].nc_columns[i]], c.text[i]) << "index " << i;
    }
}

TEST(NcColumns, TextIndexOfAColumnInsideAndBesideTheText) {
    put_row_text("N10G1X5");  // N10  G1   X5
    build_nc_columns();
    //                             N  1  0  .  .  G  1  .  .  .  X  5  end
    const int32_t index_of[] = {0, 1, 2, 3, 3, 3, 4, 5, 5, 5, 5, 6, 7, 7};
    for (int32_t col = 0; col < 14; ++col) {
        child[0].caret_col = col;
        EXPECT_EQ(caret_text_index(), index_of[col]) << "column " << col;
        EXPECT_EQ(text_index_from(col), index_of[col]) << "column " << col;
    }
}

TEST(NcColumns, ARowThatOutgrowsTheLimitIsCutOnTheScreenOnly) {
    const int32_t window_top = 0x5A5A5A5A;  // the field behind nc_columns
    child[0].window_top = window_top;
    const std::string letters(255, 'X');
    const std::string shown = formatted(letters);
    EXPECT_EQ(shown.size(), 255u);
    EXPECT_EQ(shown.substr(245), "X    X    ");
    EXPECT_EQ(formatted(std::string(254, '1') + "X").back(), ' ') << "the word begins behind the last cell";
    put_row_text(letters);
    build_nc_columns();
    for (size_t i = 0; i < letters.size(); ++i)
        ASSERT_LT(child[0].nc_columns[i], child[0].nc_columns[i + 1]) << "index " << i;
    EXPECT_EQ(child[0].nc_columns[51], 255);
    EXPECT_EQ(child[0].nc_columns[52], 256) << "no more padding there";
    child[0].caret_col = nc_display_length(letters.c_str());
    EXPECT_EQ(caret_text_index(), 255) << "behind the text even where it is not shown";
    EXPECT_EQ(child[0].window_top, window_top);
}

}  // namespace
}  // namespace hexlane
