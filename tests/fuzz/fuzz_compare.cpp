// fuzz_compare.cpp: the compare of any two files under any options: it ends, its list is that of its steps
// done one by one, its screen lines and its report take whatever comes.

#include "compare/compare.h"
#include "compare/report.h"
#include "compare/result_line.h"
#include "fuzz_program.h"
#include "shell/directories.h"
#include "support/compare_model.h"

#include <algorithm>
#include <fstream>
#include <string>

namespace {

using namespace hexlane;

std::string make_file(const char* name, const std::string& bytes) {
    const std::string path = std::string(directories.temp_dir) + "/" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

// Few different rows, so that the sides meet again.
std::string as_rows(const uint8_t* data, size_t size) {
    constexpr char BYTES[] = "A B\r\n\t\n\rX";
    std::string bytes;
    for (size_t i = 0; i < size; i++)
        bytes += data[i] < 0xE0 ? BYTES[data[i] % (sizeof BYTES - 1)] : static_cast<char>(data[i]);
    return bytes;
}

void check_lines() {
    for (int64_t number = 0; number <= compare.last_record; number++) {
        ResultLine line;
        format_result_line(number, 46, &line);
        fuzz::require(line.length == 98, "a line of the screen has another length");
    }
}

void check_report(bool differences_only) {
    const std::string path = std::string(directories.temp_dir) + "/report";
    platform::delete_file(path.c_str());
    const platform::FileHandle file = platform::file_create(path.c_str(), platform::FileCreate::PRIVATE);
    fuzz::require(write_compare_report(file, differences_only) == 1, "the report cannot be written");
    platform::file_close(file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3)
        return 0;
    fuzz::start_program();
    const bool ignore_spaces = data[0] % 2 != 0;
    const bool plain_bytes = data[0] % 4 >= 2;
    const int look_ahead = 1 + data[1] % 6;
    const size_t split = 3 + data[2] * (size - 3) / 255;
    const auto bytes = [&](size_t from, size_t to) {
        return plain_bytes ? std::string(data + from, data + to) : as_rows(data + from, to - from);
    };
    const std::string left = bytes(3, split);
    const std::string right = bytes(split, size);
    begin_compare(make_file("left", left).c_str(), "left", make_file("right", right).c_str(), "right");
    compare.look_ahead = look_ahead;
    compare.ignore_spaces = ignore_spaces;
    fuzz::require(run_compare() == 1, "the compare fails");
    const std::string difference = difference_from(CompareModel(left, right, look_ahead, ignore_spaces));
    fuzz::require(difference.empty(), difference.c_str());
    check_lines();
    check_report(data[0] % 8 >= 4);
    close_compare();
    return 0;
}
