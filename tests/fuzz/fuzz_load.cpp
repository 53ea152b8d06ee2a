// fuzz_load.cpp: any bytes at all are a document. Its rows are the pieces between LFs and NULs; a save
// without an edit gives the same bytes back, but for the line end that a last row lacks.

#include "fuzz_program.h"
#include "shell/child.h"
#include "store/row_table.h"
#include "support/store_model.h"

#include <algorithm>
#include <string>

using namespace hexlane;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const char* const ANSWERS[] = {"No", "Yes", "Cancel"};
    if (size == 0)
        return 0;
    const std::string bytes(data + 1, data + size);
    const std::string head = bytes.substr(0, NULL_TEST_BYTES);
    const bool asked = std::count(head.begin(), head.end(), '\0') > NULL_TEST_LIMIT;
    const char* answer = asked ? ANSWERS[data[0] % 3] : nullptr;
    const bool open = fuzz::open_bytes(bytes, answer);
    fuzz::require(open == (answer != ANSWERS[2]), "a document is open that should not be, or is not");
    if (!open)
        return 0;

    const std::string before = fuzz::bytes_on_disk();
    if (answer == ANSWERS[1])
        fuzz::require(before.find('\0') == std::string::npos, "a NUL is left after the strip");
    else
        fuzz::require(before == (bytes.empty() ? "\r\n" : bytes), "opening has changed the file");

    const Model model(before);
    fuzz::check_table();
    fuzz::require(child[0].last_file_row + 1 == std::ssize(model.rows), "the number of rows is wrong");
    for (std::size_t row = 0; row < model.rows.size(); row++) {
        fuzz::require(fetch_row(static_cast<int32_t>(row)) == 1, "a row can't be read");
        fuzz::require(shown(model.rows[row]) == child[0].row_text, "a row shows another text");
    }
    fuzz::save_and_reload(answer == ANSWERS[0] ? answer : nullptr);
    fuzz::require(fuzz::bytes_on_disk() == model.save(), "a save has changed untouched bytes");
    return 0;
}
