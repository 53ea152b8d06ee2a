// print_command.cpp: the command `print`: the rows of a file as pages, as the editor prints them.

#include "cli/cli.h"

#include "platform/console/console.h"
#include "platform/process.h"
#include "platform/text_stream.h"
#include "print/listing.h"
#include "shell/store_limits.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace hexlane {

using namespace platform;

const char* const PRINT_HELP = R"(hexlane-cli print: prints the rows of an NC program into a PDF file.

Use
    hexlane-cli print [OPTION]... --pdf OUTPUT FILE

Options
    --pdf OUTPUT   the PDF file; an old one is replaced, but no other file
    --rows A-B     rows A to B alone, counted from 1

Exit code
    0   printed
    2   the command line makes no sense
    3   a file could not be read or written
)";

namespace {

struct Options {
    std::string file;
    std::string pdf;
    int64_t first = 1;
    int64_t last = MAX_ROWS;
};

// The file's rows from the front on, as the editor shows them: up to their LF or NUL, at most ROW_FETCH_MAX
// characters.
struct Source {
    StreamHandle stream = NO_STREAM;
    int64_t position = 0;  // of row `next_row`
    int32_t next_row = 0;
    bool ended = false;  // the row in front was the last
    bool failed = false;
    char text[ROW_FETCH_MAX + 1];
} source;

int64_t take_row(int64_t start) {
    int found = 0;
    const int64_t end = stream_find_row_end(source.stream, start, &found);
    const int64_t length = std::min<int64_t>(end - start, ROW_FETCH_MAX);
    if (end < 0 ||
        stream_read_raw(source.stream, start, source.text, static_cast<std::size_t>(length)) != length)
        return -1;
    source.text[length] = '\0';
    const auto cut = static_cast<std::size_t>(length);
    if (found == '\n' && length == end - start && length > 0 && source.text[cut - 1] == '\r')
        source.text[cut - 1] = '\0';
    if (char* ends_input = std::strchr(source.text, 0x1A))
        *ends_input = '\0';
    source.ended = found < 0;
    return end + 1;
}

RowFound file_row(int32_t row, const char** text) {
    while (!source.ended && !source.failed && source.next_row <= row) {
        source.position = take_row(source.position);
        source.failed = source.position < 0;
        source.next_row++;
    }
    if (source.failed)
        return RowFound::UNREADABLE;
    *text = source.text;
    return source.next_row <= row ? RowFound::NO_ROW : RowFound::ROW;
}

bool read_range(const std::string& text, Options* options) {
    const std::size_t dash = text.find('-');
    return dash != std::string::npos && read_number(text.substr(0, dash), 1, MAX_ROWS, &options->first) &&
           read_number(text.substr(dash + 1), options->first, MAX_ROWS, &options->last);
}

// Gives the reason why the words make no sense, else "".
std::string read_options(const Words& words, Options* options) {
    for (std::size_t i = 0; i < words.size(); i++) {
        const std::string& word = words[i];
        const bool has_value = i + 1 < words.size();
        if (word == "--pdf" && has_value) {
            options->pdf = words[++i];
        } else if (word == "--rows" && has_value) {
            if (!read_range(words[++i], options))
                return "--rows takes two row numbers with a '-' between them";
        } else if (word == "--pdf" || word == "--rows") {
            return word + " needs a value";
        } else if (word.starts_with("--")) {
            return "what is '" + word + "'?";
        } else if (options->file.empty()) {
            options->file = word;
        } else {
            return "one file is printed at a time";
        }
    }
    if (options->file.empty())
        return "which file is to be printed?";
    return options->pdf.empty() ? "this program has no printer: name a PDF file with --pdf" : "";
}

int print_rows(const Options& options) {
    char path[PATH_SIZE];
    if (!absolute_path(options.file.c_str(), path, sizeof path))
        return refuse(EXIT_CANNOT, options.file + ": " + file_error_text(FileError::NAME_TOO_LONG));
    source.stream = stream_open(path);
    if (source.stream == NO_STREAM)
        return refuse(EXIT_CANNOT, options.file + ": " + file_error_text(last_file_error()));
    const ListingResult result =
        print_listing(path, options.pdf.c_str(), static_cast<int32_t>(options.first - 1),
                      static_cast<int32_t>(options.last - 1), file_row);
    stream_close(source.stream);
    if (result == ListingResult::UNREADABLE)
        return refuse(EXIT_CANNOT, options.file + ": could not be read to the end");
    return result == ListingResult::PRINTED ? EXIT_COMPLETE : EXIT_CANNOT;
}

}  // namespace

int run_print_command(const Words& words) {
    Options options;
    const std::string reason = read_options(words, &options);
    if (!reason.empty())
        return refuse_use(reason);
    start_console();
    return print_rows(options);
}

}  // namespace hexlane
