// text_stream.h: text files with the translation that the document store relies on.
// On reading, CR LF arrives as LF, a CR elsewhere stays, and a byte 0x1A ends the line and the input at that
// place (a later read from another position works). On writing, LF goes out as CR LF. Positions are raw byte
// offsets. Reading goes through a fixed window and writing through an append buffer, so walking millions of
// rows costs a system call per window; what has been appended is seen by the next read of the same stream.
// One shared implementation, over files.h: common/text_stream.cpp. Main thread only.
#pragma once

#include "platform/files.h"

namespace hexlane::platform {

using StreamHandle = int32_t;
constexpr StreamHandle NO_STREAM = -1;
constexpr int MAX_STREAMS = 4;

// Opens an existing file for reading. NO_STREAM on failure.
StreamHandle stream_open(const char* path);

// Makes stream of a file that is open already; the stream owns `file` from then on. NO_STREAM when all
// streams are taken (`file` stays the caller's).
StreamHandle stream_from_file(FileHandle file);

// Makes an empty file as FileCreate::PRIVATE does, after deleting one of that name, for appending and
// reading.
StreamHandle stream_create(const char* path);

// Closes; bytes still in the append buffer are written first. Gives 1, or 0 when that failed.
int stream_close(StreamHandle stream);

// Closes without writing what the append buffer still holds: for files that are about to be deleted.
void stream_discard(StreamHandle stream);

// The file below, for reads that must see raw bytes; only what has been written out is in it.
FileHandle stream_file(StreamHandle stream);

// How a read of a line ended.
enum class LineEnd : uint8_t {
    LF,      // a line end was reached and is not in the text (its CR neither)
    LIMIT,   // `limit` characters were read and the line goes on, or its end follows
    EOF_1A,  // a byte 0x1A ended the input; `next` is its position
    END,     // the file ended
    FAILED,  // the medium could not be read; the text is empty
};

struct LineRead {
    LineEnd end;
    int32_t length;  // characters stored, NULs included
    int64_t next;    // raw position behind what was read (with LF: behind the line end)
};

// Reads one line from raw position `position` into `text[limit + 1]`, NUL-terminated: at most `limit`
// characters and the line end, if it comes within `limit` characters. A NUL byte is a character like any
// other here.
LineRead stream_read_line(StreamHandle stream, int64_t position, char* text, int32_t limit);

// Raw position of the first byte LF or NUL at or behind `position`; the end of the stream when there is none;
// -1 when the medium could not be read. `found` takes that byte, or -1 at the end.
int64_t stream_find_row_end(StreamHandle stream, int64_t position, int* found);

// Reads up to `size` raw bytes. Gives their number, -1 on failure.
int64_t stream_read_raw(StreamHandle stream, int64_t position, void* buffer, std::size_t size);

// Raw position behind the last byte, buffered ones included.
int64_t stream_end(StreamHandle stream);

// Appends text, LF as CR LF. All or nothing: gives 1; 0 when the medium took it not, and then the stream ends
// where it ended before.
[[nodiscard]] int stream_append(StreamHandle stream, const char* text, std::size_t length);

// Takes back what was appended behind raw position `position`.
void stream_rewind_to(StreamHandle stream, int64_t position);

// Writes the append buffer out. Gives 1; 0 on failure, and the buffer stays as it was.
[[nodiscard]] int stream_flush(StreamHandle stream);

}  // namespace hexlane::platform
