// Find and Replace without a question, against the rule on plain strings, and where it has to stop.

#include <algorithm>
#include <cstring>
#include <random>

#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "search/match_view.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/save.h"
#include "store/store_fault.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using platform::answer_box;
using platform::shown_boxes;

constexpr int FIND_AND_REPLACE = 1012;

class ReplaceTest : public ProgramTest {
protected:
    // Opens the dialog, presses "Replace All" and answers the boxes behind it.
    static void replace_all(const std::string& text, const std::string& replacement, int boxes = 1) {
        platform::copy_text(search_texts.find_text, SEARCH_TEXT_SIZE, text.c_str());
        platform::copy_text(search_texts.replace_text, SEARCH_TEXT_SIZE, replacement.c_str());
        search_texts.replace_opened = true;
        platform::forget_shown_boxes();
        answer_box("Replace All");
        for (int i = 0; i < boxes; ++i)
            answer_box("OK");
        command(FIND_AND_REPLACE);
        EXPECT_EQ(platform::unused_answers(), 0);
    }
};

// The rule on a string: the places of the first character, found beforehand, moved by each replacement.
std::string replaced(std::string row, const std::string& text, const std::string& replacement) {
    const auto folded = [](std::string from) {
        for (char& c : from)
            c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
        return from;
    };
    std::vector<int> places;
    for (size_t i = 0; i < row.size(); ++i)
        if (folded(row)[i] == folded(text)[0])
            places.push_back(static_cast<int>(i));
    int shift = 0;
    for (const int place : places) {
        const int at = place + shift;
        if (at < 0 || at > static_cast<int>(row.size()) ||
            folded(row.substr(static_cast<size_t>(at), text.size())) != folded(text))
            continue;
        row.replace(static_cast<size_t>(at), text.size(), replacement);
        shift += static_cast<int>(replacement.size()) - static_cast<int>(text.size());
    }
    return row;
}

TEST_F(ReplaceTest, EveryRowFollowsTheRuleOnPlainStrings) {
    std::mt19937 random(7);
    const auto text_of = [&random](size_t most, const char* letters) {
        std::string text;
        for (size_t i = random() % (most + 1); i > 0; --i)
            text += letters[random() % std::strlen(letters)];
        return text;
    };
    for (int round = 0; round < 60; ++round) {
        std::vector<std::string> model;
        std::string file;
        for (int i = 0; i < 40; ++i) {
            model.push_back(text_of(12, "abAB1"));
            file += model.back() + "\r\n";
        }
        platform::reset_desktop();
        start_with(file);
        child[0].current_row = static_cast<int32_t>(random() % 41);
        child[0].caret_row = std::min(child[0].current_row, 3);
        const std::string text = "a" + text_of(2, "abAB1");
        const std::string replacement = text_of(4, "abX");
        SCOPED_TRACE("'" + text + "' by '" + replacement + "'");
        replace_all(text, replacement);
        for (std::string& row : model)
            row = replaced(row, text, replacement);
        model.emplace_back();
        ASSERT_EQ(rows(), model);
        ASSERT_EQ(child[0].modified != 0, shown_boxes()[0].text == "Find and Replace Complete");
        child[0].modified = 0;
        close_document();
    }
}

TEST_F(ReplaceTest, AFewMatchesInALongDocumentAreAllFound) {
    for (const uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&random](size_t end) { return random() % end; };
        std::vector<std::string> model;
        std::string file;
        for (int i = 0; i < 9000; ++i) {
            std::string row(below(40), "e1 "[below(3)]);
            if (below(60) == 0)
                row.insert(below(row.size() + 1), below(2) ? "NEEdle" : "needLe");
            model.push_back(row);
            file += row + (below(20) ? "\r\n" : "\n");
        }
        platform::reset_desktop();
        start_with(file);
        for (int i = 0; i < 120; ++i) {
            const auto row = below(model.size());
            const auto at = model.begin() + static_cast<std::ptrdiff_t>(row);
            if (below(3) == 0) {
                ASSERT_TRUE(insert_blank_rows(static_cast<int32_t>(row), 1));
                model.insert(at, "");
            } else if (below(2)) {
                ASSERT_TRUE(delete_rows(static_cast<int32_t>(row), 1));
                model.erase(at);
            } else {
                *at = below(2) ? "xNEEDLEx" : "x";
                set_row(static_cast<int32_t>(row), *at);
            }
        }
        child[0].current_row = child[0].caret_row = static_cast<int32_t>(below(model.size()));
        replace_all("nEEDLE", "needle!");
        for (std::string& row : model)
            row = replaced(row, "NEEDLE", "needle!");
        model.emplace_back();
        ASSERT_EQ(rows(), model);
        close_document();
    }
}

TEST_F(ReplaceTest, AMatchIsFoundWhereverTheBytesReadAtATimeEnd) {
    constexpr size_t STRETCH = 1 << 16;  // bytes
    for (size_t back = 0; back <= 7; ++back) {
        std::string file;
        while (file.size() < 2 * STRETCH)
            file += std::string(62, 'e') + "\r\n";
        // A row begins at each stretch; the one in front of it loses its line end in favour of the match.
        file.replace(STRETCH - back, 6, "NEEDLE");
        if (back < 2)
            file.replace(STRETCH - 2, 2 - back, std::string(2 - back, 'e'));
        platform::reset_desktop();
        start_with(file);
        replace_all("needle", "found");
        size_t found = 0;
        for (const std::string& row : rows())
            found += row.find("found") != std::string::npos;
        EXPECT_EQ(found, 1u) << back << " bytes in front of it";
        close_document();
    }
}

TEST_F(ReplaceTest, ARowThatWouldNotFitKeepsTheMatchAndIsCounted) {
    const std::string full = "G0" + std::string(252, 'x') + "\r\n";
    start_with("G0 G0\r\n" + full + full + "G0\r\n");
    child[0].current_row = 3;
    replace_all("G0", "G00", 1);
    EXPECT_EQ(rows()[1].substr(0, 4), "G00x") << "255 characters fit";
    EXPECT_EQ(shown_boxes()[0].text, "Find and Replace Complete");

    replace_all("G0", "G000", 2);
    EXPECT_EQ(rows()[0], "G0000 G0000");
    EXPECT_EQ(rows()[1].substr(0, 4), "G00x");
    ASSERT_EQ(shown_boxes().size(), 2u);
    EXPECT_EQ(shown_boxes()[0].text, "Find and Replace Complete");
    EXPECT_NE(shown_boxes()[1].text.find(": 2."), std::string::npos) << shown_boxes()[1].text;
    EXPECT_NE(shown_boxes()[1].text.find("row 2."), std::string::npos);
    ASSERT_TRUE(save_file());
    EXPECT_EQ(bytes(), "G0000 G0000\r\nG00" + std::string(252, 'x') + "\r\nG00" + std::string(252, 'x') +
                           "\r\nG0000\r\n");
}

// Behind ROW_FETCH_MAX characters and behind a 0x1A. A row whose match there can't be replaced stays whole.
TEST_F(ReplaceTest, ARowWithAMatchThatItDoesNotShowStaysWholeAndIsCounted) {
    const std::string x(250, 'x');
    const std::vector<std::string> before = {"G0" + x + "g0tail", "G0" + x + "g0G0tail",
                                             "G0" + x + "1g0",    "x" + x + "000" + "G0",
                                             "G0\x1AZ",           "G0\x1Ag0"};
    const std::vector<std::string> after = {"Y" + x + "Ytail", before[1], before[2],
                                            before[3],         "Y\x1AZ",  before[5]};
    std::string file;
    for (const std::string& row : before)
        file += row + "\r\n";
    start_with(file);
    replace_all("G0", "Y", 2);
    ASSERT_EQ(shown_boxes().size(), 2u);
    EXPECT_EQ(shown_boxes()[1].text.find("Rows left with a match: 4. The first is row 2."), 0u);
    ASSERT_TRUE(save_file());
    file.clear();
    for (const std::string& row : after)
        file += row + "\r\n";
    EXPECT_EQ(bytes(), file);
}

TEST_F(ReplaceTest, AReplacementThatNoRowCanHoldChangesNothing) {
    start_with("G0\r\n");
    replace_all("G0", "\xCE\xA9");
    EXPECT_EQ(rows()[0], "G0");
    EXPECT_EQ(child[0].modified, 0);
    replace_all("G0", "\xC3\x96");
    EXPECT_EQ(rows()[0], "\xD6");
}

TEST_F(ReplaceTest, AFullDiskStopsTheRunAndLosesNothing) {
    constexpr int32_t ROWS = 9000;
    std::string file;
    for (int i = 0; i < ROWS; ++i)
        file += "N" + std::to_string(i) + " X1 Y2 Z3 A4 B5 C6\r\n";
    start_with(file);
    platform::fill_disk_after(100000);
    replace_all("X1", "X11", 2);
    ASSERT_EQ(shown_boxes().size(), 2u);
    EXPECT_NE(shown_boxes()[0].text.find("has stopped at row"), std::string::npos);
    EXPECT_EQ(shown_boxes()[1].title, "Disk Error");
    const int32_t stopped = unsaved_row.row;
    ASSERT_GT(stopped, 0);

    replace_all("Y2", "Y22", 0);
    EXPECT_EQ(platform::beep_count(), 1) << "no run while a row waits";

    platform::reset_file_faults();
    replace_all("Y2", "Y22");
    const std::vector<std::string> after = rows();
    for (int32_t i = 0; i < ROWS; ++i)
        ASSERT_EQ(after[static_cast<size_t>(i)],
                  "N" + std::to_string(i) + (i <= stopped ? " X11" : " X1") + " Y22 Z3 A4 B5 C6");
}

// The last write is that of the records that wait for the end of the run.
TEST_F(ReplaceTest, AWriteThatFailsIsToldAlsoAtTheEnd) {
    bool fired = true;
    for (int n = 1; fired; n++) {
        begin_anew();
        start_with("X1\r\nX2\r\nX3\r\n");
        platform::answer_other_boxes("OK");
        platform::fail_file_call(platform::FileCall::WRITE, n, ENOSPC);
        replace_all("X", "Y", 0);
        fired = platform::file_fault_fired();
        const bool told = shown_boxes()[0].text.find("has stopped at row") != std::string::npos;
        EXPECT_EQ(told, fired) << "write " << n;
        ASSERT_LT(n, 20);
    }
    platform::answer_other_boxes("");
}

// Unseen bytes are read in pieces: a match may begin in one and end in the next.
TEST_F(ReplaceTest, AMatchIsSeenWhereverTheRowsBytesAreParted) {
    std::string file;
    for (std::size_t i = 0; i < 1100; ++i)
        file += std::string(400 + i, 'x') + "G0\r\n";
    start_with(file);
    replace_all("G0", "Y", 2);
    EXPECT_EQ(shown_boxes().back().text.find("Rows left with a match: 1100."), 0u);
}

}  // namespace
}  // namespace hexlane
