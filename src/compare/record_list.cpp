#include "compare/record_list.h"

#include <algorithm>

#include "compare/compare_record_format.h"
#include "platform/text.h"
#include "shell/directories.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int32_t BUFFER_RECORDS = 8192;

CompareRecord first_records[COMPARE_MEMORY_RECORDS];
int64_t count = 0;
char path[PATH_SIZE];
FileHandle file = NO_FILE;
bool write_failed = false;
FileError write_error = FileError::NONE;
bool read_failed = false;

// While the list grows: the last records of the file, not written yet. Afterwards a piece of it.
char buffer[BUFFER_RECORDS * COMPARE_RECORD_BYTES];
int64_t buffer_first = 0;  // number of the first record in it
int32_t buffered = 0;      // records

int64_t place_of(int64_t number) {
    return (number - COMPARE_MEMORY_RECORDS) * COMPARE_RECORD_BYTES;
}

void write_buffer() {
    const auto size = static_cast<std::size_t>(buffered) * COMPARE_RECORD_BYTES;
    if (size > 0 && !write_failed && !file_write_at(file, place_of(buffer_first), buffer, size)) {
        write_failed = true;
        write_error = last_file_error();
    }
    buffer_first += buffered;
    buffered = 0;
}

// Fills the buffer with the records around `number`. Records behind the end of what is written are left out.
void read_buffer(int64_t number) {
    const int64_t behind = number - COMPARE_MEMORY_RECORDS;
    buffer_first = number - behind % BUFFER_RECORDS;
    const int64_t got = file_read_at(file, place_of(buffer_first), buffer, sizeof buffer);
    buffered = static_cast<int32_t>(std::max<int64_t>(got, 0) / COMPARE_RECORD_BYTES);
}

}  // namespace

int open_record_list() {
    close_record_list();
    count = 0;
    write_failed = false;
    read_failed = false;
    buffer_first = COMPARE_MEMORY_RECORDS;
    buffered = 0;
    for (CompareRecord& record : first_records)
        record = {0, 0, 0};
    if (!format_text(path, sizeof path, "%s/%stmpx.twr", directories.temp_dir, directories.temp_prefix)) {
        set_last_file_error(FileError::NAME_TOO_LONG);
        return 0;
    }
    delete_file(path);
    file = file_create(path, FileCreate::PRIVATE);
    constexpr char BLANKS[COMPARE_FILE_BLANKS] = {};
    return file != NO_FILE && file_write_at(file, 0, BLANKS, sizeof BLANKS);
}

void append_record(const CompareRecord& record) {
    if (count < COMPARE_MEMORY_RECORDS) {
        first_records[count++] = record;
        return;
    }
    put_record(buffer + static_cast<std::ptrdiff_t>(buffered) * COMPARE_RECORD_BYTES, record);
    count++;
    if (++buffered == BUFFER_RECORDS)
        write_buffer();
}

int finish_record_list() {
    write_buffer();
    if (write_failed)
        set_last_file_error(write_error);
    return !write_failed;
}

int64_t record_count() {
    return count;
}

int load_record(int64_t number, CompareRecord* record) {
    *record = {0, 0, 0};
    if (number < 0 || number >= count)
        return 0;
    if (number < COMPARE_MEMORY_RECORDS) {
        *record = first_records[number];
        return 1;
    }
    if (number < buffer_first || number >= buffer_first + buffered)
        read_buffer(number);
    if (number >= buffer_first + buffered) {
        read_failed = true;
        return 0;
    }
    *record = take_record(buffer + (number - buffer_first) * COMPARE_RECORD_BYTES);
    return 1;
}

int64_t find_difference(int64_t from, bool forward) {
    CompareRecord record;
    for (int64_t number = from; number >= 0 && number < count; number += forward ? 1 : -1) {
        if (!load_record(number, &record) || record.kind != SAME_ROWS)
            return number;
    }
    return -1;
}

void close_record_list() {
    if (file != NO_FILE)
        file_close(file);
    file = NO_FILE;
}

bool record_list_is_damaged() {
    return read_failed;
}

const char* record_list_path() {
    return path;
}

}  // namespace hexlane
