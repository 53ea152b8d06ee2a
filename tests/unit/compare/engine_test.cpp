// The records of a compare: the results that the rules give, and the rules themselves done step by step over
// random files.

#include <algorithm>
#include <filesystem>
#include <random>

#include "compare/compare.h"
#include "compare/compare_record_format.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/test_hooks.h"
#include "shell/directories.h"
#include "support/compare_model.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

class EngineTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start();
        begin_compare("", "", "", "");  // no side is open yet
    }
    void TearDown() override {
        close_compare();
        ProgramTest::TearDown();
    }

    int run(const std::string& left, const std::string& right, int look_ahead = DEFAULT_LOOK_AHEAD,
            bool ignore_spaces = false) {
        write("left.nc", left);
        write("right.nc", right);
        return run_files(look_ahead, ignore_spaces);
    }

    int run_files(int look_ahead = DEFAULT_LOOK_AHEAD, bool ignore_spaces = false) {
        close_compare();
        begin_compare(path("left.nc").c_str(), "left.nc", path("right.nc").c_str(), "right.nc");
        compare.look_ahead = look_ahead;
        compare.ignore_spaces = ignore_spaces;
        return run_compare();
    }

    static std::string kinds() {
        std::string letters;
        for (int64_t number = 0; number <= compare.last_record; number++) {
            CompareRecord record;
            EXPECT_TRUE(load_record(number, &record));
            letters += record.kind;
        }
        return letters;
    }

    static bool identical() { return compare.mods + compare.inserts + compare.deletes == 0; }
};

// "A  B" is a program of three rows, the middle one blank; '|' ends the last row without a line end.
std::string program(const std::string& letters, const std::string& line_end = "\r\n") {
    std::string bytes;
    for (const char letter : letters) {
        if (letter == '|')
            bytes.resize(bytes.size() - line_end.size());
        else
            bytes += (letter == ' ' ? "" : std::string(1, letter)) + line_end;
    }
    return bytes;
}

struct Example {
    const char* left;
    const char* right;
    int look_ahead;
    const char* kinds;
    int64_t matches;
    int64_t mods;
    int64_t inserts;
    int64_t deletes;
};

TEST_F(EngineTest, RowsPairAsTheRulesSay) {
    const Example examples[] = {
        {"ABC", "AQC", 20, "SMS", 3, 1, 0, 0},
        {"ABCDE", "ABXCDE", 20, "SSISSS", 6, 0, 1, 0},
        {"ABXCDE", "ABCDE", 20, "SSDSSS", 6, 0, 0, 1},
        {"AB", "ABCD", 20, "SSII", 2, 0, 2, 0},
        {"ABCD", "ABCD", 20, "SSSS", 5, 0, 0, 0},
        {"ABCDEFG", "PQRDEFG", 1, "MMMSSSS", 5, 3, 0, 0},
        // Behind both ends there is no record.
        {"AB", "AC", 20, "SM", 1, 1, 0, 0},
        {"A", "B", 20, "M", 0, 1, 0, 0},
        // Rows behind one end.
        {"", "A", 20, "I", 0, 0, 1, 0},
        {"", "ABC", 20, "MMI", 0, 2, 1, 0},
        {"A", "", 20, "M", 0, 1, 0, 0},
        {"", "", 20, "", 0, 0, 0, 0},
        // Last rows without a line end, of one byte too.
        {"AB|", "AB|", 20, "SS", 3, 0, 0, 0},
        {"AB|", "AB", 20, "SM", 1, 1, 0, 0},
        {"A", "AB|", 20, "SI", 1, 0, 1, 0},
        // Blank rows: equal files begin with one, and one alone does not bring the sides into step.
        {" AB", " AB", 20, "SSS", 4, 0, 0, 0},
        {"A   B", "X   B", 20, "MMMMS", 2, 4, 0, 0},
    };
    for (const Example& e : examples) {
        SCOPED_TRACE(std::string(e.left) + " " + e.right);
        ASSERT_TRUE(run(program(e.left), program(e.right), e.look_ahead));
        EXPECT_EQ(kinds(), e.kinds);
        EXPECT_EQ(compare.matches, e.matches);
        EXPECT_EQ(compare.mods, e.mods);
        EXPECT_EQ(compare.inserts, e.inserts);
        EXPECT_EQ(compare.deletes, e.deletes);
        EXPECT_FALSE(compare.cut_short);
    }
}

TEST_F(EngineTest, BytesCountAsTheyStandUnlessSpacesAreIgnored) {
    struct Case {
        const char* left;
        const char* right;
        bool ignore_spaces;
        bool same;
    };
    const Case cases[] = {
        {"G1 X1\r\n", "G1X1\r\n", false, false}, {"G1 X1\r\n", "G1X1\r\n", true, true},
        {"Y2\r\n", "Y 2\r\n", true, true},       {" \t \r\n", "\r\n", true, true},
        {" \t \r\n", "\r\n", false, false},      {"X1 \r\n", "\tX1\r \n", true, true},
        {"x\r\n", "X\r\n", true, false},         {"X\r\n", "X\n", true, false},
        {"X\nY\n", "X\nY\n", false, true},       {"X\r\nM30", "X\r\nM31", false, false},
        {"X\r\nM30", "X\r\nM30 ", true, true},   {"X\r\nM30", "X\r\nM30 ", false, false},
        {"\n\n", "\n\n", false, true},           {"X", "X", true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.left) + c.right);
        ASSERT_TRUE(run(c.left, c.right, DEFAULT_LOOK_AHEAD, c.ignore_spaces));
        EXPECT_EQ(identical(), c.same);
    }
}

// Whatever an earlier run has left behind.
TEST_F(EngineTest, EqualFilesAreIdenticalBehindAnyOtherRun) {
    for (const std::string text : {"\r\nA\r\n", "\r\n", "\n", "A", "\r\n\r\nA"}) {
        ASSERT_TRUE(run("A\r\nB\r\n", "X\r\nY\r\n"));
        ASSERT_TRUE(run(text, text));
        EXPECT_TRUE(identical()) << text;
    }
}

// ---- Against the steps done one by one ---------------------------------------------------------------

unsigned below(std::mt19937* random, unsigned limit) {
    return static_cast<unsigned>((*random)() % limit);
}

std::string random_program(std::mt19937* random, unsigned rows, unsigned letters) {
    const char* const line_ends[] = {"\r\n", "\r\n", "\r\n", "\n", ""};
    std::string bytes;
    for (unsigned i = 0; i < rows; i++) {
        for (unsigned length = below(random, 3); length > 0; length--) {
            bytes += below(random, 20) == 0 ? '\0' : static_cast<char>('A' + below(random, letters));
            if (below(random, 4) == 0)
                bytes += below(random, 2) == 0 ? ' ' : '\t';
        }
        bytes += line_ends[below(random, 5)];
    }
    return bytes;
}

// A copy with some rows changed, put in or taken out.
std::string altered(std::mt19937* random, const std::string& bytes, unsigned one_in) {
    std::string result;
    for (size_t at = 0; at < bytes.size();) {
        const size_t end = std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
        const std::string row = bytes.substr(at, end - at);
        const unsigned what = below(random, 4 * one_in);
        result += what == 0 ? "" : what == 1 ? "Z" + row : what == 2 ? row + "Q\r\n" : row;
        at = end;
    }
    return result;
}

// Each row of each side in one record, in order; what stands as equal is equal.
void expect_every_row_once(const std::string& left, const std::string& right, bool ignore_spaces) {
    const auto row = [ignore_spaces](const std::string& bytes, size_t at) {
        std::string text = bytes.substr(at, std::min(bytes.find('\n', at), bytes.size()) + 1 - at);
        if (ignore_spaces)
            std::erase_if(text, [](char byte) { return byte == ' ' || byte == '\t'; });
        return text;
    };
    size_t left_at = 0;
    size_t right_at = 0;
    const auto step = [](const std::string& bytes, size_t at) {
        return bytes.empty() ? 0 : std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
    };
    for (int64_t number = 0; number <= compare.last_record; number++) {
        CompareRecord record;
        ASSERT_TRUE(load_record(number, &record));
        ASSERT_EQ(record.left_offset, left_at) << number;
        ASSERT_EQ(record.right_offset, right_at) << number;
        ASSERT_FALSE(left_at == left.size() && right_at == right.size()) << number;
        if (record.kind == SAME_ROWS) {
            ASSERT_EQ(row(left, left_at), row(right, right_at)) << number;
        }
        if (record.kind != INSERTED_ROW && left_at < left.size())
            left_at = step(left, left_at);
        if (record.kind != DELETED_ROW && right_at < right.size())
            right_at = step(right, right_at);
    }
    EXPECT_EQ(left_at, left.size());
    EXPECT_EQ(right_at, right.size());
}

TEST_F(EngineTest, RandomFilesFollowTheSteps) {
    std::mt19937 random(11);
    for (int round = 0; round < 700; round++) {
        const bool ignore_spaces = below(&random, 2) == 0;
        const int look_ahead = below(&random, 5) == 0 ? 20 : 1 + static_cast<int>(below(&random, 4));
        const std::string left = random_program(&random, below(&random, 40), 1 + below(&random, 6));
        const std::string right = below(&random, 4) == 0 ? random_program(&random, below(&random, 40), 3)
                                                         : altered(&random, left, 1 + below(&random, 8));
        SCOPED_TRACE("round " + std::to_string(round));
        ASSERT_TRUE(run(left, right, look_ahead, ignore_spaces));
        EXPECT_EQ(difference_from(CompareModel(left, right, look_ahead, ignore_spaces)), "");
        expect_every_row_once(left, right, ignore_spaces);
        if (HasFatalFailure() || HasNonfatalFailure())
            break;
    }
}

// Far beyond what memory holds of the list and what a window holds of a file, with rows that no window holds.
TEST_F(EngineTest, LongListsAndLongRowsFollowTheSteps) {
    std::mt19937 random(5);
    std::string left;
    for (int i = 0; i < 30000; i++)
        left += "N" + std::to_string(i) + " G1 X" + std::to_string(random() % 1000) + "\r\n";
    left.insert(100000, std::string(200000, 'X') + "\r\n" + std::string(300000, 'Y') + "\r\n");
    for (const bool ignore_spaces : {false, true}) {
        const std::string right = altered(&random, left, 20);
        ASSERT_TRUE(run(left, right, 20, ignore_spaces));
        EXPECT_GT(compare.last_record, 5 * COMPARE_MEMORY_RECORDS);
        EXPECT_EQ(difference_from(CompareModel(left, right, 20, ignore_spaces)), "");
        expect_every_row_once(left, right, ignore_spaces);
    }
}

// ---- The list of records -----------------------------------------------------------------------------

TEST_F(EngineTest, RecordsFromTheLimitOnStandInTheTemporaryFile) {
    std::string left;
    for (int i = 0; i < COMPARE_MEMORY_RECORDS + 2; i++)
        left += "N" + std::to_string(10000 + i) + "\r\n";
    const std::string right = left + "M30\r\n";
    ASSERT_TRUE(run(left, right));
    const std::string file =
        read_bytes(directories.temp_dir + std::string("/") + directories.temp_prefix + "tmpx.twr");
    // Record 4000, of the file's first bytes; behind the three records the blanks that the file began with.
    const uint32_t offset = 4000 * 8;
    ASSERT_EQ(file.size(), static_cast<size_t>(COMPARE_FILE_BLANKS));
    for (uint32_t i = 0; i < 3; i++) {
        const CompareRecord record = take_record(file.data() + i * COMPARE_RECORD_BYTES);
        EXPECT_EQ(record.kind, i < 2 ? 'S' : 'I');
        EXPECT_EQ(record.left_offset, offset + 8 * i);
        EXPECT_EQ(record.right_offset, offset + 8 * i);
    }
    CompareRecord record;
    EXPECT_FALSE(load_record(compare.last_record + 1, &record));
    EXPECT_EQ(record.kind, 0);
    EXPECT_EQ(find_difference(0, true), COMPARE_MEMORY_RECORDS + 2);
    EXPECT_EQ(find_difference(COMPARE_MEMORY_RECORDS + 1, false), -1);
}

// ---- Stop, failures, files that change ---------------------------------------------------------------

TEST_F(EngineTest, StopMakesAResultOfTheRowsUpToThere) {
    write("left.nc", program("ABCDEFGH"));
    write("right.nc", program("ABCDEFXH"));
    platform::act_at_pump(3, [] { stop_compare(); });
    ASSERT_TRUE(run_files());
    EXPECT_EQ(kinds(), "SSS");
    EXPECT_TRUE(identical());
    EXPECT_TRUE(compare.cut_short);

    write("right.nc", program("AXYZVW"));
    platform::act_at_pump(4, [] { stop_compare(); });
    ASSERT_TRUE(run_files());
    EXPECT_EQ(kinds(), "SMMMM");
    EXPECT_EQ(compare.mods, 5);  // the last one is given its kind twice

    write("right.nc", program("A"));
    platform::act_at_pump(4, [] { stop_compare(); });
    ASSERT_TRUE(run_files());
    EXPECT_EQ(kinds(), "SDDD");
}

TEST_F(EngineTest, FailuresNameTheirFile) {
    const char* at = nullptr;
    write("left.nc", "A\r\n");
    EXPECT_FALSE(run_files());
    EXPECT_EQ(compare_fault(&at), CompareFault::NOT_OPENED);
    EXPECT_EQ(at, path("right.nc"));

    write("right.nc", "A\r\n");
    std::filesystem::resize_file(path("right.nc"), LARGEST_COMPARED_FILE + 1);
    EXPECT_FALSE(run_files());
    EXPECT_EQ(compare_fault(&at), CompareFault::TOO_LARGE);
    EXPECT_EQ(at, path("right.nc"));

    std::string rows;
    for (int i = 0; i < 50000; i++)
        rows += "N" + std::to_string(i) + "\r\n";
    write("left.nc", rows);
    write("right.nc", rows);
    ASSERT_TRUE(platform::arm_file_faults_from_text("fail write 2 ENOSPC tmpx.twr"));
    EXPECT_FALSE(run_files());
    EXPECT_EQ(compare_fault(&at), CompareFault::NO_RECORDS);
    EXPECT_EQ(platform::last_file_error(), platform::FileError::DISK_FULL);
}

TEST_F(EngineTest, RowsOfAFileThatShrinksAreBlank) {
    std::string rows;
    for (int i = 0; i < 50000; i++)
        rows += "N" + std::to_string(100000 + i) + "\r\n";
    ASSERT_TRUE(run(rows, rows + "M30\r\n"));
    EXPECT_EQ(compare_was_disturbed(), nullptr);
    char text[80];
    bool ended = false;
    for (const uint32_t row : {0U, 40000U, 3U, 49999U}) {
        EXPECT_EQ(read_compared_row(compare.left, 9 * row, text, sizeof text, &ended), 7);
        EXPECT_EQ(std::string(text, 7), "N" + std::to_string(100000 + row));
        EXPECT_TRUE(ended);
    }

    std::filesystem::resize_file(path("left.nc"), 1000);
    EXPECT_STREQ(compare_was_disturbed(), path("left.nc").c_str());
    EXPECT_EQ(read_compared_row(compare.left, 9 * 20000, text, sizeof text, &ended), 0);
    EXPECT_EQ(read_compared_row(compare.left, 9, text, sizeof text, &ended), 7);
    EXPECT_EQ(read_compared_row(compare.right, 9 * 20000, text, sizeof text, &ended), 7);

    // The same while the compare runs: it ends.
    write("left.nc", rows);
    write("right.nc", rows);
    platform::act_at_pump(100, [this] { std::filesystem::resize_file(path("left.nc"), 2000); });
    ASSERT_TRUE(run_files());
    EXPECT_STREQ(compare_was_disturbed(), path("left.nc").c_str());
}

}  // namespace
}  // namespace hexlane
