// Numbers read and written, and the rewriting of one row, without a desktop.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "ncutils/address_words.h"

namespace hexlane {
namespace {

constexpr int ROW_SIZE = 256;

LetterSet letters(const std::string& text) {
    LetterSet set = 0;
    for (const char letter : text)
        set |= letter_bit(letter);
    return set;
}

WordRun run_of(const std::string& chosen, int precision, WordArithmetic arithmetic, float operand = 0) {
    return {letters(chosen), precision, arithmetic, operand, {}};
}

// The new row; "(untouched)" when no chosen word was met, "(too long)" when it does not fit.
std::string rewritten(WordRun* run, const std::string& row) {
    char out[ROW_SIZE];
    const RewrittenRow result = rewrite_words(run, row.c_str(), out, sizeof out);
    if (result.words == 0)
        return "(untouched)";
    if (result.length < 0)
        return "(too long)";
    EXPECT_EQ(std::strlen(out), static_cast<std::size_t>(result.length));
    return out;
}

std::string formatted(float value, int precision) {
    char text[NUMBER_TEXT_SIZE];
    const int length = format_number(value, text, precision);
    EXPECT_EQ(std::strlen(text), static_cast<std::size_t>(length));
    return text;
}

double read(const std::string& text) {
    return read_number(text.c_str(), number_token_length(text.c_str()));
}

TEST(AddressWords, ANumberIsReadAsFarAsItGoes) {
    const struct {
        const char* text;
        double value;
        int length;
    } cases[] = {
        {"12.345", 12.345, 6}, {"+3 X1", 3, 2}, {"100.", 100, 4},
        {"1.2.3", 1.2, 5},     {"4-5", 4, 3},   {"+-5", 0, 3},
        {"+", 0, 1},           {"", 0, 0},      {" 5", 0, 0},
        {"1E5", 1, 1},         {"0X1", 0, 1},   {"INF", 0, 0},
        {"NAN", 0, 0},         {"1,5", 1, 1},   {"00000000000000000000042", 0, 20},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(number_token_length(c.text), c.length);
        EXPECT_EQ(read(c.text), c.value);
    }
}

// The library's slow and exact conversions are the judge, over every exponent.
TEST(AddressWords, NumbersAgreeWithTheExactConversions) {
    std::mt19937 random(5);
    const char characters[] = "0123456789012345678901234567890123456789.-+";
    for (int i = 0; i < 200000; i++) {
        float value = std::bit_cast<float>(static_cast<uint32_t>(random()));
        if (i % 2 == 0)
            value = static_cast<float>(static_cast<int>(random() % 2000001) - 1000000) / 1024.0F;
        const int precision = static_cast<int>(random() % 10);
        if (std::isfinite(value)) {
            char expected[NUMBER_TEXT_SIZE];
            std::snprintf(expected, sizeof expected, "%.*f", precision, static_cast<double>(value));
            ASSERT_EQ(formatted(value, precision), expected) << precision;
        }
        std::string token;
        for (int length = static_cast<int>(random() % 22); length > 0; length--)
            token += characters[random() % (sizeof characters - 1)];
        const std::string taken = token.substr(0, NUMBER_TOKEN_MAX);
        ASSERT_EQ(std::bit_cast<uint64_t>(read(token)),
                  std::bit_cast<uint64_t>(std::strtod(taken.c_str(), nullptr)))
            << token;
    }
}

TEST(AddressWords, ChosenWordsAreScaledAndShifted) {
    const struct {
        WordArithmetic arithmetic;
        float operand;
        int precision;
        const char* letters;
        const char* before;
        const char* after;
    } cases[] = {
        {scale_number, 2, 3, "XY", "N0010 G01 X1.5 Y-2.25 F100.", "N0010 G01 X3.000 Y-4.500 F100."},
        {scale_number, 25.4F, 3, "XY", "X2.5 Y1.", "X63.500 Y25.400"},
        {scale_number, 0, 2, "X", "X-5.", "X-0.00"},
        {scale_number, -1, 3, "X", "X2.5", "X-2.500"},
        {scale_number, 3, 2, "XY", "G00 X Y2", "G00 X0.00 Y6.00"},
        {shift_number, 0.1F, 3, "XYZ", "G00 X1.25 Y+3 Z-.5", "G00 X1.350 Y3.100 Z-0.400"},
        {shift_number, 0, 2, "X", "G00 X1234567.89", "G00 X1234567.88"},
        {shift_number, 1, 0, "X", "G01 x1 X1", "G01 x1 X2"},
        // What keeps its value takes the new form all the same.
        {shift_number, 0, 2, "X", "X.5", "X0.50"},
        {shift_number, 0, 0, "F", "F100.", "F100"},
        {shift_number, 0, 2, "X", "X-0", "X0.00"},
        {scale_number, 1, 2, "X", "X-0", "X-0.00"},
        // Comments, other letters and the rest of a token.
        {shift_number, 1, 0, "XY", "(X1 Y2)", "(untouched)"},
        {shift_number, 1, 0, "X", "", "(untouched)"},
        {shift_number, 1, 0, "", "X1", "(untouched)"},
        {shift_number, 1, 0, "X", "G00 X1 (Y2 X3)", "G00 X2 (Y2 X3)"},
        {shift_number, 1, 0, "X", "(A(X1)X1)X1", "(A(X1)X2)X2"},
        {shift_number, 1, 0, "X", "X1(X1", "X2(X1"},
        {shift_number, 1, 0, "X", ")X1(", ")X2("},
        {shift_number, 1, 1, "X", "X1.2.3Y", "X2.2Y"},
        {shift_number, 1, 0, "X", "X4-5 X", "X5 X1"},
        {shift_number, 1, 0, "X", "X1E5 X0X1 XINF", "X2E5 X1X2 X1INF"},
        {shift_number, 1, 0, "X", "X123456789012345678901",
         "X123456793955060940801"},  // the 21st digit stays behind the new number
        {shift_number, 1, 0, "XZ", "\xC4X1\tZ\x01", "\xC4X2\tZ1\x01"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.before);
        WordRun run = run_of(c.letters, c.precision, c.arithmetic, c.operand);
        EXPECT_EQ(rewritten(&run, c.before), c.after);
    }
}

TEST(AddressWords, PositionsRunOnThroughTheRows) {
    const struct {
        const char* label;
        WordArithmetic arithmetic;
        const char* letters;
        int precision;
        std::vector<std::string> before;
        std::vector<std::string> after;  // an untouched row as it was
        float x, y;
    } cases[] = {
        {"to increments",
         increment_from_absolute,
         "XY",
         3,
         {"G00 X1.0 Y2.0", "G01 X1.5", "M08", "G01 X1.5 Y3.25", "G01 X0 Y0"},
         {"G00 X1.000 Y2.000", "G01 X0.500", "M08", "G01 X0.000 Y1.250", "G01 X-1.500 Y-3.250"},
         0,
         0},
        {"to positions",
         absolute_from_increment,
         "XY",
         3,
         {"G00 X1.0 Y2.0", "G01 X.5", "M08", "G01 X-.25 Y1.25"},
         {"G00 X1.000 Y2.000", "G01 X1.500", "M08", "G01 X1.250 Y3.250"},
         1.25F,
         3.25F},
        {"twice in a row", increment_from_absolute, "X", 0, {"X1 X3"}, {"X1 X2"}, 3, 0},
        {"a letter without a number reads 0",
         increment_from_absolute,
         "X",
         1,
         {"X2", "X"},
         {"X2.0", "X-2.0"},
         0,
         0},
        {"and adds nothing", absolute_from_increment, "X", 1, {"X2", "X"}, {"X2.0", "X2.0"}, 2, 0},
        {"comments do not move", increment_from_absolute, "X", 0, {"X1 (X5)", "X2"}, {"X1 (X5)", "X1"}, 2, 0},
        {"what is written does not round the position",
         increment_from_absolute,
         "X",
         0,
         {"X0.4", "X0.8", "X1.2"},
         {"X0", "X0", "X0"},
         1.2F,
         0},
        {"the tenth of ten",
         absolute_from_increment,
         "X",
         9,
         std::vector<std::string>(10, "X0.1"),
         {"X0.100000001", "X0.200000003", "X0.300000012", "X0.400000006", "X0.500000000", "X0.600000024",
          "X0.700000048", "X0.800000072", "X0.900000095", "X1.000000119"},
         1.0000001F,
         0},
        {"the position is what the steps add up to",
         increment_from_absolute,
         "X",
         9,
         {"X0.1", "X0.0000000001"},
         {"X0.100000001", "X-0.100000001"},
         0,
         0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        WordRun run = run_of(c.letters, c.precision, c.arithmetic);
        ASSERT_EQ(c.before.size(), c.after.size());
        for (std::size_t i = 0; i < c.before.size(); i++) {
            const std::string row = rewritten(&run, c.before[i]);
            EXPECT_EQ(row == "(untouched)" ? c.before[i] : row, c.after[i]);
        }
        EXPECT_EQ(run.position['X' - 'A'], c.x);
        EXPECT_EQ(run.position['Y' - 'A'], c.y);
    }
}

TEST(AddressWords, ARowThatDoesNotFitStillMovesThePosition) {
    const std::string filler(ROW_SIZE - 1 - 8, '.');
    WordRun run = run_of("X", 2, absolute_from_increment);
    EXPECT_EQ(rewritten(&run, filler + "X1.5 X1"), "(too long)");
    EXPECT_EQ(run.position['X' - 'A'], 2.5F);
    // The longest row has one byte less than its buffer, for the NUL.
    run = run_of("X", 4, shift_number);
    EXPECT_EQ(rewritten(&run, filler + "AX1"), filler + "AX1.0000");
    EXPECT_EQ(rewritten(&run, filler + "ABX1"), "(too long)");
    // A single number can pass every bound.
    run = run_of("X", 9, scale_number, 1e8F);
    EXPECT_EQ(rewritten(&run, "X99999999999999999999"), "X" + formatted(1e28F, 9));
    // Seventeen words of 20 digits.
    std::string row;
    for (int i = 0; i < 12; i++)
        row += "X99999999999999999999";
    EXPECT_EQ(rewritten(&run, row), "(too long)");
}

}  // namespace
}  // namespace hexlane
