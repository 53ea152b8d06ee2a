// fuzz_program.h: the whole program on the desktop in memory, in a home of its own, for fuzzers that need a
// document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace hexlane::fuzz {

// The fuzzer's bytes, one by one; zeros behind the last.
class Bytes {
public:
    Bytes(const uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}
    bool empty() const { return next_ == end_; }
    uint8_t take() { return empty() ? 0 : *next_++; }
    int below(int limit) { return take() % limit; }
    std::size_t size_below(std::size_t limit) { return take() % limit; }

private:
    const uint8_t* next_;
    const uint8_t* end_;
};

// Ends the process with `what` when `holds` is false, so that the fuzzer keeps the input.
void require(bool holds, const char* what);

// Starts the program, at the first call.
void start_program();

// Closes the document, makes a file of these bytes and loads it. `answer` is the button for the question
// about NULs, nullptr when it will not come. Gives whether a document is open.
bool open_bytes(const std::string& bytes, const char* answer = nullptr);

// The bytes of that file as they are on disk now.
std::string bytes_on_disk();

// Saves the document and loads it again; `answer` as above.
void save_and_reload(const char* answer = nullptr);

// The invariants of the row table.
void check_table();

}  // namespace hexlane::fuzz
