#include <cstdlib>
#include <functional>
#include <set>

#include "ncutils/utilities.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "search/match_view.h"
#include "shell/child.h"
#include "shell/store_limits.h"
#include "store/cut_file.h"
#include "store/save.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

constexpr int ROWS = 2 * ROW_COUNT_STEP + ROW_COUNT_STEP / 2;

class RowCountTest : public ProgramTest {
protected:
    // Runs `act`, which shows two counts ahead of its end.
    static void expect_counts(const char* name, const std::function<void()>& act) {
        std::set<int> counts;
        platform::watch_painted_texts([&counts](const std::string& text) {
            const int count = std::atoi(text.c_str());
            if (count > 1 && count < ROWS)
                counts.insert(count);
        });
        act();
        platform::watch_painted_texts({});
        EXPECT_EQ(counts.size(), 2U) << name;
    }
};

TEST_F(RowCountTest, EachLongRunShowsHowFarItIs) {
    std::string file;
    for (int row = 0; row < ROWS; row++)
        file += "N1 X1\r\n";
    expect_counts("load", [&] { start_with(file); });
    expect_counts("copy for a compare", write_compare_snapshot);
    platform::copy_text(search_texts.find_text, SEARCH_TEXT_SIZE, "Q");
    search_texts.replace_opened = true;
    platform::answer_box("Replace All");
    platform::answer_box("OK");
    expect_counts("search", [] { command(1012); });
    RowRun run;
    expect_counts("utility", [&run] { strip_line_numbers(&run); });
    expect_counts("save", save_file);
    ASSERT_EQ(copy_rows_to_cut_file(0, ROWS), 1);
    expect_counts("paste", [] { EXPECT_EQ(paste_rows_from_cut_file(0, ROWS), 1); });
}

}  // namespace
}  // namespace hexlane
