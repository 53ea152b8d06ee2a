// text_stream.cpp: text streams over files.h, with a window for reading and an append buffer for writing.
// The raw bytes of a stream are those written out, from 0 up to `written`, and then those of the append
// buffer. Bytes of the file behind `written` (a write that failed halfway, or one by somebody else) are no
// part of it.

#include "platform/text_stream.h"

#include <algorithm>
#include <cstring>

namespace hexlane::platform {

namespace {

constexpr int64_t PAGE = 4096;            // bytes; windows begin at a multiple of it
constexpr int64_t WINDOW_SIZE = 1 << 16;  // bytes
constexpr int64_t JUMP_WINDOW = 1 << 14;  // bytes read where no walk is seen: costs a third of a whole window
constexpr int64_t APPEND_SIZE = 1 << 15;  // bytes

struct Stream {
    bool open;
    bool appending;  // made by stream_create or stream_from_file
    FileHandle file;
    int64_t written;       // bytes of the stream that are in the file
    int64_t window_start;  // raw position of window[0]
    int64_t window_length;
    int64_t buffered;  // bytes in `buffer`, which stand behind `written`
    char window[WINDOW_SIZE];
    char buffer[APPEND_SIZE];
};

Stream streams[MAX_STREAMS];

Stream* stream_of(StreamHandle handle) {
    if (handle < 0 || handle >= MAX_STREAMS || !streams[handle].open) {
        set_last_file_error(FileError::OTHER);
        return nullptr;
    }
    return &streams[handle];
}

int64_t end_of(const Stream& stream) {
    return stream.written + stream.buffered;
}

// Bytes of a stream in memory. size 0: the stream ends here; -1: the medium could not be read.
struct Bytes {
    const char* data;
    int64_t size;
};

// Where the window that is to show `position` begins and ends. A walk forward gets a whole window before it,
// a walk backward one behind it; both keep a page of where they came from, so that a screen that lies across
// the border needs one window. Elsewhere a small one is read: the next fetch is likely to be far away again.
void choose_window(const Stream& stream, int64_t position, int64_t* first, int64_t* last) {
    const int64_t page = position - position % PAGE;
    const int64_t window_end = stream.window_start + stream.window_length;
    if (position >= window_end && position < window_end + WINDOW_SIZE) {
        *first = page - PAGE;
        *last = *first + WINDOW_SIZE;
    } else if (position < stream.window_start && position >= stream.window_start - WINDOW_SIZE) {
        *last = page + 2 * PAGE;
        *first = *last - WINDOW_SIZE;
    } else {
        *first = page - PAGE;
        *last = *first + JUMP_WINDOW;
    }
    *first = std::max<int64_t>(*first, 0);
    *last = std::min(*last, stream.written);
}

// The bytes from `position` on, as far as they are in memory after at most one read of the file.
Bytes bytes_at(Stream* stream, int64_t position) {
    if (position >= stream->written) {
        const int64_t offset = std::min(position - stream->written, stream->buffered);
        return {stream->buffer + offset, stream->buffered - offset};
    }
    int64_t offset = position - stream->window_start;
    if (offset < 0 || offset >= stream->window_length) {
        int64_t first = 0;
        int64_t last = 0;
        choose_window(*stream, position, &first, &last);
        stream->window_length = 0;
        const int64_t got =
            file_read_at(stream->file, first, stream->window, static_cast<std::size_t>(last - first));
        if (got < 0) {
            return {nullptr, -1};
        }
        stream->window_start = first;
        stream->window_length = got;
        offset = position - first;
    }
    offset = std::min(offset, stream->window_length);  // the file may have been cut short by somebody else
    return {stream->window + offset, stream->window_length - offset};
}

const char* find_byte(const char* data, int byte, int64_t size) {
    return static_cast<const char*>(std::memchr(data, byte, static_cast<std::size_t>(size)));
}

// Puts `length` bytes behind what the append buffer holds. They fit.
void put_buffer(Stream* stream, const char* data, int64_t length) {
    std::memcpy(stream->buffer + stream->buffered, data, static_cast<std::size_t>(length));
    stream->buffered += length;
}

int write_buffer(Stream* stream) {
    if (stream->buffered == 0) {
        return 1;
    }
    if (!file_write_at(stream->file, stream->written, stream->buffer,
                       static_cast<std::size_t>(stream->buffered))) {
        return 0;
    }
    stream->written += stream->buffered;
    stream->buffered = 0;
    return 1;
}

// Makes the stream end at `end`, which lies within what is written out. Bytes that can't be cut off the file
// only take space there until they are written over.
void cut_written(Stream* stream, int64_t end) {
    stream->written = end;
    stream->buffered = 0;
    stream->window_length = std::clamp<int64_t>(end - stream->window_start, 0, stream->window_length);
    static_cast<void>(file_resize(stream->file, end));
}

// Appends text piece by piece, each up to a line feed. Gives 0 when room could not be made.
int append_pieces(Stream* stream, const char* text, int64_t length) {
    while (length > 0) {
        const char* line_feed = find_byte(text, '\n', length);
        int64_t plain = line_feed != nullptr ? line_feed - text : length;
        while (plain > 0) {
            if (stream->buffered == APPEND_SIZE && !write_buffer(stream)) {
                return 0;
            }
            const int64_t part = std::min(plain, APPEND_SIZE - stream->buffered);
            put_buffer(stream, text, part);
            text += part;
            length -= part;
            plain -= part;
        }
        if (line_feed != nullptr) {
            if (stream->buffered + 2 > APPEND_SIZE && !write_buffer(stream)) {
                return 0;
            }
            put_buffer(stream, "\r\n", 2);
            text++;
            length--;
        }
    }
    return 1;
}

}  // namespace

StreamHandle stream_open(const char* path) {
    const FileHandle file = file_open(path, FileAccess::READ);
    if (file == NO_FILE) {
        return NO_STREAM;
    }
    const StreamHandle handle = stream_from_file(file);
    if (handle == NO_STREAM) {
        file_close(file);
        set_last_file_error(FileError::TOO_MANY_OPEN);
        return NO_STREAM;
    }
    streams[handle].appending = false;
    return handle;
}

StreamHandle stream_from_file(FileHandle file) {
    for (StreamHandle handle = 0; handle < MAX_STREAMS; handle++) {
        Stream& stream = streams[handle];
        if (stream.open) {
            continue;
        }
        const int64_t size = file_size(file);
        if (size < 0) {
            return NO_STREAM;
        }
        stream.open = true;
        stream.appending = true;
        stream.file = file;
        stream.written = size;
        stream.window_start = 0;
        stream.window_length = 0;
        stream.buffered = 0;
        return handle;
    }
    set_last_file_error(FileError::TOO_MANY_OPEN);
    return NO_STREAM;
}

StreamHandle stream_create(const char* path) {
    if (!delete_file(path) && last_file_error() != FileError::NOT_FOUND) {
        return NO_STREAM;
    }
    const FileHandle file = file_create(path, FileCreate::PRIVATE);
    if (file == NO_FILE) {
        return NO_STREAM;
    }
    const StreamHandle handle = stream_from_file(file);
    if (handle == NO_STREAM) {
        const FileError error = last_file_error();
        file_close(file);
        delete_file(path);
        set_last_file_error(error);
    }
    return handle;
}

int stream_close(StreamHandle handle) {
    Stream* stream = stream_of(handle);
    if (stream == nullptr) {
        return 0;
    }
    const int written = write_buffer(stream);
    const FileError error = last_file_error();
    const int closed = file_close(stream->file);
    stream->open = false;
    if (!written) {
        set_last_file_error(error);
    }
    return written && closed ? 1 : 0;
}

void stream_discard(StreamHandle handle) {
    Stream* stream = stream_of(handle);
    if (stream != nullptr) {
        file_close(stream->file);
        stream->open = false;
    }
}

FileHandle stream_file(StreamHandle handle) {
    const Stream* stream = stream_of(handle);
    return stream != nullptr ? stream->file : NO_FILE;
}

LineRead stream_read_line(StreamHandle handle, int64_t position, char* text, int32_t limit) {
    text[0] = '\0';
    Stream* stream = stream_of(handle);
    if (stream == nullptr || position < 0) {
        return {LineEnd::FAILED, 0, position};
    }
    int32_t stored = 0;
    bool held_cr = false;  // a CR was read and not stored: it goes if LF follows
    const auto finish = [&](LineEnd end) {
        text[stored] = '\0';
        return LineRead{end, stored, position};
    };
    const auto store = [&](const char* data, int64_t length) {
        std::memcpy(text + stored, data, static_cast<std::size_t>(length));
        stored += static_cast<int32_t>(length);
    };
    while (stored < limit) {
        const Bytes bytes = bytes_at(stream, position);
        if (bytes.size < 0) {
            stored = 0;
            return finish(LineEnd::FAILED);
        }
        if (held_cr) {
            held_cr = false;
            if (bytes.size > 0 && bytes.data[0] == '\n') {
                position++;
                return finish(LineEnd::LF);
            }
            store("\r", 1);
            continue;
        }
        if (bytes.size == 0) {
            return finish(LineEnd::END);
        }
        const int64_t scanned = std::min<int64_t>(bytes.size, limit - stored);
        const char* line_feed = find_byte(bytes.data, '\n', scanned);
        int64_t length = line_feed != nullptr ? line_feed - bytes.data : scanned;
        if (const char* end_mark = find_byte(bytes.data, 0x1A, length)) {
            length = end_mark - bytes.data;
            store(bytes.data, length);
            position += length;
            return finish(LineEnd::EOF_1A);
        }
        const bool ends_in_cr = length > 0 && bytes.data[length - 1] == '\r';
        store(bytes.data, length - (ends_in_cr ? 1 : 0));
        if (line_feed != nullptr) {
            position += length + 1;
            return finish(LineEnd::LF);
        }
        position += length;
        held_cr = ends_in_cr;
    }
    return finish(LineEnd::LIMIT);
}

int64_t stream_find_row_end(StreamHandle handle, int64_t position, int* found) {
    constexpr int64_t SCAN = 512;  // bytes searched for LF and then for NUL
    *found = -1;
    Stream* stream = stream_of(handle);
    if (stream == nullptr || position < 0) {
        return -1;
    }
    for (;;) {
        const Bytes bytes = bytes_at(stream, position);
        if (bytes.size <= 0) {
            return bytes.size == 0 ? position : -1;
        }
        for (int64_t offset = 0; offset < bytes.size; offset += SCAN) {
            const char* data = bytes.data + offset;
            const int64_t scanned = std::min(bytes.size - offset, SCAN);
            const char* line_feed = find_byte(data, '\n', scanned);
            const char* row_end = find_byte(data, '\0', line_feed != nullptr ? line_feed - data : scanned);
            row_end = row_end != nullptr ? row_end : line_feed;
            if (row_end != nullptr) {
                *found = *row_end;
                return position + (row_end - bytes.data);
            }
        }
        position += bytes.size;
    }
}

int64_t stream_read_raw(StreamHandle handle, int64_t position, void* buffer, std::size_t size) {
    Stream* stream = stream_of(handle);
    if (stream == nullptr || position < 0) {
        return -1;
    }
    char* to = static_cast<char*>(buffer);
    const auto wanted = static_cast<int64_t>(size);
    int64_t done = 0;
    while (done < wanted) {
        const int64_t in_file = std::min(wanted - done, stream->written - position - done);
        if (in_file >= WINDOW_SIZE) {  // too much to gain from the window
            const int64_t got =
                file_read_at(stream->file, position + done, to + done, static_cast<std::size_t>(in_file));
            if (got < 0) {
                return -1;
            }
            done += got;
            if (got < in_file) {
                break;
            }
            continue;
        }
        const Bytes bytes = bytes_at(stream, position + done);
        if (bytes.size <= 0) {
            if (bytes.size < 0) {
                return -1;
            }
            break;
        }
        const int64_t part = std::min(bytes.size, wanted - done);
        std::memcpy(to + done, bytes.data, static_cast<std::size_t>(part));
        done += part;
    }
    return done;
}

int64_t stream_end(StreamHandle handle) {
    const Stream* stream = stream_of(handle);
    return stream != nullptr ? end_of(*stream) : -1;
}

int stream_append(StreamHandle handle, const char* text, std::size_t length) {
    Stream* stream = stream_of(handle);
    if (stream == nullptr) {
        return 0;
    }
    if (!stream->appending) {
        set_last_file_error(FileError::ACCESS_DENIED);
        return 0;
    }
    const auto taken = static_cast<int64_t>(length);
    // Room is made before anything is taken, so that a failure leaves the buffer as it was.
    const auto raw = taken + std::count(text, text + length, '\n');
    if (stream->buffered + raw > APPEND_SIZE && !write_buffer(stream)) {
        return 0;
    }
    const int64_t end = end_of(*stream);
    if (append_pieces(stream, text, taken)) {
        return 1;
    }
    const FileError error = last_file_error();
    cut_written(stream, end);
    set_last_file_error(error);
    return 0;
}

void stream_rewind_to(StreamHandle handle, int64_t position) {
    Stream* stream = stream_of(handle);
    if (stream == nullptr || position < 0 || position >= end_of(*stream)) {
        return;
    }
    if (position >= stream->written) {
        stream->buffered = position - stream->written;
    } else {
        cut_written(stream, position);
    }
}

int stream_flush(StreamHandle handle) {
    Stream* stream = stream_of(handle);
    return stream != nullptr ? write_buffer(stream) : 0;
}

}  // namespace hexlane::platform
