// The utilities as commands over a document: which rows they take, what they leave, what they tell.

#include "ncutils/utilities.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/test_hooks.h"
#include "shell/block.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "store/save.h"
#include "store/store_fault.h"
#include "unit/store/store_fixture.h"

#include <cerrno>

namespace hexlane {
namespace {

using namespace platform;

using Rows = std::vector<std::string>;

class UtilitiesTest : public ProgramTest {
protected:
    void open(const Rows& texts) {
        std::string file;
        for (const std::string& text : texts)
            file += text + "\r\n";
        start_with(file);
        forget_shown_boxes();
    }

    static RowRun shift() {
        WordRun words = {letter_bit('X'), 0, shift_number, 1, {}};
        RowRun run;
        EXPECT_EQ(run_over_words(&words, 13, &run), 1);
        return run;
    }
};

// A long document that crosses segments and windows of the tiny limits.
Rows many_rows() {
    Rows texts;
    for (int i = 0; i < 40; i++)
        texts.push_back("X" + std::to_string(i));
    return texts;
}

TEST_F(UtilitiesTest, TheRunTakesTheBlockOrAllButTheEndRow) {
    const struct {
        const char* label;
        Block selected;
        int32_t first, end;
    } cases[] = {
        {"no block", NO_BLOCK, 0, 4},
        {"rows, those at its ends too", {{0, 0, 1}, {0, 0, 2}}, 1, 3},
        {"from the bottom up", {{0, 0, 3}, {0, 0, 1}}, 1, 4},
        {"with the end row", {{0, 0, 3}, {0, 0, 4}}, 3, 5},
        {"behind the end row", {{0, 0, 3}, {0, 0, 9}}, 3, 5},
        {"inside a row", {{0, 0, 2}, {5, 0, -1}}, 2, 0},
    };
    open({"A", "B", "C", "D"});
    for (const auto& c : cases) {
        block = c.selected;
        EXPECT_EQ(row_range().run_first, c.first) << c.label;
        EXPECT_EQ(row_range().run_end, c.end) << c.label;
    }
    block = {{0, 0, 1}, {1, 0, -1}};
    RowRun run;
    ASSERT_TRUE(renumber_rows(1, 1, true, 0, 0, &run));
    EXPECT_EQ(child[0].modified, 0);
    EXPECT_FALSE(run.stopped);
    EXPECT_EQ(origins(), "OOOOO");
}

// A row shows ROW_FETCH_MAX characters, and nothing behind a 0x1A. With a chosen word there, or the rest of a
// number, no word of the row is computed: it would be done by half.
TEST_F(UtilitiesTest, ARowWithWordsThatItDoesNotShowStaysWhole) {
    const std::string filler = repeated('G', ROW_FETCH_MAX - 3);
    const struct {
        std::string before, after;
    } cases[] = {
        {filler + "X12" + "34 G5", ""},
        {filler + "X12" + " G5", filler + "X13 G5"},
        {filler + "X12" + " X7.5", ""},
        {filler + "X12" + "(X7.5) G1", filler + "X13(X7.5) G1"},
        {"X1 (" + filler + " X5", "X2 (" + filler + " X5"},
        {"X1 (" + filler + repeated(' ', 400) + ") X5", ""},
        {filler + "G01" + "X5", ""},
        {"X1\x1A Y2", "X2\x1A Y2"},
        {"X1\x1A X2", ""},
        {"X1", "X2"},
    };
    Rows texts;
    std::string shifted;
    for (const auto& c : cases) {
        texts.push_back(c.before);
        shifted += (c.after.empty() ? c.before : c.after) + "\r\n";
    }
    open(texts);
    const RowRun run = shift();
    EXPECT_EQ(run.left, 5);
    EXPECT_EQ(run.first_left, 0);
    command(1002);
    EXPECT_EQ(bytes(), shifted);

    // A conversion changes nothing at all then, and says so. Its position would be wrong behind such a row.
    for (const WordArithmetic arithmetic : {increment_from_absolute, absolute_from_increment}) {
        begin_anew();
        open(texts);
        WordRun words = {letter_bit('X'), 0, arithmetic, 0, {}};
        RowRun refused;
        EXPECT_TRUE(run_over_words(&words, 15, &refused));
        EXPECT_TRUE(refused.refused);
        EXPECT_EQ(origins(), repeated('O', static_cast<int>(texts.size()) + 1));
        answer_box("OK");
        tell_run(refused);
        EXPECT_EQ(shown_boxes().back().text.find("Rows that cannot be converted: "), 0U);
    }
}

TEST_F(UtilitiesTest, ARunEndsWithItsRowCountAndNoMessage) {
    open(many_rows());
    shift();
    EXPECT_EQ(status_text(105), "40");
    EXPECT_EQ(status_text(101), "                              ");
}

class FailingRunTest : public UtilitiesTest {
protected:
    // Shifts a document whose n-th write of temporary files fails like all behind it. Gives whether that has
    // happened. Then the person goes on after the medium has recovered, or saves while it has not.
    bool run_with_fault(int n, bool recovers) {
        record_file_calls();
        open(many_rows());
        answer_other_boxes("OK");
        fail_file_call(FileCall::WRITE, n, EIO, directories.temp_dir, -1);
        const RowRun run = shift();
        const bool fired = file_fault_fired();
        const int32_t done = run.stopped ? run.row + 1 : 40;  // the last of them is the unsaved row
        Rows expected;
        for (int i = 0; i < 40; i++)
            expected.push_back("X" + std::to_string(i < done ? i + 1 : i));
        expected.push_back("");
        EXPECT_EQ(rows(), expected);
        expect_refusal(fired);
        if (recovers) {
            reset_file_faults();
            EXPECT_EQ(edits_allowed(), 1);
            EXPECT_EQ(store_fault.damaged, 0);
            // What only stood in memory would be lost here.
            EXPECT_EQ(insert_blank_rows(20, 1), 1);
            expected.insert(expected.begin() + 20, "");
            check_table();
            EXPECT_EQ(rows(), expected);
        }
        std::string file;
        for (std::size_t i = 0; i + 1 < expected.size(); i++)
            file += expected[i] + "\r\n";
        EXPECT_EQ(save_file_as(path("other.nc").c_str()), 1);
        EXPECT_EQ(bytes("other.nc"), file);
        reset_file_faults();
        close_document();
        reset_desktop();
        return fired;
    }

    // With a row that is not stored no further run begins, and the person has been told once.
    void expect_refusal(bool refused) {
        EXPECT_EQ(unsaved_row.row >= 0, refused);
        EXPECT_EQ(edits_allowed(), !refused);
        if (refused) {
            RowRun run;
            const int beeps = beep_count();
            EXPECT_EQ(strip_line_numbers(&run), 0);
            EXPECT_EQ(beep_count(), beeps + 1);
        }
        pump_messages();
        EXPECT_EQ(shown_boxes().size(), refused ? 1U : 0U);
    }
};

TEST_F(FailingRunTest, ARunStopsAtTheFirstRowThatCannotBeStoredAndLosesNone) {
    int fired = 0;
    for (int n = 1; n <= fired + 1; n++) {
        SCOPED_TRACE(n);
        const bool first = run_with_fault(n, true);
        EXPECT_EQ(run_with_fault(n, false), first);
        fired += first;
    }
    // Each window of records is written once.
    EXPECT_GE(fired, 40 / SEGMENT_WINDOW_ROWS + 1);
    EXPECT_LE(fired, 40 / SEGMENT_WINDOW_ROWS + 2 * (40 / ROWS_PER_SEGMENT) + 1);
}

}  // namespace
}  // namespace hexlane
