// Long seeded sequences of edits, saves and reloads against a plain model in memory: rows after each step,
// the table's invariants, and the bytes on disk after each save. The build with small limits crosses every
// boundary. What a utility makes of one row's text is taken from its own rule, which has tests of its own.

#include <algorithm>
#include <random>

#include "ncutils/utilities.h"
#include "platform/scripted/test_hooks.h"
#include "search/match_view.h"
#include "shell/block.h"
#include "shell/status_line.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "support/store_model.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace std::string_literals;

class ModelTest : public ProgramTest {
protected:
    void check(const Model& model) {
        check_table();
        std::string letters;
        for (const ModelRow& row : model.rows)
            letters += row.origin;
        ASSERT_EQ(origins(), letters);
        for (std::size_t i = 0; i < model.rows.size(); i++) {
            ASSERT_TRUE(fetch_row(static_cast<int32_t>(i)));
            ASSERT_EQ(child[0].row_text, shown(model.rows[i])) << "row " << i;
            ASSERT_EQ(row_had_lf != 0, had_lf(model.rows[i])) << "row " << i;
        }
    }

    // One of the block's commands on whole rows.
    static void block_command(int id, int32_t row, std::size_t count) {
        block.start = {0, 0, row};
        block.end = {0, 0, row + static_cast<int32_t>(count) - 1};
        child[0].block_active = 1;
        command(id);
        block_clear();
    }

    // The same on a part of a row.
    static void part_command(int id, int32_t row, std::size_t from, std::size_t to) {
        block.start = {static_cast<int16_t>(from), 0, row};
        block.end = {static_cast<int16_t>(to), -1, -1};
        child[0].block_active = 1;
        command(id);
        block_clear();
    }

    static void replace_all(char c, const std::string& by) {
        search_texts.find_text[0] = c;
        search_texts.find_text[1] = '\0';
        platform::copy_text(search_texts.replace_text, SEARCH_TEXT_SIZE, by.c_str());
        search_texts.replace_opened = true;
        platform::answer_box("Replace All");
        command(1012);
    }

    void step(Model* model, std::mt19937& random);
    void run(unsigned seed, int steps);
};

std::string random_text(std::mt19937& random, std::size_t limit) {
    static const std::size_t lengths[] = {0, 1, 2, 5, 12, 30, 120, 250, 254, 255, 300};
    static const char* const heads[] = {"N7 ", "n", "/N0020\t", "N"};
    std::string text = random() % 3 == 0 ? heads[random() % 4] : "";
    const std::size_t wanted = std::min(lengths[random() % 11], limit);
    while (text.size() < wanted)
        text += random() % 60 == 0 ? '\r' : static_cast<char>(' ' + random() % 95);
    return text;
}

std::string random_file(std::mt19937& random) {
    std::string file;
    const auto rows = random() % 4 == 0 ? random() % 3 : random() % 60;
    int nuls = 0;  // few enough to raise no question
    for (unsigned long row = 0; row < rows; row++) {
        std::string text = random_text(random, 1000);
        if (random() % 12 == 0)
            text.insert(random() % (text.size() + 1), "\x1A");
        const auto end = random() % 20;
        const bool nul = end == 19 && ++nuls <= NULL_TEST_LIMIT;
        file += text + (nul ? "\0"s : end < 12 ? "\r\n"s : "\n"s);
    }
    if (random() % 3 == 0)
        file += random_text(random, 40);
    return file;
}

void ModelTest::step(Model* model, std::mt19937& random) {
    const std::size_t i = random() % model->rows.size();
    const auto row = static_cast<int32_t>(i);
    child[0].current_row = row;
    child[0].caret_row = 0;
    switch (random() % 22) {
    case 0:
    case 1:
    case 2: {
        const std::string text = random_text(random, ROW_PASTE_MAX);
        ASSERT_TRUE(fetch_row(row));
        put_row_text(text);
        child[0].pending_row = row;
        child[0].modified = 1;
        ASSERT_TRUE(commit_pending());
        model->commit(i, text);
        break;
    }
    case 3:
    case 4:
    case 5: {
        const std::size_t length = shown(model->rows[i]).size();
        const std::size_t column = random() % 3 == 0 ? 0 : random() % (length + 3);
        ASSERT_TRUE(split_row(row, static_cast<int32_t>(column)));
        model->split(i, column);
        break;
    }
    case 6:
    case 7:
        fetch_row(row);
        join_rows(row);
        model->join(i);
        break;
    case 8:
    case 9: {
        const std::size_t most = random() % 4 == 0 ? model->rows.size() + 2 : 4;
        const std::size_t count = std::min(1 + random() % most, model->rows.size() - i);
        ASSERT_TRUE(delete_rows(row, static_cast<int32_t>(count)));
        child[0].modified = 1;
        model->erase(i, count);
        break;
    }
    case 10:
        ASSERT_TRUE(insert_blank_rows(row, 1));
        child[0].modified = 1;
        model->insert_blank(i);
        break;
    case 11:
    case 12: {
        const std::size_t count = std::min(1 + random() % 12, model->rows.size() - i);
        const int id = random() % 2 == 0 ? 1008 : random() % 2 == 0 ? 1009 : 1011;
        block_command(id, row, count);
        if (id != 1011)
            model->copy(i, count);
        if (id != 1009)
            model->erase(i, count);
        break;
    }
    case 13:
    case 14:
        if (model->rows.size() > 120)
            break;
        child[0].caret_col = static_cast<int32_t>(random() % 12);
        command(1010);
        if (model->cut.empty())
            model->paste_part(i, static_cast<std::size_t>(child[0].caret_col));
        else
            model->paste(i);
        break;
    case 15: {
        static const char* const texts[] = {"", "Q", "##", "(e 7)"};
        const char c = "e7N "[random() % 4];
        const std::string by = texts[random() % 4];
        replace_all(c, by);
        model->replace_all(c, by);
        break;
    }
    case 16: {
        RowRun run;
        if (random() % 3 == 0) {
            ASSERT_TRUE(strip_line_numbers(&run));
            model->strip();
        } else {
            const bool all = random() % 2 == 0;
            ASSERT_TRUE(renumber_rows(10, 5, all, 95, 3, &run));
            model->renumber({5, 10, 3, 95, all, 5});
        }
        ASSERT_FALSE(run.stopped);
        break;
    }
    case 17:
    case 18: {
        const std::size_t from = random() % 8, to = from + random() % 8;
        const bool cut = random() % 2 == 0;
        part_command(cut ? 1008 : 1011, row, from, to);
        model->take_part(i, from, to, cut);
        break;
    }
    case 19:
    case 20: {
        static const WordArithmetic arithmetics[] = {scale_number, shift_number, increment_from_absolute,
                                                     absolute_from_increment};
        const auto letters = static_cast<LetterSet>(random() % (1U << LETTER_COUNT));
        WordRun words = {letters, static_cast<int>(random() % 5), arithmetics[random() % 4], 2.5F, {}};
        model->rewrite(words);
        RowRun run;
        ASSERT_TRUE(run_over_words(&words, STATUS_SCALE, &run));
        ASSERT_FALSE(run.stopped);
        break;
    }
    default: {
        const std::string saved = model->save();
        child[0].modified = 1;
        command(1002);
        ASSERT_EQ(bytes(), saved.empty() ? "\r\n" : saved);  // the load gives an empty file a line end
        model->load(saved);
        break;
    }
    }
}

void ModelTest::run(unsigned seed, int steps) {
    std::mt19937 random(seed);
    const std::string file = random_file(random);
    platform::answer_other_boxes("OK");
    start_with(file);
    ASSERT_EQ(bytes(), file.empty() ? "\r\n" : file);
    ASSERT_EQ(child[0].modified, 0);
    Model model(file);
    ASSERT_NO_FATAL_FAILURE(check(model));
    for (int count = 0; count < steps; count++) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(count));
        ASSERT_NO_FATAL_FAILURE(step(&model, random));
        ASSERT_NO_FATAL_FAILURE(check(model));
    }
}

TEST_F(ModelTest, RandomEditsSavesAndReloadsKeepEveryByte) {
    const unsigned seeds = getenv("HEXLANE_TEST_FULL") != nullptr ? 400 : 40;
    for (unsigned seed = 1; seed <= seeds; seed++) {
        ASSERT_NO_FATAL_FAILURE(run(seed, 60));
        begin_anew();
    }
}

}  // namespace
}  // namespace hexlane
