// Where the highlight and the page of the results screen go.

#include "compare/results_walk.h"

#include <gtest/gtest.h>

#include <random>

namespace hexlane {
namespace {

constexpr int32_t LIST_ROWS = 23;

void expect_on_the_list(const ResultsWalk& walk) {
    ASSERT_GE(walk.current_record, 0);
    ASSERT_LE(walk.current_record, walk.last_record);
    ASSERT_GE(walk.cursor_line, 0);
    ASSERT_LE(walk.cursor_line, walk.list_rows);
    ASSERT_GE(top_record(walk), 0);
    ASSERT_GE(walk.scroll_pos, 0);
    ASSERT_LE(walk.scroll_pos, walk.scroll_max);
}

// Any sequence of moves over lists of any length.
TEST(ResultsWalkTest, TheHighlightStaysOnTheListAndThePage) {
    std::mt19937 random(3);
    void (*const moves[])(ResultsWalk*) = {walk_home, walk_end,  walk_page_up, walk_page_down,
                                           walk_up,   walk_down, walk_line_up, walk_line_down};
    for (const int64_t last : {0, 1, 22, 23, 24, 46, 59, 1000, 700000, 4000000}) {
        SCOPED_TRACE(last);
        ResultsWalk walk;
        begin_walk(&walk, last, LIST_ROWS);
        for (int step = 0; step < 2000; step++) {
            const auto record = static_cast<int64_t>(random() % static_cast<unsigned long>(last + 1));
            const auto choice = random() % 11;
            if (choice < 8)
                moves[choice](&walk);
            else if (choice == 8)
                walk_to_thumb(&walk, static_cast<int32_t>(random() % 30001));
            else if (record > walk.current_record)
                walk_forward_to(&walk, record);
            else
                walk_backward_to(&walk, record);
            expect_on_the_list(walk);
            if (choice > 8) {
                EXPECT_EQ(walk.current_record, record);
            }
            if (HasFatalFailure())
                return;
        }
    }
}

TEST(ResultsWalkTest, TheScrollBarReachesTheWholeOfALongList) {
    ResultsWalk walk;
    begin_walk(&walk, 690000, LIST_ROWS);
    EXPECT_EQ(walk.scroll_max, 30000);
    EXPECT_EQ(walk.scroll_scale, 1.0f);
    begin_walk(&walk, 4000000, LIST_ROWS);
    EXPECT_EQ(walk.scroll_max, 30000);
    EXPECT_FLOAT_EQ(walk.scroll_scale, 4000000 / 30000.0f);
    walk_to_thumb(&walk, 15000);
    EXPECT_NEAR(static_cast<double>(walk.current_record), 2000000, 1);
    walk_to_thumb(&walk, 30000);
    EXPECT_NEAR(static_cast<double>(walk.current_record), 4000000, 1);
    walk_home(&walk);
    EXPECT_EQ(walk.scroll_pos, 0);
}

// As the last page up left it: the first press at the top keeps the line of the highlight, the second does
// not.
TEST(ResultsWalkTest, PageUpTwiceAtTheTopGoesToTheFirstRecord) {
    ResultsWalk walk;
    begin_walk(&walk, 100, LIST_ROWS);
    for (int i = 0; i < 5; i++)
        walk_down(&walk);
    walk_page_up(&walk);
    EXPECT_EQ(walk.current_record, 5);
    walk_page_up(&walk);
    EXPECT_EQ(walk.current_record, 0);
    EXPECT_EQ(walk.cursor_line, 0);
}

TEST(ResultsWalkTest, FindsLandInsideANewPage) {
    struct Case {
        int64_t from;
        int64_t to;
        int32_t line;
    };
    const Case cases[] = {{0, 23, 23},  {0, 24, 3},   {0, 99, 3},  {99, 90, 14},
                          {99, 75, 20}, {99, 26, 20}, {99, 25, 0}, {99, 0, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.to);
        ResultsWalk walk;
        begin_walk(&walk, 99, LIST_ROWS);
        if (c.from > 0)
            walk_end(&walk);
        if (c.to > c.from)
            walk_forward_to(&walk, c.to);
        else
            walk_backward_to(&walk, c.to);
        EXPECT_EQ(walk.current_record, c.to);
        EXPECT_EQ(walk.cursor_line, c.line);
    }
}

}  // namespace
}  // namespace hexlane
