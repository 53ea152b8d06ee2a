// fuzz_edits.cpp: a long random editing session beside a plain list of texts. The list knows each row whole,
// also the part behind what the editor shows; the store must give the same text at every step and the same
// file at every save.

#include "fuzz_program.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_table.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace hexlane;

constexpr std::size_t MOST_ROWS = 200;  // well below what the tiny limits can load

class Bytes {
public:
    Bytes(const uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}
    bool empty() const { return next_ == end_; }
    uint8_t take() { return empty() ? 0 : *next_++; }
    std::size_t below(std::size_t limit) { return take() % limit; }

private:
    const uint8_t* next_;
    const uint8_t* end_;
};

using Rows = std::vector<std::string>;

std::string shown(const std::string& row) {
    return row.substr(0, ROW_FETCH_MAX);
}

std::string hidden(const std::string& row) {
    return row.size() > ROW_FETCH_MAX ? row.substr(ROW_FETCH_MAX) : "";
}

void set_row_text(const std::string& text) {
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
    text.copy(child[0].row_text, sizeof child[0].row_text - 1);
}

// A deletion may put an empty row behind a last row with text; when it does depends on what stood there
// before.
void take_end_row(Rows* rows) {
    if (child[0].last_file_row == std::ssize(*rows) && !rows->back().empty())
        rows->emplace_back();
}

// The file that the session begins with: rows with either line end, some of them longer than the editor
// shows.
std::string first_file(Bytes* bytes) {
    std::string file;
    for (std::size_t rows = bytes->below(40); rows > 0; rows--) {
        const uint8_t kind = bytes->take();
        file.append(kind % 8 == 0 ? 200u + kind : kind % 24u, static_cast<char>('A' + rows % 26));
        file += kind < 100 ? "\r\n" : kind < 200 ? "\n" : "\r\n\r\n";
    }
    return file + std::string(bytes->below(8), 'z');
}

Rows rows_of(const std::string& file) {
    Rows rows(1);
    for (char c : file) {
        if (c == '\n')
            rows.emplace_back();
        else if (c != '\r')
            rows.back() += c;
    }
    return rows;
}

// ---- The steps, on store and list ----------------------------------------------------------------------

void split(Rows* rows, Bytes* bytes) {
    const std::size_t row = bytes->below(rows->size());
    const std::string text = (*rows)[row];
    const std::size_t column = std::min<std::size_t>(bytes->take(), shown(text).size());
    const auto place = rows->begin() + static_cast<std::ptrdiff_t>(row);
    fuzz::require(split_row(static_cast<int32_t>(row), static_cast<int32_t>(column)) == 1, "a split fails");
    if (column == 0) {
        const bool at_empty_end = row + 1 == rows->size() && text.empty();
        rows->insert(at_empty_end ? place + 1 : place, "");
    } else if (column == shown(text).size()) {
        rows->insert(place + 1, "");
    } else {
        *place = text.substr(0, column);
        rows->insert(place + 1, text.substr(column));
    }
}

void join(Rows* rows, Bytes* bytes) {
    const std::size_t row = bytes->below(rows->size());
    fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
    const bool joined = join_rows(static_cast<int32_t>(row)) == 1;
    const bool can_join = row + 1 < rows->size() && hidden((*rows)[row]).empty() &&
                          (*rows)[row].size() + shown((*rows)[row + 1]).size() <= ROW_EDIT_MAX;
    fuzz::require(joined == can_join, "a join was done that should not be, or was not");
    if (!joined)
        return;
    (*rows)[row] += (*rows)[row + 1];
    rows->erase(rows->begin() + static_cast<std::ptrdiff_t>(row) + 1);
    if (row + 1 == rows->size() && !rows->back().empty())
        rows->emplace_back();
    take_end_row(rows);
}

void remove(Rows* rows, Bytes* bytes) {
    const std::size_t row = bytes->below(rows->size());
    const std::size_t count = std::min(1 + bytes->below(30), rows->size() - row);
    fuzz::require(delete_rows(static_cast<int32_t>(row), static_cast<int32_t>(count)) == 1,
                  "a deletion fails");
    const auto place = rows->begin() + static_cast<std::ptrdiff_t>(row);
    rows->erase(place, place + static_cast<std::ptrdiff_t>(count));
    if (rows->empty())
        rows->emplace_back();
    take_end_row(rows);
}

void change(Rows* rows, Bytes* bytes) {
    const std::size_t row = bytes->below(rows->size());
    const std::string text(bytes->below(ROW_EDIT_MAX + 1), static_cast<char>('a' + bytes->below(26)));
    fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
    set_row_text(text);
    child[0].pending_row = static_cast<int32_t>(row);
    fuzz::require(commit_pending() == 1, "a commit fails");
    (*rows)[row] = text + hidden((*rows)[row]);
    if (row + 1 == rows->size() && !rows->back().empty())
        rows->emplace_back();
}

void insert(Rows* rows, Bytes* bytes) {
    const std::size_t row = bytes->below(rows->size() + 1);
    const std::size_t count = 1 + bytes->below(12);
    fuzz::require(insert_blank_rows(static_cast<int32_t>(row), static_cast<int32_t>(count)) == 1,
                  "an insertion fails");
    const bool behind = row == rows->size() || (row + 1 == rows->size() && rows->back().empty());
    rows->insert(behind ? rows->end() : rows->begin() + static_cast<std::ptrdiff_t>(row), count, "");
}

// An empty last row is written as a line end unless it is the end row that the file had: one row may come to
// the end.
void save(Rows* rows) {
    fuzz::save_and_reload();
    Rows saved = rows_of(fuzz::bytes_on_disk());
    const bool one_more = saved.size() == rows->size() + 1 && saved.back().empty();
    if (one_more)
        rows->emplace_back();
    fuzz::require(saved == *rows, "the saved file is not the document");
}

void compare(const Rows& rows) {
    fuzz::require(child[0].last_file_row + 1 == std::ssize(rows), "the number of rows is wrong");
    for (std::size_t row = 0; row < rows.size(); row++) {
        fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
        fuzz::require(shown(rows[row]) == child[0].row_text, "a row has another text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    const std::string file = first_file(&bytes);
    fuzz::require(fuzz::open_bytes(file), "the first file can't be opened");
    Rows rows = rows_of(file.empty() ? "\r\n" : file);
    if (!rows.back().empty())
        rows.emplace_back();
    compare(rows);
    while (!bytes.empty()) {
        const uint8_t step = bytes.take();
        if (step % 16 == 15)
            save(&rows);
        else if (step % 16 >= 10 && std::ssize(rows) >= MAX_ROWS - 1)
            continue;  // a text in the end row adds a row, and a save may add another
        else if (step % 16 >= 10)
            change(&rows, &bytes);
        else if (step % 16 >= 7)
            remove(&rows, &bytes);
        else if (step % 16 >= 4)
            join(&rows, &bytes);
        else if (rows.size() > MOST_ROWS)
            continue;
        else if (step % 16 >= 1)
            split(&rows, &bytes);
        else
            insert(&rows, &bytes);
        fuzz::check_table();
        compare(rows);
    }
    save(&rows);
    compare(rows);
    return 0;
}
