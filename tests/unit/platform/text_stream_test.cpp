// Text streams: translation at every kind of border, the append buffer under failures, and the number of
// reads that a walk costs.

#include "platform/posix/file_faults.h"
#include "platform/text_stream.h"
#include "temp_folder.h"

#include <cerrno>
#include <vector>

namespace hexlane::platform {
namespace {

constexpr int LIMIT = 254;

class TextStream : public TempFolder {
protected:
    ~TextStream() override {
        reset_file_faults();
        if (stream != NO_STREAM) {
            stream_discard(stream);
        }
    }

    void open_bytes(const std::string& bytes) {
        if (stream != NO_STREAM) {
            stream_discard(stream);
        }
        stream = stream_open(write("in", bytes).c_str());
        ASSERT_NE(stream, NO_STREAM);
    }
    void create() {
        stream = stream_create(path("out").c_str());
        ASSERT_NE(stream, NO_STREAM);
    }
    int append(const std::string& text) { return stream_append(stream, text.data(), text.size()); }

    // One line as text and end, and `next`.
    std::string line(int64_t position, int32_t limit = LIMIT) {
        char text[LIMIT + 1];
        const LineRead read = stream_read_line(stream, position, text, limit);
        next = read.next;
        end = read.end;
        EXPECT_EQ(text[read.length], '\0');
        return {text, static_cast<std::size_t>(read.length)};
    }
    // The raw bytes of the stream as it would be read.
    std::string raw() {
        std::string bytes(static_cast<std::size_t>(stream_end(stream)), '?');
        EXPECT_EQ(stream_read_raw(stream, 0, bytes.data(), bytes.size()), stream_end(stream));
        return bytes;
    }

    StreamHandle stream = NO_STREAM;
    int64_t next = 0;
    LineEnd end = LineEnd::END;
};

TEST_F(TextStream, LinesAreTranslatedAndLimited) {
    struct Case {
        const char* label;
        std::string bytes;
        int32_t limit;
        std::string text;
        LineEnd end;
        int64_t next;
    };
    const Case cases[] = {
        {"CR LF", "ab\r\ncd", 9, "ab", LineEnd::LF, 4},
        {"LF", "ab\ncd", 9, "ab", LineEnd::LF, 3},
        {"empty line", "\r\nx", 9, "", LineEnd::LF, 2},
        {"lone CR stays", "a\rb\r\r\n", 9, "a\rb\r", LineEnd::LF, 6},
        {"CR at the end of the file", "ab\r", 9, "ab\r", LineEnd::END, 3},
        {"end of file", "ab", 9, "ab", LineEnd::END, 2},
        {"nothing", "", 9, "", LineEnd::END, 0},
        {"0x1A",
         "ab\x1A"
         "cd\n",
         9, "ab", LineEnd::EOF_1A, 2},
        {"0x1A at once", "\x1A", 9, "", LineEnd::EOF_1A, 0},
        {"CR before 0x1A stays", "a\r\x1A", 9, "a\r", LineEnd::EOF_1A, 2},
        {"0x1A behind the line", "ab\n\x1A", 9, "ab", LineEnd::LF, 3},
        {"NUL is a character", std::string("a\0b\n", 4), 9, std::string("a\0b", 3), LineEnd::LF, 4},
        {"LF is the last character that fits", "abc\n", 4, "abc", LineEnd::LF, 4},
        {"LF comes one too late", "abcd\nx", 4, "abcd", LineEnd::LIMIT, 4},
        {"CR LF counts as one", "abc\r\nx", 4, "abc", LineEnd::LF, 5},
        {"CR LF comes one too late", "abcd\r\n", 4, "abcd", LineEnd::LIMIT, 4},
        {"lone CR as last character", "abc\rx\n", 4, "abc\r", LineEnd::LIMIT, 4},
        {"limit at the end of the file", "abcd", 4, "abcd", LineEnd::LIMIT, 4},
        {"0x1A behind the limit", "abcd\x1A", 4, "abcd", LineEnd::LIMIT, 4},
        {"limit 0", "abcd", 0, "", LineEnd::LIMIT, 0},
    };
    for (const Case& c : cases) {
        open_bytes(c.bytes);
        EXPECT_EQ(line(0, c.limit), c.text) << c.label;
        EXPECT_EQ(end, c.end) << c.label;
        EXPECT_EQ(next, c.next) << c.label;
    }
    EXPECT_EQ(line(99), "");  // behind the end
    EXPECT_EQ(end, LineEnd::END);
}

// Every line end form at every place around a border of the read window, wherever that lies.
TEST_F(TextStream, LineEndsAcrossWindowBorders) {
    for (int64_t border : {60 << 10, 64 << 10, 12 << 10, 16 << 10}) {
        for (int64_t at = border - 3; at <= border + 1; at++) {
            std::string bytes(static_cast<std::size_t>(at), 'x');
            bytes += "\r\n12\rb\nend";
            open_bytes(bytes);
            EXPECT_EQ(line(at - 5), "xxxxx") << at;
            EXPECT_EQ(end, LineEnd::LF);
            EXPECT_EQ(next, at + 2);
            EXPECT_EQ(line(at - 3, 3), "xxx");
            EXPECT_EQ(end, LineEnd::LIMIT);
            EXPECT_EQ(line(at + 2), "12\rb");
            EXPECT_EQ(line(at - 1), "x");  // back again
            int found = 0;
            EXPECT_EQ(stream_find_row_end(stream, at - 5, &found), at + 1);
            EXPECT_EQ(found, '\n');
        }
    }
}

TEST_F(TextStream, RowEndIsTheNearerOfLineFeedAndNul) {
    std::string bytes =
        std::string("ab\0cd\n", 6) + std::string(200'000, 'x') + std::string("\0\n", 2) + "tail";
    open_bytes(bytes);
    const auto size = static_cast<int64_t>(bytes.size());
    const std::vector<std::array<int64_t, 3>> cases = {
        {0, 2, 0},           {2, 2, 0},       {3, 5, '\n'}, {6, 200'006, 0}, {200'007, 200'007, '\n'},
        {200'008, size, -1}, {size, size, -1}};
    for (const auto& [from, position, byte] : cases) {
        int found = 7;
        EXPECT_EQ(stream_find_row_end(stream, from, &found), position) << from;
        EXPECT_EQ(found, byte) << from;
    }
}

TEST_F(TextStream, AppendedTextIsReadBackBeforeAndAfterTheFlush) {
    create();
    const auto word = [](int i) { return std::to_string(i).insert(0, 1, 'N'); };
    std::vector<int64_t> starts;
    std::string expected;
    for (int i = 0; i < 20'000; i++) {
        starts.push_back(stream_end(stream));
        ASSERT_EQ(append(word(i) + '\n'), 1);
        expected += word(i) + "\r\n";
        if (i % 777 == 0) {
            EXPECT_EQ(line(starts[static_cast<std::size_t>(i / 2)]), word(i / 2));
            EXPECT_EQ(line(starts.back()), word(i));
        }
    }
    EXPECT_EQ(raw(), expected);
    EXPECT_LT(read("out").size(), expected.size());  // the rest waits in the buffer
    ASSERT_EQ(stream_flush(stream), 1);
    EXPECT_EQ(read("out"), expected);
    ASSERT_EQ(append("last"), 1);
    const int closed = stream_close(stream);
    stream = NO_STREAM;
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(read("out"), expected + "last");
}

// Whatever the length of the text, and wherever in it and before it the disk is full: nothing of it stays,
// what was there stays, and after space has been freed the same append succeeds.
TEST_F(TextStream, AppendIsAllOrNothing) {
    for (std::size_t before : {0U, 10U, 30'000U}) {
        for (std::size_t length : {100U, 5'000U, 32'768U, 100'000U}) {
            for (int64_t space : {0, 1, 10, 9'000, 40'000, 90'000}) {
                create();
                std::string old(before, 'o');
                std::string text(length, 't');
                text[length / 2] = '\n';
                ASSERT_EQ(append(old), 1);
                fill_disk_after(space);
                const int taken = append(text);
                std::string translated = text;
                translated.replace(length / 2, 1, "\r\n");
                EXPECT_EQ(raw(), taken ? old + translated : old) << before << " " << length << " " << space;
                EXPECT_EQ(taken ? FileError::DISK_FULL : last_file_error(), FileError::DISK_FULL);
                reset_file_faults();
                if (!taken) {
                    ASSERT_EQ(append(text), 1);
                }
                EXPECT_EQ(raw(), old + translated);
                ASSERT_EQ(stream_flush(stream), 1);
                EXPECT_EQ(read("out"), old + translated);
                stream_discard(stream);
                stream = NO_STREAM;
            }
        }
    }
}

TEST_F(TextStream, FailedFlushKeepsTheBufferForARetry) {
    create();
    ASSERT_EQ(append("abc\ndef\n"), 1);
    fill_disk_after(5);
    EXPECT_EQ(stream_flush(stream), 0);
    EXPECT_EQ(last_file_error(), FileError::DISK_FULL);
    EXPECT_EQ(read("out"), "abc\r\n");  // a part has gone out
    EXPECT_EQ(line(5), "def");          // and yet all is there
    ASSERT_EQ(append("g\n"), 1);
    reset_file_faults();
    EXPECT_EQ(stream_flush(stream), 1);
    EXPECT_EQ(read("out"), "abc\r\ndef\r\ng\r\n");

    // Nor does the part that goes out of a failed write show later.
    ASSERT_EQ(append("lost"), 1);
    fill_disk_after(2);
    EXPECT_EQ(stream_flush(stream), 0);
    EXPECT_EQ(line(0), "abc");
    stream_rewind_to(stream, 13);
    reset_file_faults();
    ASSERT_EQ(append("kept"), 1);
    ASSERT_EQ(stream_flush(stream), 1);
    EXPECT_EQ(line(13), "kept");
}

TEST_F(TextStream, RewindTakesBackWrittenAndBufferedText) {
    create();
    ASSERT_EQ(append("one\ntwo\n"), 1);
    ASSERT_EQ(stream_flush(stream), 1);
    EXPECT_EQ(line(5), "two");
    ASSERT_EQ(append("three\n"), 1);
    stream_rewind_to(stream, 12);
    EXPECT_EQ(raw(), "one\r\ntwo\r\nth");
    stream_rewind_to(stream, 99);
    EXPECT_EQ(stream_end(stream), 12);
    stream_rewind_to(stream, 6);  // within what has been written and read
    EXPECT_EQ(stream_end(stream), 6);
    EXPECT_EQ(line(5), "t");
    EXPECT_EQ(end, LineEnd::END);
    ASSERT_EQ(append("en\n"), 1);
    EXPECT_EQ(line(5), "ten");
    ASSERT_EQ(stream_flush(stream), 1);
    EXPECT_EQ(read("out"), "one\r\nten\r\n");
}

TEST_F(TextStream, ReadFailureIsToldAndLeavesNoText) {
    open_bytes("abc\n" + std::string(100'000, 'x'));
    EXPECT_EQ(line(0), "abc");
    fail_file_call(FileCall::READ, 1, EIO, "", 4);
    EXPECT_EQ(line(90'000), "");
    EXPECT_EQ(end, LineEnd::FAILED);
    EXPECT_EQ(last_file_error(), FileError::IO);
    int found = 0;
    EXPECT_EQ(stream_find_row_end(stream, 0, &found), -1);
    char byte = 0;
    EXPECT_EQ(stream_read_raw(stream, 0, &byte, 1), -1);
    EXPECT_EQ(line(65'500), "");  // the line would have started in a good window
    EXPECT_EQ(line(0), "abc");    // and then the medium is back
}

TEST_F(TextStream, CloseTellsThatTheBufferCouldNotBeWritten) {
    create();
    ASSERT_EQ(append("abc"), 1);
    fill_disk_after(0);
    EXPECT_EQ(stream_close(stream), 0);
    EXPECT_EQ(last_file_error(), FileError::DISK_FULL);
    stream = NO_STREAM;
    EXPECT_EQ(open_file_count(), 0);
}

TEST_F(TextStream, HandlesAreFewAndComeBack) {
    const std::string name = write("in", "x");
    std::vector<StreamHandle> all;
    for (int i = 0; i < MAX_STREAMS; i++) {
        all.push_back(stream_open(name.c_str()));
        EXPECT_NE(all.back(), NO_STREAM);
    }
    EXPECT_EQ(stream_open(name.c_str()), NO_STREAM);
    EXPECT_EQ(stream_create(path("new").c_str()), NO_STREAM);
    EXPECT_EQ(last_file_error(), FileError::TOO_MANY_OPEN);
    EXPECT_FALSE(std::filesystem::exists(path("new")));
    for (StreamHandle handle : all) {
        EXPECT_EQ(stream_append(handle, "x", 1), 0);  // opened for reading
        EXPECT_EQ(stream_close(handle), 1);
        EXPECT_EQ(stream_end(handle), -1);
    }
    EXPECT_EQ(open_file_count(), 0);
}

// Walks cost a read for each window, in both directions and page by page; a look at a far row costs one.
TEST_F(TextStream, WalksReadEachWindowOnce) {
    constexpr int ROWS = 50'000;
    constexpr int64_t ROW_BYTES = 42;
    constexpr int64_t WINDOWS = ROWS * ROW_BYTES / (48 << 10) + 2;
    constexpr int PAGE_ROWS = 25;
    std::string bytes;
    for (int i = 0; i < ROWS; i++) {
        bytes += std::string(ROW_BYTES - 2, 'r') + "\r\n";
    }
    open_bytes(bytes);
    record_file_calls();
    for (int64_t row = 0; row < ROWS; row++) {
        line(row * ROW_BYTES);
    }
    EXPECT_LE(file_call_count(FileCall::READ), WINDOWS) << "forward";

    reset_file_faults();
    record_file_calls();
    for (int64_t top = ROWS - PAGE_ROWS; top >= 0; top -= PAGE_ROWS) {
        for (int64_t row = top; row < top + PAGE_ROWS; row++) {
            line(row * ROW_BYTES);
        }
    }
    EXPECT_LE(file_call_count(FileCall::READ), WINDOWS) << "page up";

    reset_file_faults();
    record_file_calls();
    constexpr int JUMPS = 1000;
    for (int64_t i = 0; i < JUMPS; i++) {
        line(i * 7919 % ROWS * ROW_BYTES);
    }
    EXPECT_LE(file_call_count(FileCall::READ), JUMPS * 11 / 10) << "jumps";
}

}  // namespace
}  // namespace hexlane::platform
