// check_nulls.cpp: the question about NUL bytes in a file that is about to be loaded, and taking them out.

#include <algorithm>
#include <cstring>

#include "platform/files.h"
#include "shell/child.h"
#include "store/copy_buffer.h"
#include "store/load.h"
#include "store/replace_file.h"
#include "store/store_texts.h"

namespace hexlane {

using namespace platform;

namespace {

// NULs in the first NULL_TEST_BYTES of a file; 0 when it cannot be read, since the load will tell.
int64_t count_nulls(const char* path) {
    FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE)
        return 0;
    char bytes[NULL_TEST_BYTES];
    const int64_t length = file_read_at(file, 0, bytes, sizeof bytes);
    file_close(file);
    return length <= 0 ? 0 : std::count(bytes, bytes + length, '\0');
}

int copy_without_nulls(FileHandle source, Replacement* output) {
    int64_t position = 0;
    for (;;) {
        const int64_t length = file_read_at(source, position, copy_buffer, sizeof copy_buffer);
        if (length < 0)
            return 0;
        if (length == 0)
            return 1;
        uint8_t* end = std::remove(copy_buffer, copy_buffer + length, uint8_t{0});
        if (!replacement_write(output, copy_buffer, static_cast<std::size_t>(end - copy_buffer)))
            return 0;
        position += length;
    }
}

}  // namespace

int strip_nulls(const char* path) {
    FileHandle source = file_open(path, FileAccess::READ_WRITE);
    if (source == NO_FILE)
        return -1;
    Replacement output;
    const int done = begin_replacement(&output, path) && copy_without_nulls(source, &output) &&
                     finish_replacement(&output, source);
    abandon_replacement(&output);
    const FileError reason = last_file_error();
    file_close(source);
    set_last_file_error(reason);
    return done ? 0 : -1;
}

int check_nulls() {
    if (count_nulls(child[0].file_path) <= NULL_TEST_LIMIT)
        return 0;
    const int answer = show_store_box(StoreBox::ASK_NULLS, child[0].file_path);
    if (answer == 2)
        return -1;
    if (answer == 0 && strip_nulls(child[0].file_path) < 0)
        show_store_box(StoreBox::NULLS_NOT_STRIPPED, child[0].file_path, file_error_text(last_file_error()));
    return 0;
}

}  // namespace hexlane
