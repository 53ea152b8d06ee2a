// script_words_test.cpp: a line of a script as words, and texts and paths as they stand in the record.

#include "platform/scripted/record.h"
#include "platform/scripted/script_words.h"

#include <gtest/gtest.h>

namespace hexlane::platform {
namespace {

std::string joined(const ScriptLine& line) {
    std::string all;
    for (const Word& word : line.words) {
        all += (word.is_quoted ? "<" : "[") + word.text + (word.is_quoted ? ">" : "]");
        all += word.number != 1 ? "/" + std::to_string(word.number) : "";
    }
    return all;
}

TEST(ScriptWords, LinesSplitIntoBareWordsAndQuotedTexts) {
    const struct {
        const char* line;
        const char* words;
        const char* shown;
    } cases[] = {
        {"  key Ctrl+S  # save\r", "[key][Ctrl+S]", "key Ctrl+S"},
        {"# nothing", "", ""},
        {"\t \r", "", ""},
        {"type \"a # b\"#c", "[type]<a # b>", "type \"a # b\""},
        {R"(type "\x41\x0a\n\r\t\"\\")", "[type]<A\n\n\r\t\"\\>", R"(type "\x41\x0a\n\r\t\"\\")"},
        {R"(set "Feed"/2 "")", "[set]<Feed>/2<>", R"(set "Feed"/2 "")"},
        {"press @17", "[press][@17]", "press @17"},
        {"type \"\xE9\"", "[type]<\xE9>", "type \"\\xE9\""},
    };
    for (const auto& c : cases) {
        ScriptLine line;
        EXPECT_EQ(split_line(c.line, &line), "") << c.line;
        EXPECT_EQ(joined(line), c.words) << c.line;
        EXPECT_EQ(line.shown, c.shown) << c.line;
    }
}

TEST(ScriptWords, LinesThatCannotBeReadAreRefused) {
    for (const char* text : {"type \"a", "type \"a\\", "type \"\\q\"", "type \"\\x4\"", "type \"\\xG0\"",
                             "press \"OK\"/0", "press \"OK\"/x", "type \"a\"b"}) {
        ScriptLine line;
        EXPECT_NE(split_line(text, &line), "") << text;
        EXPECT_EQ(line.shown, text);
    }
}

TEST(ScriptWords, NumbersAreWholeAndInRange) {
    const struct {
        Word word;
        bool right;
        int64_t number;
    } cases[] = {
        {{"17", false, 1}, true, 17},          {{"-3", false, 1}, true, -3},
        {{"0x1B", false, 1}, true, 27},        {{"100", false, 1}, true, 100},
        {{"101", false, 1}, false, 0},         {{"-6", false, 1}, false, 0},
        {{"1.5", false, 1}, false, 0},         {{"", false, 1}, false, 0},
        {{"-", false, 1}, false, 0},           {{"1", true, 1}, false, 0},
        {{"0x", false, 1}, false, 0},          {{"+1", false, 1}, false, 0},
        {{"99999999999", false, 1}, false, 0},
    };
    for (const auto& c : cases) {
        int64_t number = 0;
        EXPECT_EQ(parse_number(c.word, -5, 100, &number), c.right) << c.word.text;
        if (c.right) {
            EXPECT_EQ(number, c.number) << c.word.text;
        }
    }
}

TEST(Record, TextsAreQuotedByteForByte) {
    EXPECT_EQ(quoted("a\"b\\c\r\n\x1A\xFF~ "), R"("a\"b\\c\x0D\x0A\x1A\xFF~ ")");
    EXPECT_EQ(quoted(std::string_view("a\0b", 3)), R"("a\x00b")");
}

const char* test_prefix() {
    return "Ab1z";
}

TEST(Record, PlacesOfTheRunPrintByName) {
    name_place("$WORK", "/tmp/run");
    name_place("$HOME_DIR", "/tmp/run/home");
    name_place("$EXAMPLES", "/");  // the root would name everything, so it names nothing
    set_prefix_source(test_prefix);
    const struct {
        const char* text;
        const char* shown;
    } cases[] = {
        {"/tmp/run", "$WORK"},
        {"Open /tmp/run/a.nc?", "Open $WORK/a.nc?"},
        {"/tmp/run/home/ZOLT", "$HOME_DIR/ZOLT"},
        {"/tmp/running", "/tmp/running"},
        {"x/tmp/run", "x/tmp/run"},
        {"/tmp/run/home2", "$WORK/home2"},
        {"/tmp/run/home/Ab1zchng.txt", "$HOME_DIR/$PREFIXchng.txt"},
        {"Ab1z5", "$PREFIX5"},
        {"xAb1z5", "xAb1z5"},
        {"/usr", "/usr"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(with_place_names(c.text), c.shown);
    }
    EXPECT_EQ(without_place_name("$HOME_DIR/ZOLT/x"), "/tmp/run/home/ZOLT/x");
    EXPECT_EQ(without_place_name("$WORKING"), "$WORKING");
    EXPECT_EQ(without_place_name("a/$WORK"), "a/$WORK");
    name_place("$WORK", "");
    name_place("$HOME_DIR", "");
    set_prefix_source(nullptr);
}

}  // namespace
}  // namespace hexlane::platform
