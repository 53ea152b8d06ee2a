// Long seeded sequences of edits, saves and reloads against a plain model in memory: rows after each step,
// the table's invariants, and the bytes on disk after each save. The build with small limits crosses every
// boundary. What a utility makes of one row's text is taken from its own rule, which has tests of its own.

#include <algorithm>
#include <random>

#include "ncutils/line_numbers.h"
#include "ncutils/utilities.h"
#include "platform/scripted/test_hooks.h"
#include "search/match_view.h"
#include "shell/block.h"
#include "shell/status_line.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "unit/store/store_fixture.h"

namespace hexlane {
namespace {

using namespace std::string_literals;

struct ModelRow {
    std::string text;  // all bytes but the line end
    std::string end;   // of an 'O' row: its bytes in the file
    char origin;
};

std::string shown(const ModelRow& row) {
    const std::string cut = row.text.substr(0, ROW_FETCH_MAX);
    return cut.substr(0, cut.find('\x1A'));
}

std::string rest(const ModelRow& row) {
    return row.text.substr(shown(row).size());
}

bool had_lf(const ModelRow& row) {
    const bool ended = row.origin == 'C' || (row.origin == 'O' && !row.end.empty() && row.end.back() == '\n');
    return ended && shown(row).size() < ROW_FETCH_MAX && row.text.find('\x1A') == std::string::npos;
}

class Model {
public:
    explicit Model(const std::string& file) { load(file); }

    void load(std::string file) {
        rows.clear();
        cut.clear();
        cut_part.clear();
        if (file.empty())
            file = "\r\n";
        std::size_t start = 0;
        for (std::size_t at = 0; at <= file.size(); at++) {
            if (at < file.size() && file[at] != '\n' && file[at] != '\0')
                continue;
            std::string text = file.substr(start, at - start);
            std::string end = at < file.size() ? file.substr(at, 1) : "";
            if (end == "\n" && !text.empty() && text.back() == '\r') {
                text.pop_back();
                end = "\r\n";
            }
            rows.push_back({text, end, 'O'});
            start = at + 1;
        }
        if (!shown(rows.back()).empty())
            rows.push_back({"", "", 'B'});
    }

    std::string save() const {
        std::string file;
        bool owed = false;
        for (std::size_t i = 0; i < rows.size(); i++) {
            const ModelRow& row = rows[i];
            if (row.origin == 'O') {
                file += row.text + row.end;
                owed = row.end.empty();
                continue;
            }
            if (owed && (i + 1 < rows.size() || !row.text.empty()))
                file += "\r\n";
            owed = false;
            file += row.text + "\r\n";
        }
        return file;
    }

    void commit(std::size_t i, const std::string& text) {
        rows[i] = {text + rest(rows[i]), "", 'C'};
        if (i + 1 == rows.size() && !rows[i].text.empty())
            rows.push_back({"", "", 'B'});
    }

    void insert_blank(std::size_t i) {
        const std::size_t last = rows.size() - 1;
        if (i > last || (i == last && rows[last].text.empty()))
            rows.push_back({"", "", 'B'});
        else
            rows.insert(at(i), {"", "", 'B'});
    }

    void copy(std::size_t i, std::size_t count) {
        cut.assign(at(i), at(i + count));
        cut_part.clear();
    }

    void paste(std::size_t i) {
        for (std::size_t row = 0; row < cut.size(); row++)
            insert_blank(i);
        for (std::size_t row = 0; row < cut.size(); row++)
            rows[i + row] = {cut[row].text, "", 'C'};
    }

    // The text in the place of every `c`, in either case, as long as the row fits and shows all of them.
    void replace_all(char c, const std::string& by) {
        const auto matches = [c](char other) { return fold_letter(other) == fold_letter(c); };
        for (ModelRow& row : rows) {
            const std::string old = shown(row);
            std::string made;
            for (std::size_t i = 0; i < old.size(); i++) {
                const std::size_t length = made.size() + by.size() + old.size() - i - 1;
                made += matches(old[i]) && length < ROW_BUFFER_SIZE ? by : old.substr(i, 1);
            }
            const std::string behind = rest(row);
            if (made != old && std::none_of(behind.begin(), behind.end(), matches))
                row = {made + behind, "", 'C'};
        }
    }

    void renumber(Numbering numbering) {
        for (std::size_t i = 0; i < program_end(); i++) {
            char text[ROW_BUFFER_SIZE];
            if (renumber_row_text(&numbering, shown(rows[i]).c_str(), text, sizeof text) ==
                NumberedRow::NUMBERED)
                rows[i] = {text + rest(rows[i]), "", 'C'};
        }
    }

    void strip() {
        for (std::size_t i = 0; i < program_end(); i++) {
            char text[ROW_BUFFER_SIZE];
            strip_row_text(shown(rows[i]).c_str(), text);
            rows[i] = {text + rest(rows[i]), "", 'C'};
        }
    }

    // A row stays that has words, or the rest of a number, in the bytes that it does not show. A conversion
    // is done for all rows or for none.
    void rewrite(WordRun words) {
        const bool all = words.arithmetic != scale_number && words.arithmetic != shift_number;
        std::vector<ModelRow> before = rows;
        bool left = false;
        for (std::size_t i = 0; i < program_end(); i++) {
            char text[ROW_BUFFER_SIZE];
            const std::string behind = rest(rows[i]);
            RewrittenRow made = rewrite_words(&words, shown(rows[i]).c_str(), text, sizeof text);
            const bool goes_on =
                words_go_on(&made, words.letters, behind.c_str(), static_cast<int>(behind.size()));
            left = left || made.length < 0 || goes_on;
            if (made.words > 0 && made.length >= 0 && !goes_on)
                rows[i] = {text + behind, "", 'C'};
        }
        if (all && left)
            rows.swap(before);
    }

    // The row behind the last one but an empty end row.
    std::size_t program_end() const { return rows.size() - (rows.back().text.empty() ? 1 : 0); }

    // Takes the columns from `from` up to `to` out of a row, into the buffer too if it is a cut.
    void take_part(std::size_t i, std::size_t from, std::size_t to, bool is_cut) {
        const std::string text = shown(rows[i]);
        to = std::min(to, text.size());
        if (from >= to)
            return;
        commit(i, text.substr(0, from) + text.substr(to));
        if (!is_cut)
            return;
        cut.clear();
        cut_part = text.substr(from, to - from);
    }

    void paste_part(std::size_t i, std::size_t column) {
        const std::string text = shown(rows[i]);
        column = std::min(column, text.size());
        if (!cut_part.empty() && text.size() + cut_part.size() <= ROW_PASTE_MAX)
            commit(i, text.substr(0, column) + cut_part + text.substr(column));
    }

    void split(std::size_t i, std::size_t column) {
        if (column == 0) {
            insert_blank(i);
            return;
        }
        insert_blank(i + 1);
        if (column >= shown(rows[i]).size())
            return;
        rows[i + 1] = {rows[i].text.substr(column), "", 'C'};
        rows[i] = {rows[i].text.substr(0, column), "", 'C'};
    }

    void join(std::size_t i) {
        if (i + 1 >= rows.size() || !rest(rows[i]).empty() ||
            shown(rows[i]).size() + shown(rows[i + 1]).size() > ROW_EDIT_MAX)
            return;
        rows[i] = {rows[i].text + rows[i + 1].text, "", 'C'};
        rows.erase(at(i + 1));
        add_end_row();
        if (i + 1 == rows.size() && !shown(rows[i]).empty())
            rows.push_back({"", "", 'B'});
    }

    void erase(std::size_t i, std::size_t count) {
        if (i == 0 && count >= rows.size())
            rows.push_back({"", "", 'C'});
        if (i > 0)
            rows[i - 1].origin = 'C';
        rows.erase(at(i), at(std::min(i + count, rows.size())));
        add_end_row();
    }

    std::vector<ModelRow> rows;
    std::vector<ModelRow> cut;  // whole rows, or
    std::string cut_part;       // a part of one

private:
    std::vector<ModelRow>::iterator at(std::size_t i) {
        return rows.begin() + static_cast<std::ptrdiff_t>(i);
    }

    void add_end_row() {
        const std::size_t last = rows.size() - 1;
        if (last == 0 || rows[last].text.empty() || had_lf(rows[last - 1]))
            return;
        rows.push_back({"", "", 'C'});
    }
};

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
        std::memset(child[0].row_text, 0, sizeof child[0].row_text);
        std::memcpy(child[0].row_text, text.data(), text.size());
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
