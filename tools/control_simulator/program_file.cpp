#include "program_file.h"

#include <cerrno>
#include <cstring>

namespace simulator {

namespace {

void write_character(ProgramFile* program, char character) {
    if (std::fputc(static_cast<unsigned char>(character), program->file) == EOF)
        program->failed = true;
    program->findings->program_bytes++;
}

void write_line_end(ProgramFile* program) {
    write_character(program, '\r');
    write_character(program, '\n');
    program->matched = 0;
}

void end_broken_line_end(ProgramFile* program) {
    if (program->matched == 0)
        return;
    if (program->line_end[0] == '$' && program->matched == 1) {
        write_character(program, '$');
        program->matched = 0;
        return;
    }
    add_fault(program->findings, "a line end is not whole");
    write_line_end(program);
}

std::string failed(const std::string& path, const char* what) {
    return std::string("cannot ") + what + " " + path + ": " + std::strerror(errno);
}

std::string read_all(const std::string& path, std::string* text) {
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr)
        return failed(path, "open");
    char piece[65536];
    std::size_t count = 0;
    while ((count = std::fread(piece, 1, sizeof piece, file)) > 0)
        text->append(piece, count);
    const std::string reason = std::ferror(file) != 0 ? failed(path, "read") : "";
    std::fclose(file);
    return reason;
}

// Characters that the code does not have are refused in a program and left out of start and end string, as a
// machine's tape punch does.
bool encode(Code code, std::string_view characters, std::string* line_bytes, char* missing) {
    bool whole = true;
    for (const char c : characters) {
        const int line_byte = line_byte_of(code, static_cast<uint8_t>(c));
        if (line_byte != NO_CODE) {
            line_bytes->push_back(static_cast<char>(line_byte));
        } else {
            whole = false;
            *missing = c;
        }
    }
    return whole;
}

// Puts the machine's line ends in the place of LF and CR LF.
std::string with_line_ends(std::string_view program, std::string_view line_end) {
    std::string result;
    for (std::size_t i = 0; i < program.size(); i++) {
        const bool crlf = program[i] == '\r' && i + 1 < program.size() && program[i + 1] == '\n';
        i += crlf ? 1 : 0;
        if (program[i] == '\n')
            result += line_end;
        else
            result += program[i];
    }
    return result;
}

}  // namespace

std::string create_program(const Options& options, Findings* findings, ProgramFile* program) {
    program->findings = findings;
    program->line_end = line_end_bytes(options.line_end);
    program->file = std::fopen(options.receive.c_str(), "wb");
    return program->file != nullptr ? "" : failed(options.receive, "write");
}

void store(ProgramFile* program, uint8_t character) {
    const char c = static_cast<char>(character);
    if (program->line_end.empty()) {
        write_character(program, c);
        return;
    }
    if (c != program->line_end[program->matched])
        end_broken_line_end(program);
    if (c == program->line_end[program->matched]) {
        if (++program->matched == program->line_end.size())
            write_line_end(program);
        return;
    }
    if (c == '\r' || c == '\n')
        add_fault(program->findings, "a line end is not whole");
    write_character(program, c);
}

void flush_program(ProgramFile* program) {
    end_broken_line_end(program);
    program->failed |= std::fflush(program->file) != 0;
}

bool close_program(ProgramFile* program) {
    end_broken_line_end(program);
    program->failed |= std::fclose(program->file) != 0;
    program->file = nullptr;
    return !program->failed;
}

std::string encode_program(const Options& options, std::string* line_bytes, int64_t* program_bytes) {
    std::string program;
    const std::string reason = read_all(options.send, &program);
    if (!reason.empty())
        return reason;
    *program_bytes = static_cast<int64_t>(program.size());
    const std::string_view line_end = line_end_bytes(options.line_end);
    if (!line_end.empty())
        program = with_line_ends(program, line_end);
    char missing = 0;
    encode(options.code, options.start, line_bytes, &missing);
    const bool whole = encode(options.code, program, line_bytes, &missing);
    const int wrong = static_cast<uint8_t>(missing);
    encode(options.code, options.end, line_bytes, &missing);
    return whole ? "" : options.send + " holds " + name_of(wrong).text + ", which the code does not have";
}

}  // namespace simulator
