// Line numbers of one row, without a desktop.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ncutils/line_numbers.h"

namespace hexlane {
namespace {

constexpr int ROW_SIZE = 256;

Numbering numbering_of(int32_t start, int16_t increment, int digits, int32_t limit, bool number_unnumbered) {
    return {start, increment, digits, limit, number_unnumbered, static_cast<uint32_t>(start)};
}

// The row behind it; "(too long)" for one that does not fit.
std::string renumbered(Numbering* numbering, const std::string& row) {
    char out[ROW_SIZE];
    const NumberedRow result = renumber_row_text(numbering, row.c_str(), out, sizeof out);
    return result == NumberedRow::NUMBERED ? out : result == NumberedRow::TOO_LONG ? "(too long)" : row;
}

std::string stripped(const std::string& row) {
    char out[ROW_SIZE];
    strip_row_text(row.c_str(), out);
    return out;
}

TEST(LineNumbers, EachKindOfRowIsTreatedAsItBegins) {
    const struct {
        const char* before;
        const char* off;
        const char* on;
    } rows[] = {
        {"%PROGRAM", "%PROGRAM", "N0010 %PROGRAM"},
        {"N100 G90 X1.", "N0010 G90 X1.", "N0020 G90 X1."},
        {"G01 X2.", "G01 X2.", "N0030 G01 X2."},
        {"/N200 X3.", "/N0020 X3.", "/N0040 X3."},
        {"/G01 X4.", "/G01 X4.", "/N0050 G01 X4."},
        {"N X5", "N X5", "N X5"},
        {"", "", ""},
        {"n55", "N0030", "N0060"},
        {"N300(RETRACT)", "N0040(RETRACT)", "N0070(RETRACT)"},
        {"(END)", "(END)", "N0080 (END)"},
        {"/", "/", "/N0090 "},
        {"/n7G1", "/N0050G1", "/N0100G1"},
        {"/N", "/N", "/N"},
        {"/n X1", "/n X1", "/n X1"},
        {"//N5", "//N5", "/N0110 /N5"},
        {" N10", " N10", "N0120  N10"},
        {"G1 N10", "G1 N10", "N0130 G1 N10"},
        {"N1N2", "N0060N2", "N0140N2"},
    };
    Numbering off = numbering_of(10, 10, 4, 0, false);
    Numbering on = numbering_of(10, 10, 4, 0, true);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.before);
        EXPECT_EQ(renumbered(&off, row.before), row.off);
        EXPECT_EQ(renumbered(&on, row.before), row.on);
    }
}

TEST(LineNumbers, NumbersFollowStartStepDigitsAndLimit) {
    const struct {
        const char* label;
        Numbering numbering;
        std::vector<std::string> numbers;
    } cases[] = {
        {"back to the start behind the limit",
         numbering_of(10, 10, 2, 30, false),
         {"10", "20", "30", "10", "20"}},
        {"a limit below the start", numbering_of(50, 5, 0, 30, false), {"50", "50", "50"}},
        {"more digits than wanted", numbering_of(98, 1, 2, 0, false), {"98", "99", "100"}},
        {"no zeros", numbering_of(0, 1, 0, 0, false), {"0", "1"}},
        {"nine digits", numbering_of(1, 1, 9, 0, false), {"000000001", "000000002"}},
        {"no step", numbering_of(7, 0, 1, 0, false), {"7", "7"}},
        {"a step that has wrapped", numbering_of(20000, -25536, 4, 0, false), {"20000", "4294961760"}},
        {"below zero the limit holds not",
         numbering_of(1, -2, 4, 5, false),
         {"0001", "4294967295", "4294967293"}},
        {"past 31 bits", numbering_of(2147483647, 1, 0, 0, false), {"2147483647", "2147483648"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        Numbering numbering = c.numbering;
        for (const std::string& number : c.numbers)
            EXPECT_EQ(renumbered(&numbering, "N1 X"), "N" + number + " X");
    }
}

TEST(LineNumbers, ALongRunOfDigitsIsNoNumber) {
    Numbering numbering = numbering_of(5, 1, 0, 0, true);
    const std::string digits(27, '1');
    EXPECT_EQ(renumbered(&numbering, "N" + digits + "1"), "N5");
    EXPECT_EQ(renumbered(&numbering, "N" + digits + "11"), "N" + digits + "11");
    EXPECT_EQ(renumbered(&numbering, "/N" + digits + " "), "/N6 ");
    EXPECT_EQ(renumbered(&numbering, "/N" + digits + "1 "), "/N" + digits + "1 ");
}

TEST(LineNumbers, ARowThatDoesNotFitTakesNoNumber) {
    Numbering numbering = numbering_of(1, 1, 4, 0, true);
    const std::string text(ROW_SIZE - 1 - 6, 'X');  // "N0001 " goes in front
    EXPECT_EQ(renumbered(&numbering, text + "X"), "(too long)");
    EXPECT_EQ(renumbered(&numbering, text), "N0001 " + text);
    EXPECT_EQ(renumbered(&numbering, "N5" + text), "N0002" + text);
    EXPECT_EQ(renumbered(&numbering, "N5" + text + "X"), "N0003" + text + "X");
    EXPECT_EQ(renumbered(&numbering, "N5" + text + "XX"), "(too long)");
}

TEST(LineNumbers, StripTakesNumberAndBlanksAway) {
    const struct {
        const char* before;
        const char* after;
    } rows[] = {
        {"N0010 G01 X1.", "G01 X1."},
        {"n10G01", "G01"},
        {"N0010", ""},
        {"N", ""},
        {"N 10 G01", "G01"},
        {"NEXT", "EXT"},
        {"/N0010 G01", "/G01"},
        {"/G01", "/G01"},
        {"/ G01", "/G01"},
        {"/2 G01", "/G01"},
        {"G01 N10", "G01 N10"},
        {" N10", " N10"},
        {"", ""},
        {"/", "/"},
        {"N1\t2 \tG1", "G1"},
        {"/n5/N6 X", "//N6 X"},
        {"NN10", "N10"},
        {"10 G1", "10 G1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.before);
        EXPECT_EQ(stripped(row.before), row.after);
    }
}

}  // namespace
}  // namespace hexlane
