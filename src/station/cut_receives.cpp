// cut_receives.cpp: receives that the log has begun and not ended: the program was killed, or the power went.

#include "dnc/log_lines.h"
#include "dnc/transfer_log.h"
#include "platform/files.h"
#include "platform/text.h"
#include "station/port_report.h"
#include "station/station_texts.h"

#include <cstring>

namespace hexlane {

using namespace platform;

namespace {

constexpr int LOG_COUNT = 2;

// Lines of both logs, the older one first.
struct LogReader {
    FileHandle files[LOG_COUNT];
    int current;
    int64_t position;
};

LogReader open_logs() {
    LogReader reader = {{NO_FILE, NO_FILE}, 0, 0};
    const char* const titles[LOG_COUNT] = {"transfers.old", "transfers.log"};
    char path[PATH_SIZE];
    for (int i = 0; i < LOG_COUNT; i++)
        reader.files[i] = name_log(titles[i], path) ? file_open(path, FileAccess::READ) : NO_FILE;
    return reader;
}

void close_logs(const LogReader& reader) {
    for (const FileHandle file : reader.files) {
        if (file != NO_FILE)
            file_close(file);
    }
}

// The next line, without its end; a longer one comes in pieces. False behind the last.
bool next_line(LogReader* reader, char line[LOG_LINE_SIZE]) {
    for (; reader->current < LOG_COUNT; reader->current++, reader->position = 0) {
        const FileHandle file = reader->files[reader->current];
        if (file == NO_FILE)
            continue;
        const int64_t length = file_read_at(file, reader->position, line, LOG_LINE_SIZE - 1);
        if (length <= 0)
            continue;
        line[length] = '\0';
        const std::size_t end = std::strcspn(line, "\n");
        reader->position += static_cast<int64_t>(end) + (line[end] == '\n' ? 1 : 0);
        if (end == 0 && line[end] == '\0')
            reader->position++;  // a NUL, which no line of ours has
        line[end] = '\0';
        return true;
    }
    return false;
}

bool begins_with(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

// The file of a line that begins a receive, nullptr for any other line.
const char* file_begun(const char* line) {
    const char* file = begins_with(line, RECEIVE_BEGUN) ? std::strstr(line, FILE_OF_BEGUN) : nullptr;
    return file != nullptr ? file + std::strlen(FILE_OF_BEGUN) : nullptr;
}

// Whether one of the lines from here on ends a receive into the file.
bool is_ended(LogReader reader, const char* file) {
    char line[LOG_LINE_SIZE];
    while (next_line(&reader, line)) {
        if (!begins_with(line, RECEIVE_ENDED))
            continue;
        const char* name = line + std::strlen(RECEIVE_ENDED);
        if (begins_with(name, file) && begins_with(name + std::strlen(file), "; "))
            return true;
    }
    return false;
}

void end_cut_receive(const char* file) {
    char line[LOG_LINE_SIZE];
    format_text(line, sizeof line, "%s%s; result not known: the program ended meanwhile", RECEIVE_ENDED,
                file);
    write_log_line(line);
}

}  // namespace

void tell_cut_receives() {
    LogReader reader = open_logs();
    char line[LOG_LINE_SIZE];
    while (next_line(&reader, line)) {
        const char* file = file_begun(line);
        if (file == nullptr || is_in_open_entry(file) || is_ended(reader, file))
            continue;
        show_dnc_box(DncBox::RECEIVE_CUT, file);
        end_cut_receive(file);
    }
    close_logs(reader);
    tell_log_failure();
}

}  // namespace hexlane
