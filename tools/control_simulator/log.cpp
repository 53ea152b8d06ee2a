#include "log.h"

#include <cerrno>
#include <cstring>
#include <ctime>

namespace simulator {

namespace {

constexpr std::size_t PIECE = 64;  // bytes on one line of the log

void log_time(const Log& log) {
    std::fprintf(log.file, "%10.3f ", static_cast<double>(now_ns() - log.start_ns) / 1e9);
}

void log_piece(const Log& log, const uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; i++) {
        const int character = character_of(log.code, bytes[i]);
        if (character == NO_CODE) {
            std::fprintf(log.file, "<%02X>", bytes[i]);
            continue;
        }
        const CharacterName name = name_of(character);
        std::fprintf(log.file, name.named ? "<%s>" : "%s", name.text);
    }
}

}  // namespace

int64_t now_ns() {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

std::string open_log(const std::string& path, Code code, Log* log) {
    log->code = code;
    log->start_ns = now_ns();
    if (path.empty())
        return "";
    log->file = path == "-" ? stderr : std::fopen(path.c_str(), "w");
    if (log->file == nullptr)
        return "cannot write " + path + ": " + std::strerror(errno);
    std::setvbuf(log->file, nullptr, _IOLBF, BUFSIZ);  // somebody may be watching
    return "";
}

bool close_log(Log* log) {
    if (log->file == nullptr)
        return true;
    bool right = std::ferror(log->file) == 0;
    right = (log->file == stderr ? std::fflush(log->file) : std::fclose(log->file)) == 0 && right;
    log->file = nullptr;
    return right;
}

void log_bytes(const Log& log, const char* direction, const void* bytes, std::size_t count) {
    if (log.file == nullptr)
        return;
    const auto* from = static_cast<const uint8_t*>(bytes);
    for (std::size_t at = 0; at < count; at += PIECE) {
        log_time(log);
        std::fprintf(log.file, "%-4s", direction);
        log_piece(log, from + at, count - at < PIECE ? count - at : PIECE);
        std::fputc('\n', log.file);
    }
}

void log_note(const Log& log, const std::string& note) {
    if (log.file == nullptr)
        return;
    log_time(log);
    std::fprintf(log.file, "%-4s%s\n", "--", note.c_str());
}

}  // namespace simulator
