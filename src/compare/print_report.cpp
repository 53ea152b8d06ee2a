// print_report.cpp: the report as a print job.
//
// The report stands in a file of its own name, made for the purpose and gone behind it, and is printed from
// there line by line.

#include <algorithm>
#include <cstring>

#include "compare/compare.h"
#include "compare/report.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/text.h"
#include "print/print_engine.h"
#include "shell/directories.h"
#include "shell/temp_names.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int32_t LINE_BYTES = 80;  // longer lines go on as a line of their own
constexpr int RANDOM_CHARS = 8;     // of the file's name
constexpr std::size_t PREFIX_SIZE = 2 + RANDOM_CHARS + 2;
constexpr int32_t BUFFER_BYTES = 1 << 16;

char buffer[BUFFER_BYTES];

// "DX", characters that nobody can guess, and "-" in front of the number that create_unique_file puts behind
// it.
void make_report_prefix(char prefix[PREFIX_SIZE]) {
    unsigned char bytes[2 * RANDOM_CHARS];
    random_bytes(bytes, sizeof bytes);
    copy_text(prefix, PREFIX_SIZE, "DX");
    for (int i = 0; i < RANDOM_CHARS; i++) {
        const char piece[2] = {random_name_char(bytes[2 * i] << 8 | bytes[2 * i + 1]), '\0'};
        append_text(prefix, PREFIX_SIZE, piece);
    }
    append_text(prefix, PREFIX_SIZE, "-");
}

// In the folder that TMP names, else at the root of the file system, or, where that cannot be written, with
// the other temporary files.
FileHandle create_report_file(char path[PATH_SIZE]) {
    char prefix[PREFIX_SIZE];
    char no_folder[PATH_SIZE];
    char folder[PATH_SIZE];
    make_report_prefix(prefix);
    format_text(no_folder, sizeof no_folder, "%s/%stmdx.pnt", directories.temp_dir, directories.temp_prefix);
    choose_temp_folder(no_folder, folder);
    const FileHandle file = create_unique_file(folder, prefix, path);
    return file != NO_FILE ? file : create_unique_file(directories.temp_dir, prefix, path);
}

// The line at the front of `bytes`: what stands before the first CR of LINE_BYTES. `behind` takes where the
// next one begins.
int32_t line_length(const char* bytes, int32_t count, int32_t* behind) {
    const int32_t room = std::min(count, LINE_BYTES);
    const auto* cr = static_cast<const char*>(std::memchr(bytes, '\r', static_cast<std::size_t>(room)));
    const int32_t length = cr != nullptr ? static_cast<int32_t>(cr - bytes) : room;
    *behind = cr != nullptr ? length + 2 : length;
    return length;
}

// Gives false when the file could not be read.
bool print_lines(FileHandle file, int64_t size) {
    int32_t lines = 0;
    int64_t position = 0;
    int64_t buffer_start = 0;
    int32_t held = 0;
    while (position < size) {
        if (position + LINE_BYTES > buffer_start + held && buffer_start + held < size) {
            buffer_start = position;
            held = static_cast<int32_t>(
                std::max<int64_t>(file_read_at(file, position, buffer, sizeof buffer), 0));
            if (held == 0)
                return false;
        }
        const auto at = static_cast<int32_t>(position - buffer_start);
        int32_t behind = 0;
        const int32_t length = line_length(buffer + at, held - at, &behind);
        set_print_font("Courier", 8);
        print_line(buffer + at, length);
        count_print_line(&lines);
        pump_one_message();
        position += behind;
    }
    return true;
}

bool print_report_file(FileHandle file) {
    const int64_t size = file_size(file);
    if (size < 0)
        return false;
    const PrintStart start = start_print_document("Compare Results");
    if (start != PrintStart::STARTED)
        return start != PrintStart::FAILED;
    if (!print_lines(file, size)) {
        abandon_print_document();
        return false;
    }
    end_print_document();  // tells itself what went wrong
    return true;
}

}  // namespace

bool print_compare_report(bool differences_only) {
    char path[PATH_SIZE];
    const FileHandle file = create_report_file(path);
    if (file == NO_FILE)
        return false;
    const bool printed = write_compare_report(file, differences_only) && print_report_file(file);
    file_close(file);
    delete_file(path);
    return printed;
}

}  // namespace hexlane
