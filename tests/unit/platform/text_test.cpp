// Bounded texts: limits, ends, and cuts between UTF-8 characters.

#include "platform/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace hexlane::platform {
namespace {

struct CutCase {
    const char* label;
    const char* from;
    std::size_t size;
    const char* text;
    int fits;
};
constexpr CutCase CUT_CASES[] = {
    {"fits", "abc", 4, "abc", 1},
    {"one too long", "abcd", 4, "abc", 0},
    {"room for NUL alone", "a", 1, "", 0},
    {"empty", "", 1, "", 1},
    {"two bytes cut", "ab\xC3\xA9", 4, "ab", 0},
    {"two bytes whole", "a\xC3\xA9z", 4, "a\xC3\xA9", 0},
    {"three bytes cut after two", "a\xE2\x82\xACz", 4, "a", 0},
    {"four bytes cut after three", "\xF0\x9F\x98\x80z", 4, "", 0},
    {"four bytes whole", "\xF0\x9F\x98\x80z", 5, "\xF0\x9F\x98\x80", 0},
    {"no UTF-8", "\x80\x80\x80\x80\x80\x80", 5, "\x80\x80\x80\x80", 0},
};

// The buffer has a guard byte behind it. format_text must cut where copy_text does, although it does not see
// what follows.
TEST(Text, CopyAppendAndFormatCutAlike) {
    for (const CutCase& c : CUT_CASES) {
        char copied[32];
        std::memset(copied, '#', sizeof copied);
        EXPECT_EQ(copy_text(copied, c.size, c.from), c.fits) << c.label;
        EXPECT_STREQ(copied, c.text) << c.label;
        EXPECT_EQ(copied[c.size], '#') << c.label;

        char formatted[32];
        EXPECT_EQ(format_text(formatted, c.size, "%s", c.from), c.fits) << c.label;
        EXPECT_STREQ(formatted, c.text) << c.label;

        char appended[32] = "ab";
        EXPECT_EQ(append_text(appended, c.size + 2, c.from), c.fits) << c.label;
        EXPECT_EQ(std::string(appended), std::string("ab") + c.text) << c.label;
    }
}

TEST(Text, AppendToAFullBufferChangesNothing) {
    char full[4] = {'a', 'b', 'c', 'd'};  // not even terminated
    EXPECT_EQ(append_text(full, sizeof full, "x"), 0);
    EXPECT_EQ(std::string(full, 4), "abcd");
}

TEST(Text, CaseIsIgnoredInLettersOnly) {
    EXPECT_TRUE(equal_ignoring_case("O100.nc", "o100.NC"));
    EXPECT_FALSE(equal_ignoring_case("a[", "A{"));
    EXPECT_FALSE(equal_ignoring_case("ab", "abc"));
    EXPECT_FALSE(equal_ignoring_case("\xC9", "\xE9"));
}

TEST(Text, FileTitle) {
    EXPECT_STREQ(file_title_of("/a/b.nc"), "b.nc");
    EXPECT_STREQ(file_title_of("b.nc"), "b.nc");
    EXPECT_STREQ(file_title_of("/a/"), "");
}

}  // namespace
}  // namespace hexlane::platform
