// The small pieces that all desktops share: cells, code page, rules of fields.

#include "platform/common/cell_grid.h"
#include "platform/common/code_page.h"
#include "platform/common/input_rules.h"
#include "platform/text.h"

#include <gtest/gtest.h>

#include <string>

namespace hexlane::platform {
namespace {

std::string row_text(const CellGrid& grid, int row) {
    std::string text;
    for (int col = 0; col < grid.cols; col++) {
        text += static_cast<char>(grid.cells[static_cast<std::size_t>(row * grid.cols + col)].byte);
    }
    return text;
}

TEST(CellGrid, DrawingIsClippedOnAllSides) {
    struct Case {
        int x, y;
        const char* text;
        const char* row;
    };
    const Case cases[] = {
        {0, 16, "abc", "abc  "},   {7, 31, "abc", "abc  "},  {-16, 16, "abcdefghij", "cdefg"},
        {-1, 16, "abc", "bc   "},  {32, 16, "abc", "    a"}, {40, 16, "abc", "     "},
        {-80, 16, "abc", "     "}, {0, 32, "abc", "     "},  {0, -1, "abc", "     "},
    };
    for (const Case& c : cases) {
        CellGrid grid;
        grid_resize(&grid, 5, 2);
        grid.first_dirty = 0;
        grid.last_dirty = -1;
        grid_draw(&grid, c.x, c.y, c.text, static_cast<int>(std::string(c.text).size()), 1, 2);
        EXPECT_EQ(row_text(grid, 1), c.row) << c.x << "," << c.y;
        EXPECT_EQ(row_text(grid, 0), "     ");
        const bool drawn = std::string(c.row) != "     ";
        EXPECT_EQ(grid.first_dirty <= grid.last_dirty, drawn);
    }
}

TEST(CellGrid, ResizeKeepsWhatStays) {
    CellGrid grid;
    grid_resize(&grid, 4, 2);
    grid_draw(&grid, 0, 0, "abcd", 4, 1, 2);
    grid_draw(&grid, 0, 16, "efgh", 4, 1, 2);
    grid_resize(&grid, 2, 3);
    EXPECT_EQ(row_text(grid, 0) + row_text(grid, 1) + row_text(grid, 2), "abef  ");
    EXPECT_EQ(grid.cells[0].ink, 1U);
    EXPECT_EQ(grid.cells[4].paper, WHITE);
    EXPECT_EQ(grid.last_dirty, 2);
    grid_resize(&grid, -1, 0);
    grid_draw(&grid, 0, 0, "abcd", 4, 1, 2);
    EXPECT_TRUE(grid.cells.empty());
}

TEST(CodePage, EveryByteShowsAsOneCharacterThatComesBack) {
    for (int byte = 0; byte < 256; byte++) {
        const char32_t shown = byte_to_unicode(static_cast<uint8_t>(byte));
        const bool control = byte < 32 || byte == 127;
        EXPECT_EQ(unicode_to_byte(shown), control ? -1 : byte) << byte;
        EXPECT_TRUE(!control || (shown >= 0x2400 && shown <= 0x2421)) << byte;
    }
    EXPECT_EQ(unicode_to_byte(0x20AC), 0x80);
    EXPECT_EQ(unicode_to_byte(0x0080), -1);
    EXPECT_EQ(unicode_to_byte(0x0178), 0x9F);
    EXPECT_EQ(unicode_to_byte(0x0100), -1);
    EXPECT_EQ(unicode_to_byte('\t'), '\t');
}

TEST(CodePage, TextsTurnIntoBytesAndBack) {
    std::string all;
    for (int byte = 1; byte < 256; byte++) {
        all += static_cast<char>(byte);
    }
    char text[1024];
    char bytes[256];
    EXPECT_EQ(bytes_to_text(text, sizeof text, all.c_str()), 1);
    EXPECT_EQ(text_to_bytes(bytes, sizeof bytes, text), 1);
    EXPECT_EQ(bytes, all);

    const struct {
        const char* text;
        std::size_t size;
        const char* bytes;
        int whole;
    } cases[] = {
        {"\xC3\x96L", 9, "\xD6L", 1},
        {"\xE2\x82\xAC 5", 9, "\x80 5", 1},
        {"\xCE\xA9m", 9, "?m", 0},
        {"\xF0\x9F\x98\x80x", 9, "?x", 0},
        {"a\xC3", 9, "a?", 0},
        {"\xC3(b", 9, "?(b", 0},
        {"\xFF\x80z", 9, "??z", 0},
        {"abc", 3, "ab", 0},
        {"\xC3\x96\xC3\x96", 3, "\xD6\xD6", 1},
        {"", 1, "", 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(text_to_bytes(bytes, c.size, c.text), c.whole) << c.text;
        EXPECT_STREQ(bytes, c.bytes);
    }
    EXPECT_EQ(bytes_to_text(text, 4, "a\xD6\xD6"), 0);
    EXPECT_STREQ(text, "a\xC3\x96");
    EXPECT_EQ(bytes_to_text(text, 5, "a\xD6\xD6"), 0);
    EXPECT_STREQ(text, "a\xC3\x96");
}

TEST(InputRules, CapitalsOnlyWhereTheRuleWantsThem) {
    const InputRule capitals = {0, nullptr, 0, 0, nullptr, nullptr, nullptr, true};
    const InputRule plain = {0, nullptr, 0, 0, nullptr, nullptr, nullptr};
    for (const char* pair : {"aA", "zZ", "AA", "{{", "``", "\xE4\xE4"}) {
        EXPECT_EQ(field_character(&capitals, pair[0]), pair[1]);
        EXPECT_EQ(field_character(&plain, pair[0]), pair[0]);
    }
    EXPECT_EQ(field_character(nullptr, 'a'), 'a');
}

TEST(InputRules, LimitCharactersAndRange) {
    const InputRule letters = {3, "ABC", 0, 0, nullptr, nullptr, nullptr};
    EXPECT_TRUE(field_takes(&letters, ""));
    EXPECT_TRUE(field_takes(&letters, "CAB"));
    EXPECT_FALSE(field_takes(&letters, "CABA"));
    EXPECT_FALSE(field_takes(&letters, "AX"));
    EXPECT_TRUE(field_takes(nullptr, "anything"));
    InputRule three = {3, nullptr, 0, 0, nullptr, nullptr, nullptr};
    EXPECT_FALSE(field_takes(&three, "\xC3\x96\xC3\x96")) << "bytes";
    three.characters = true;
    EXPECT_TRUE(field_takes(&three, "\xC3\x96\xE2\x82\xAC\xF0\x9F\x98\x80"));
    EXPECT_FALSE(field_takes(&three, "\xC3\x96\xE2\x82\xAC\xF0\x9F\x98\x80x"));

    const int32_t last_row = 40;
    const InputRule rows = {0, nullptr, 1, 1, &last_row, nullptr, nullptr};
    for (const char* good : {"1", "41", " 7 ", "+7", "1.5"}) {
        EXPECT_TRUE(value_in_range(&rows, good)) << good;
    }
    for (const char* bad : {"", " ", "0", "42", "-1", "+-7", "7x", "1e1", "nan", "0x10", "99999999999"}) {
        EXPECT_FALSE(value_in_range(&rows, bad)) << bad;
    }
    EXPECT_TRUE(value_in_range(&letters, "no number"));
}

TEST(InputRules, LabelsLoseTheirMnemonics) {
    char plain[8];
    for (auto [label, expected] :
         {std::pair{"&Open", "Open"}, {"R && D", "R & D"}, {"End&", "End"}, {"&Longer label", "Longer "}}) {
        plain_label(label, plain, sizeof plain);
        EXPECT_STREQ(plain, expected);
    }
}

}  // namespace
}  // namespace hexlane::platform
