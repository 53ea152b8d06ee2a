// store_model.h: a document as a plain list of whole rows in memory, with every edit done on it afresh, for
// tests and fuzzers to set the store against. What a utility makes of one row's text is taken from its own
// rule.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "ncutils/line_numbers.h"
#include "ncutils/utilities.h"
#include "search/matching.h"
#include "shell/store_limits.h"

namespace hexlane {

struct ModelRow {
    std::string text;  // all bytes but the line end
    std::string end;   // of an 'O' row: its bytes in the file
    char origin;
};

inline std::string shown(const ModelRow& row) {
    const std::string cut = row.text.substr(0, ROW_FETCH_MAX);
    return cut.substr(0, cut.find('\x1A'));
}

inline std::string rest(const ModelRow& row) {
    return row.text.substr(shown(row).size());
}

inline bool had_lf(const ModelRow& row) {
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

    void insert_blank(std::size_t i, std::size_t count = 1) {
        const std::size_t last = rows.size() - 1;
        const bool behind = i > last || (i == last && rows[last].text.empty());
        rows.insert(behind ? rows.end() : at(i), count, {"", "", 'B'});
    }

    void copy(std::size_t i, std::size_t count) {
        cut.assign(at(i), at(i + count));
        cut_part.clear();
    }

    void paste(std::size_t i) {
        insert_blank(i, cut.size());
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

    bool join(std::size_t i) {
        if (i + 1 >= rows.size() || !rest(rows[i]).empty() ||
            shown(rows[i]).size() + shown(rows[i + 1]).size() > ROW_EDIT_MAX)
            return false;
        rows[i] = {rows[i].text + rows[i + 1].text, "", 'C'};
        rows.erase(at(i + 1));
        add_end_row();
        if (i + 1 == rows.size() && !shown(rows[i]).empty())
            rows.push_back({"", "", 'B'});
        return true;
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

}  // namespace hexlane
