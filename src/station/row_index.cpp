#include "station/row_index.h"

#include "platform/byte_window.h"
#include "platform/files.h"
#include "platform/text.h"
#include "shell/directories.h"

#include <algorithm>
#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int READ_SIZE = 1 << 16;
constexpr int OFFSET_SIZE = 4;
constexpr int WAITING_MAX = 1024;  // offsets collected for one write of the temporary file

uint32_t offsets[ROW_TABLE_SIZE];
int32_t count = 0;
FileHandle viewed_file = NO_FILE;
FileHandle index_file = NO_FILE;
char index_path[PATH_SIZE];
uint8_t waiting[WAITING_MAX * OFFSET_SIZE];
int waiting_count = 0;
int64_t index_length = 0;

ByteWindow row_window;    // on viewed_file
ByteWindow index_window;  // on index_file

// Windows begin at multiples of this, so that a walk in either direction seldom moves them.
constexpr int64_t WINDOW_STEP = WINDOW_BYTES / 2;

// Where `wanted` bytes from `offset` stand in memory; `held` takes how many of them the file has.
const char* bytes_at(ByteWindow* window, int64_t offset, int32_t wanted, int32_t* held) {
    const int64_t end = std::min(offset + wanted, window->size);
    const int64_t start = offset - offset % WINDOW_STEP;
    if (offset < end && (offset < window->start || end > window->start + window->count))
        move_window(window, start, start);
    const char* bytes = window_at(window, offset, offset, held);
    *held = std::min(*held, wanted);
    return bytes;
}

bool is_row_end(char byte) {
    return byte == '\n' || byte == '\0';
}

void put_offset(uint8_t* bytes, uint32_t offset) {
    for (int i = 0; i < OFFSET_SIZE; i++)
        bytes[i] = static_cast<uint8_t>(offset >> (8 * i) & 0xFF);
}

int write_waiting() {
    const auto size = static_cast<std::size_t>(waiting_count) * OFFSET_SIZE;
    if (size == 0)
        return 1;
    if (!file_write_at(index_file, index_length, waiting, size))
        return 0;
    index_length += static_cast<int64_t>(size);
    waiting_count = 0;
    return 1;
}

int make_index_file() {
    if (!format_text(index_path, sizeof index_path, "%s/%sidx.twr", directories.temp_dir,
                     directories.temp_prefix))
        return 0;
    delete_file(index_path);
    index_file = file_create(index_path, FileCreate::PRIVATE);
    return index_file != NO_FILE;
}

int add_row(uint32_t offset) {
    const int32_t row = ++count;
    if (row < ROW_TABLE_SIZE) {
        offsets[row] = offset;
        return 1;
    }
    if (index_file == NO_FILE && !make_index_file())
        return 0;
    put_offset(waiting + waiting_count * OFFSET_SIZE, offset);
    return ++waiting_count < WAITING_MAX || write_waiting();
}

int scan() {
    static uint8_t block[READ_SIZE];
    int64_t position = 0;
    for (;;) {
        const int64_t length = file_read_at(viewed_file, position, block, sizeof block);
        if (length < 0)
            return 0;
        if (length == 0)
            return write_waiting();
        for (int64_t i = 0; i < length; i++) {
            if (is_row_end(static_cast<char>(block[i])) && !add_row(static_cast<uint32_t>(position + i + 1)))
                return 0;
        }
        position += length;
    }
}

}  // namespace

int open_row_index(const char* path) {
    close_row_index();
    viewed_file = file_open(path, FileAccess::READ);
    if (viewed_file == NO_FILE)
        return 0;
    offsets[0] = 0;
    const int scanned = scan();
    look_at_file_again();
    return scanned;
}

void close_row_index() {
    if (viewed_file != NO_FILE)
        file_close(viewed_file);
    if (index_file != NO_FILE) {
        file_close(index_file);
        delete_file(index_path);
    }
    viewed_file = NO_FILE;
    index_file = NO_FILE;
    count = 0;
    waiting_count = 0;
    index_length = 0;
    look_at_file_again();
}

int32_t row_count() {
    return count;
}

int64_t row_offset(int32_t row) {
    if (row < 0 || row > count)
        return -1;
    if (row < ROW_TABLE_SIZE)
        return offsets[row];
    const int64_t place = static_cast<int64_t>(row - ROW_TABLE_SIZE) * OFFSET_SIZE;
    int32_t length = 0;
    const char* bytes = bytes_at(&index_window, place, OFFSET_SIZE, &length);
    if (length < OFFSET_SIZE || index_window.failed)
        return -1;
    uint32_t offset = 0;
    for (int i = 0; i < OFFSET_SIZE; i++)
        offset |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[i])) << (8 * i);
    return offset;
}

void look_at_file_again() {
    open_window(&row_window, viewed_file, viewed_file == NO_FILE ? 0 : file_size(viewed_file));
    open_window(&index_window, index_file, index_length);
}

// What cannot be read is a row that is gone.
void read_row_text(int32_t row, char* text) {
    std::memset(text, 0, ROW_TEXT_LIMIT + 1);
    const int64_t offset = row_offset(row);
    if (offset < 0 || row >= count)
        return;
    int32_t length = 0;
    const char* bytes = bytes_at(&row_window, offset, ROW_TEXT_LIMIT, &length);
    const char* end =
        std::find_if(bytes, bytes + length, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    std::copy(bytes, end, text);
}

int64_t row_end(int32_t row) {
    if (row < count)
        return row_offset(row + 1);
    return viewed_file == NO_FILE ? -1 : file_size(viewed_file);
}

bool row_is_there(const char* path, int64_t offset) {
    FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE)
        return false;
    char before = '\0';
    const bool in_file = file_size(file) >= offset;
    const bool begins = offset == 0 || file_read_at(file, offset - 1, &before, 1) == 1;
    file_close(file);
    return in_file && begins && is_row_end(before);
}

}  // namespace hexlane
