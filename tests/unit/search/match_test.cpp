// When a text in a row matches, and which line number a row begins with.

#include <algorithm>

#include "platform/scripted/test_hooks.h"
#include "search/match_view.h"
#include "shell/child.h"
#include "store/row_table.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

class MatchTest : public ProgramTest {
protected:
    // Candidates and matches of a text in a row, as columns with blanks between them.
    static std::string candidates(const std::string& row, const char* text, bool matches_only) {
        put_row_text(row);
        SearchPattern pattern;
        prepare_pattern(text, &pattern);
        uint8_t positions[ROW_BUFFER_SIZE];
        const int32_t count = find_candidates(pattern, positions);
        std::string found;
        for (int32_t i = 0; i < count; ++i)
            if (!matches_only || matches_at(pattern, positions[i]))
                found += std::to_string(positions[i]) + " ";
        return found;
    }
};

TEST_F(MatchTest, OnlyTheLettersAToZMatchInEitherCase) {
    const struct {
        const char* label;
        std::string row;
        const char* text;
        const char* candidates;
        const char* matches;
    } cases[] = {
        {"both cases, left to right", "X1 x1 y1", "x1", "0 3 ", "0 3 "},
        {"capitals asked", "g0 G00", "G0", "0 3 ", "0 3 "},
        {"matches overlap", "aAaA", "aa", "0 1 2 3 ", "0 1 2 "},
        {"signs next to the letters", "@`[{^~", "`{", "1 ", ""},
        {"digits and signs", "X-1.5(", "-1.5(", "1 ", "1 "},
        {"text longer than what is left", "N10 N1", "N10", "0 4 ", "0 "},
        {"blanks count", "G1  X", "1 X", "1 ", ""},
        {"an empty text", "G1", "", "", ""},
        {"an empty row", "", "G", "", ""},
        {"a letter of the table, as UTF-8", "(F\xD6N)", "\xC3\x96n", "2 ", "2 "},
        {"its other case", "(F\xF6N)", "\xC3\x96n", "", ""},
        {"a letter outside of the table", "?1", "\xCE\xA9", "", ""},
        {"the last character", std::string(253, ' ') + "Z", "z", "253 ", "253 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        EXPECT_EQ(candidates(c.row, c.text, false), c.candidates);
        EXPECT_EQ(candidates(c.row, c.text, true), c.matches);
    }
}

TEST_F(MatchTest, AMatchIsAskedForAtAnyIndex) {
    put_row_text("G1");
    SearchPattern pattern;
    prepare_pattern("1", &pattern);
    for (const int32_t index : {-2, -1, 0, 2, 3, 300})
        EXPECT_FALSE(matches_at(pattern, index)) << index;
    EXPECT_TRUE(matches_at(pattern, 1));
}

TEST_F(MatchTest, LineNumbersCompareByTheirValue) {
    const std::string zeros(300, '0');
    const struct {
        const char* label;
        std::string row;
        int64_t number;
        bool found;
    } cases[] = {
        {"as written", "N10 G1", 10, true},
        {"small letter", "n10", 10, true},
        {"leading zeros", "N0010", 10, true},
        {"a point ends it", "N10.5", 10, true},
        {"longer", "N100", 10, false},
        {"a blank in front", " N10", 10, false},
        {"a slash in front", "/N10", 10, false},
        {"later in the row", "G1 N10", 10, false},
        {"a blank behind the letter", "N 10", 10, false},
        {"no digits", "N", 0, false},
        {"no digits but a sign", "N-0", 0, false},
        {"zero", "N0", 0, true},
        {"sixty zeros", "N" + zeros.substr(0, 60) + "7", 7, true},
        {"sixty digits", "N1" + zeros.substr(0, 60) + "7", 7, false},
        {"2 to the 32nd", "N4294967297", 1, false},
        {"2 to the 64th", "N18446744073709551617", 1, false},
        {"the largest", "N999999999", 999999999, true},
        {"behind what a row shows", "N" + zeros + "7 G1", 7, true},
        {"longer behind what a row shows", "N" + zeros.substr(0, 252) + "7123", 7, false},
        {"exactly what a row shows", "N" + zeros.substr(0, 252) + "7", 7, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        platform::reset_desktop();
        start_with(c.row + "\r\nN5\r\n");
        EXPECT_EQ(find_line_number(c.number), c.found ? 0 : LINE_MISSING);
        close_document();
    }
}

TEST_F(MatchTest, TheFirstLineNumberFromTheTopWins) {
    start_with("N1\r\nN2\r\nN2\r\nN3");
    child[0].current_row = 2;
    EXPECT_EQ(find_line_number(2), 1);
    EXPECT_EQ(find_line_number(3), 3) << "the end row stands behind it";
    set_row(1, "N" + std::string(280, '0') + "9");
    set_row(4, "N4");
    EXPECT_EQ(find_line_number(2), 2);
    EXPECT_EQ(find_line_number(4), 4) << "a last row that has text is one of the program's";
}

}  // namespace
}  // namespace hexlane
