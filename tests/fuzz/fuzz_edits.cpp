// fuzz_edits.cpp: a long random editing session beside a plain list of rows. The list knows each row whole,
// also the part behind what the editor shows; the store must give the same text at every step and the same
// file at every save.

#include "fuzz_program.h"
#include "shell/child.h"
#include "store/row_edits.h"
#include "store/row_table.h"
#include "support/store_model.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using namespace hexlane;
using fuzz::Bytes;

constexpr std::size_t MOST_ROWS = 200;  // well below what the tiny limits can load

// The file that the session begins with: rows with either line end, some of them longer than the editor
// shows.
std::string first_file(Bytes* bytes) {
    std::string file;
    for (std::size_t rows = bytes->size_below(40); rows > 0; rows--) {
        const uint8_t kind = bytes->take();
        file.append(kind % 8 == 0 ? 200u + kind : kind % 24u, static_cast<char>('A' + rows % 26));
        file += kind < 100 ? "\r\n" : kind < 200 ? "\n" : "\r\n\r\n";
    }
    return file + std::string(bytes->size_below(8), 'z');
}

// ---- The steps, on store and list ----------------------------------------------------------------------

void split(Model* model, Bytes* bytes) {
    const std::size_t row = bytes->size_below(model->rows.size());
    const std::size_t column = bytes->take();
    fuzz::require(split_row(static_cast<int32_t>(row), static_cast<int32_t>(column)) == 1, "a split fails");
    model->split(row, column);
}

void join(Model* model, Bytes* bytes) {
    const std::size_t row = bytes->size_below(model->rows.size());
    fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
    fuzz::require((join_rows(static_cast<int32_t>(row)) == 1) == model->join(row),
                  "a join was done that should not be, or was not");
}

void remove(Model* model, Bytes* bytes) {
    const std::size_t row = bytes->size_below(model->rows.size());
    const std::size_t count = std::min(1 + bytes->size_below(30), model->rows.size() - row);
    fuzz::require(delete_rows(static_cast<int32_t>(row), static_cast<int32_t>(count)) == 1,
                  "a deletion fails");
    model->erase(row, count);
}

void change(Model* model, Bytes* bytes) {
    const std::size_t row = bytes->size_below(model->rows.size());
    const std::string text(bytes->size_below(ROW_EDIT_MAX + 1), static_cast<char>('a' + bytes->below(26)));
    fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
    std::memset(child[0].row_text, 0, sizeof child[0].row_text);
    text.copy(child[0].row_text, sizeof child[0].row_text - 1);
    child[0].pending_row = static_cast<int32_t>(row);
    fuzz::require(commit_pending() == 1, "a commit fails");
    model->commit(row, text);
}

void insert(Model* model, Bytes* bytes) {
    const std::size_t row = bytes->size_below(model->rows.size() + 1);
    const std::size_t count = 1 + bytes->size_below(12);
    fuzz::require(insert_blank_rows(static_cast<int32_t>(row), static_cast<int32_t>(count)) == 1,
                  "an insertion fails");
    model->insert_blank(row, count);
}

void save(Model* model) {
    const std::string saved = model->save();
    fuzz::save_and_reload();
    fuzz::require(fuzz::bytes_on_disk() == (saved.empty() ? "\r\n" : saved),
                  "the saved file is not the document");
    model->load(saved);
}

void compare(const Model& model) {
    fuzz::require(child[0].last_file_row + 1 == std::ssize(model.rows), "the number of rows is wrong");
    for (std::size_t row = 0; row < model.rows.size(); row++) {
        fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
        fuzz::require(shown(model.rows[row]) == child[0].row_text, "a row has another text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Bytes bytes(data, size);
    const std::string file = first_file(&bytes);
    fuzz::require(fuzz::open_bytes(file), "the first file can't be opened");
    Model model(file);
    compare(model);
    while (!bytes.empty()) {
        const uint8_t step = bytes.take();
        if (step % 16 == 15)
            save(&model);
        else if (step % 16 >= 10 && std::ssize(model.rows) >= MAX_ROWS - 1)
            continue;  // a text in the end row adds a row, and a save may add another
        else if (step % 16 >= 10)
            change(&model, &bytes);
        else if (step % 16 >= 7)
            remove(&model, &bytes);
        else if (step % 16 >= 4)
            join(&model, &bytes);
        else if (model.rows.size() > MOST_ROWS)
            continue;
        else if (step % 16 >= 1)
            split(&model, &bytes);
        else
            insert(&model, &bytes);
        fuzz::check_table();
        compare(model);
    }
    save(&model);
    compare(model);
    return 0;
}
